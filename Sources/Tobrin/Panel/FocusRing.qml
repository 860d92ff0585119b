// The ring around the control that has the keyboard.
import QtQuick
import QtQuick.Templates as T
import Tobrin

Rectangle {
    required property T.Control control

    anchors.fill: parent
    anchors.margins: -4
    visible: control.visualFocus
    color: "transparent"
    radius: Theme.radius + 4
    border.width: 2
    border.color: Theme.accent
}
