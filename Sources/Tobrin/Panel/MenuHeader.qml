// Name, state and main switch.
import QtQuick
import QtQuick.Layouts
import Tobrin

RowLayout {
    id: header

    required property PanelModel model

    spacing: Theme.gap * 1.5

    Symbol {
        name: header.model.playing ? "keyboard-fill" : "keyboard"
        color: header.model.playing ? Theme.accent : Theme.secondaryText
        size: Math.round(Theme.textSize * 2.4)
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: 0

        PanelText {
            Layout.fillWidth: true
            text: "Tobrin"
            font.pixelSize: Theme.titleText
            font.weight: Font.Bold
            Accessible.role: Accessible.Heading
        }
        PanelText {
            Layout.fillWidth: true
            text: header.model.statusLine
            small: true
            secondary: true
        }
    }
    PanelSwitch {
        text: "Sounds"
        labelHidden: true
        checked: header.model.soundsOn
        onToggled: header.model.soundsOn = checked
    }
}
