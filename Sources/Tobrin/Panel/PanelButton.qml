// A push button, with a symbol where it has one.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tobrin

T.Button {
    id: control

    property string symbol: ""
    property bool prominent: false
    readonly property color ink: prominent ? Theme.accentInk : Theme.text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: Theme.unit * 2.5
    verticalPadding: Theme.unit * 1.25
    opacity: enabled ? 1 : 0.5
    Accessible.name: text
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        radius: Theme.radius * 0.75
        color: control.prominent ? Theme.accent : control.hovered ? Theme.hover : Theme.surface
        border.width: control.prominent ? 0 : 1
        border.color: Theme.outline
        opacity: control.down ? 0.7 : 1
        FocusRing { control: control }
    }
    contentItem: RowLayout {
        spacing: Theme.unit

        Symbol {
            name: control.symbol
            visible: control.symbol !== ""
            color: control.ink
            size: Math.round(Theme.textSize * 0.9)
        }
        PanelText {
            text: control.text
            Layout.fillWidth: true
            color: control.ink
            horizontalAlignment: control.symbol === "" ? Text.AlignHCenter : Text.AlignLeft
            Accessible.ignored: true
        }
    }
}
