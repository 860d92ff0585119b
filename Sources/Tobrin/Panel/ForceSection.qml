// Force sensing, or the fixed strength that is used without it.
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
        text: qsTr("Force")
    }
    Card {
        Part {
            shown: section.model.sensorAvailable
            content: PanelSwitch {
                text: qsTr("Feel how hard you type")
                checked: section.model.forceSensing
                onToggled: section.model.forceSensing = checked
            }
        }
        PanelText {
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit * 1.5
            Layout.bottomMargin: Theme.gap
            visible: !section.model.sensorAvailable || (section.wanted && !section.measuring)
            text: !section.model.sensorAvailable ? section.model.noSensorNote
                  : qsTr("The motion sensor does not work: %1. Until it does, the fixed strength below is used.").arg(section.model.sensorProblem)
            small: true
            secondary: true
        }
        Hairline { }
        Part {
            Layout.minimumHeight: Theme.rowHeight
            shown: section.measuring
            content: RowLayout {
                spacing: Theme.inset

                FieldLabel {
                    text: qsTr("Sensitivity")
                    hint: qsTr("The higher, the harder your strokes sound.")
                }
                PanelSlider {
                    Layout.fillWidth: true
                    label: qsTr("Sensitivity")
                    from: 0.25
                    to: 4
                    value: section.model.sensitivity
                    valueText: qsTr("%1×").arg(Number(value).toLocaleString(Qt.locale(), "f", 2))
                    onMoved: section.model.sensitivity = value
                }
            }
        }
        Part {
            Layout.topMargin: Theme.unit
            Layout.bottomMargin: Theme.gap
            shown: section.measuring
            content: ForceMeter { reading: section.model }
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Theme.gap
            Layout.bottomMargin: Theme.unit
            visible: !section.measuring
            spacing: Theme.inset

            FieldLabel {
                id: strength
                text: qsTr("Strength")
                hint: qsTr("How hard every key sounds while none is measured.")
            }
            PanelPicker {
                Layout.fillWidth: true
                Accessible.description: strength.hint
                label: qsTr("Strength")
                choices: Theme.tierNames
                current: section.model.fixedTier
                onChosen: index => section.model.fixedTier = index
            }
        }
    }
}
