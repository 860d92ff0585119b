// Name, state and main switch.
import QtQuick
import QtQuick.Layouts
import Tobrin

RowLayout {
    id: header

    required property PanelModel model

    spacing: Theme.inset

    Rectangle {
        implicitWidth: Math.round(Theme.textSize * 3.2)
        implicitHeight: implicitWidth
        radius: Theme.radius
        color: header.model.playing ? Theme.accent : Theme.surface
        border.width: header.model.playing ? 0 : 1
        border.color: Theme.outline
        Behavior on color { ColorAnimation { duration: Theme.quick } }

        Symbol {
            anchors.centerIn: parent
            name: header.model.playing ? "keyboard-fill" : "keyboard"
            color: header.model.playing ? Theme.accentInk : Theme.secondaryText
            size: Math.round(Theme.textSize * 2.1)
        }
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: 1

        PanelText {
            Layout.fillWidth: true
            text: "Tobrin"
            font.pixelSize: Theme.titleText
            font.weight: Font.Bold
            Accessible.role: Accessible.Heading
        }
        ShortText {
            Layout.fillWidth: true
            text: header.model.statusLine
            lines: 2
            small: true
            secondary: true
        }
        KeyLights {
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit
            model: header.model
        }
    }
    PanelSwitch {
        text: qsTr("Sounds")
        labelHidden: true
        checked: header.model.soundsOn
        onToggled: header.model.soundsOn = checked
    }
}
