// A line of text to type.
import QtQuick
import QtQuick.Templates as T
import Tobrin

T.TextField {
    id: field

    implicitHeight: contentHeight + topPadding + bottomPadding
    leftPadding: Theme.gap
    rightPadding: Theme.gap
    topPadding: Theme.unit * 1.25
    bottomPadding: Theme.unit * 1.25
    color: Theme.text
    placeholderTextColor: Theme.secondaryText
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentInk
    font.pixelSize: Theme.textSize
    verticalAlignment: Text.AlignVCenter
    selectByMouse: true
    Accessible.name: placeholderText

    PanelText {
        anchors.fill: parent
        leftPadding: field.leftPadding
        rightPadding: field.rightPadding
        verticalAlignment: Text.AlignVCenter
        visible: field.text === ""
        text: field.placeholderText
        secondary: true
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.radius * 0.75
        color: Theme.surface
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.focus : Theme.edge
    }
}
