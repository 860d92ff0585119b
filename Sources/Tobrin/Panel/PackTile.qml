// One pack of the grid; `chosen` is the action of choosing it. What a pack is called never takes
// more room than a tile has.
import QtQuick
import QtQuick.Templates as T
import Tobrin

T.RadioButton {
    id: tile

    required property var pack
    property bool selected: false
    property int nameLines: 1
    signal chosen

    checked: selected
    horizontalPadding: Theme.gap
    verticalPadding: Theme.unit * 1.5
    implicitHeight: Math.ceil(name.lineHeight * nameLines + kind.lineHeight) + topPadding + bottomPadding
    Accessible.name: pack.name + ", " + pack.kind
    Accessible.onPressAction: chosen()
    Accessible.onToggleAction: chosen()
    onClicked: chosen()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    PanelTip {
        shown: (tile.hovered || tile.visualFocus) && (name.truncated || kind.truncated)
        text: tile.pack.name + "\n" + tile.pack.kind
    }

    background: Rectangle {
        radius: Theme.radius
        color: tile.down ? Theme.pressed : tile.selected ? Theme.accentTint : tile.hovered ? Theme.hover : Theme.surface
        border.width: tile.selected ? 2 : 1
        border.color: tile.selected ? Theme.accent : Theme.edge
        FocusRing { control: tile; distance: -5 }
    }
    contentItem: Column {
        ShortText {
            id: name
            width: parent.width
            text: tile.pack.name
            lines: tile.nameLines
            font.weight: Font.DemiBold
            color: tile.selected ? Theme.accent : Theme.text
            Accessible.ignored: true
        }
        ShortText {
            id: kind
            width: parent.width
            text: tile.pack.kind
            secondary: true
            small: true
            Accessible.ignored: true
        }
    }
}
