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
    readonly property bool usable: pack.problem === ""

    Accessible.name: pack.name + ", " + pack.kind
    Accessible.description: pack.problem
    Accessible.onPressAction: chosen()
    Accessible.onToggleAction: chosen()
    onClicked: chosen()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    PanelTip {
        shown: (tile.hovered || tile.visualFocus) && (name.truncated || kind.truncated || !tile.usable)
        text: tile.pack.name + "\n" + (tile.usable ? tile.pack.kind : tile.pack.problem)
    }

    background: Rectangle {
        radius: Theme.radius
        color: tile.down ? Theme.pressed : tile.selected ? Theme.accentTint : tile.hovered ? Theme.hover : Theme.surface
        border.width: tile.selected ? 2 : 1
        border.color: tile.selected ? Theme.accent : tile.usable ? Theme.edge : Theme.outline
        FocusRing { control: tile; distance: -5 }
    }
    contentItem: Column {
        ShortText {
            id: name
            width: parent.width
            text: tile.pack.name
            lines: tile.nameLines
            font.weight: Font.DemiBold
            color: tile.selected ? Theme.accent : tile.usable ? Theme.text : Theme.secondaryText
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
