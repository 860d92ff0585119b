// The ring around the control that has the keyboard; in the text's colour, so that nobody takes it
// for the mark of what is chosen.
import QtQuick
import QtQuick.Templates as T
import Tobrin

Rectangle {
    required property T.Control control
    property real distance: 2 // outside of what it is in; negative: within

    anchors.fill: parent
    anchors.margins: -distance - border.width
    visible: control.visualFocus
    color: "transparent"
    radius: Math.max(0, (parent as Rectangle)?.radius + distance + border.width)
    border.width: 2
    border.color: Theme.focus
}
