// One pack of the grid; `chosen` is the action of choosing it.
import QtQuick
import QtQuick.Templates as T
import Tobrin

T.RadioButton {
    id: tile

    required property var pack
    property bool selected: false
    signal chosen

    checked: selected
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: Theme.gap
    verticalPadding: Theme.unit * 1.75
    Accessible.name: pack.name + ", " + pack.kind
    Accessible.onPressAction: chosen()
    Accessible.onToggleAction: chosen()
    onClicked: chosen()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        radius: Theme.radius
        color: tile.selected ? Theme.accentTint : tile.hovered ? Theme.hover : Theme.surface
        border.width: tile.selected ? 2 : 1
        border.color: tile.selected ? Theme.accent : Theme.outline
        opacity: tile.down ? 0.7 : 1
        FocusRing { control: tile }
    }
    contentItem: Column {
        spacing: 1

        PanelText {
            width: parent.width
            text: tile.pack.name
            font.weight: Font.DemiBold
            color: tile.selected ? Theme.accent : Theme.text
            Accessible.ignored: true
        }
        PanelText {
            width: parent.width
            text: tile.pack.kind
            secondary: true
            small: true
            Accessible.ignored: true
        }
    }
}
