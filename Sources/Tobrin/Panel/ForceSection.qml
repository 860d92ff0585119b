// Force sensing, or the fixed strength that stands in for it.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: section

    required property PanelModel model
    readonly property bool wanted: model.sensorAvailable && model.forceSensing
    readonly property bool measuring: wanted && model.sensorProblem === ""

    spacing: Theme.unit * 1.5

    SectionLabel {
        text: "Force"
    }
    Card {
        PanelSwitch {
            Layout.fillWidth: true
            visible: section.model.sensorAvailable
            text: "Feel how hard you type"
            checked: section.model.forceSensing
            onToggled: section.model.forceSensing = checked
        }
        PanelText {
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit * 1.5
            Layout.bottomMargin: Theme.gap
            visible: !section.model.sensorAvailable || (section.wanted && !section.measuring)
            text: section.model.sensorAvailable ? "The motion sensor does not work: " + section.model.sensorProblem + ". Until it does, the strength below is used." : section.model.noSensorNote
            small: true
            secondary: true
        }
        Hairline { }
        RowLayout {
            Layout.fillWidth: true
            Layout.minimumHeight: Theme.rowHeight
            visible: section.measuring
            spacing: Theme.inset

            PanelText {
                text: "Sensitivity"
                Accessible.ignored: true
            }
            PanelSlider {
                Layout.fillWidth: true
                label: "Sensitivity"
                from: 0.25
                to: 4
                value: section.model.sensitivity
                onMoved: section.model.sensitivity = value
            }
        }
        ForceMeter {
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit
            Layout.bottomMargin: Theme.gap
            visible: section.measuring
            reading: section.model
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Theme.gap
            Layout.bottomMargin: Theme.unit
            visible: !section.measuring
            spacing: Theme.inset

            PanelText {
                text: "Strength"
                Accessible.ignored: true
            }
            PanelPicker {
                Layout.fillWidth: true
                label: "Strength"
                choices: Theme.tierNames
                current: section.model.fixedTier
                onChosen: index => section.model.fixedTier = index
            }
        }
    }
}
