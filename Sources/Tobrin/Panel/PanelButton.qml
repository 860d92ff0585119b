// A push button, with a symbol where it has one. `hint` says more, or why it cannot be pushed.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tobrin

T.Button {
    id: control

    property string symbol: ""
    property string hint: ""
    property bool prominent: false
    readonly property color ink: prominent ? Theme.accentInk : Theme.text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: Theme.unit * 2.5
    verticalPadding: Theme.unit * 1.25
    Accessible.name: text
    Accessible.description: hint
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    PanelTip {
        shown: control.hovered || control.visualFocus
        text: control.hint
    }

    background: Rectangle {
        radius: Theme.radius * 0.75
        color: control.prominent ? Theme.accent : control.down ? Theme.pressed : control.hovered ? Theme.hover : Theme.surface
        border.width: control.prominent && !control.hovered ? 0 : control.hovered ? 2 : 1
        border.color: control.prominent ? Theme.text : Theme.edge
        opacity: !control.enabled ? 0.5 : control.prominent && control.down ? 0.85 : 1
        FocusRing { control: control }
    }
    contentItem: RowLayout {
        spacing: Theme.unit
        opacity: control.enabled ? 1 : 0.5

        Symbol {
            name: control.symbol
            visible: control.symbol !== ""
            color: control.ink
            size: Math.round(Theme.textSize * 0.9)
        }
        PanelText {
            text: control.text
            visible: text !== ""
            Layout.fillWidth: true
            color: control.ink
            horizontalAlignment: control.symbol === "" ? Text.AlignHCenter : Text.AlignLeft
            Accessible.ignored: true
        }
    }
}
