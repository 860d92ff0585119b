// The global shortcut: on or off, which one, and whether it works.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: section

    required property PanelModel model

    spacing: Theme.unit * 1.5

    SectionLabel {
        text: qsTr("Shortcut")
    }
    Card {
        PanelSwitch {
            Layout.fillWidth: true
            text: qsTr("Turn sounds on/off with")
            checked: section.model.shortcutEnabled
            onToggled: section.model.shortcutEnabled = checked
        }
        ShortcutField {
            Layout.alignment: Qt.AlignRight
            Layout.bottomMargin: Theme.unit * 1.5
            enabled: section.model.shortcutEnabled
            model: section.model
        }
        PanelPicker {
            Layout.fillWidth: true
            enabled: section.model.shortcutEnabled
            opacity: enabled ? 1 : 0.5
            label: qsTr("Shortcut")
            choices: section.model.shortcutChoices
            current: section.model.shortcutIndex
            onChosen: index => section.model.shortcutIndex = index
        }
        WarningLine {
            Layout.fillWidth: true
            Layout.topMargin: Theme.gap
            Layout.bottomMargin: Theme.unit
            text: section.model.shortcutProblem
        }
        ShortcutHint {
            Layout.fillWidth: true
            Layout.topMargin: Theme.gap
            Layout.bottomMargin: Theme.unit
            visible: section.model.shortcutProblem === ""
            text: section.model.shortcutHint
        }
    }
}
