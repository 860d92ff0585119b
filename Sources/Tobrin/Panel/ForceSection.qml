// Force sensing, or the fixed strength that stands in for it.
import QtQuick
import QtQuick.Layouts
import Tobrin

Card {
    id: section

    required property PanelModel model
    readonly property bool measuring: model.sensorAvailable && model.forceSensing

    SectionLabel {
        text: "Force"
    }
    PanelSwitch {
        Layout.fillWidth: true
        visible: section.model.sensorAvailable
        text: "Feel how hard you type"
        checked: section.model.forceSensing
        onToggled: section.model.forceSensing = checked
    }
    PanelText {
        Layout.fillWidth: true
        visible: !section.model.sensorAvailable
        text: "Force sensing needs a MacBook with the motion sensor (M1 Pro/Max, M2 or later). Pick a fixed strength instead."
        small: true
        secondary: true
    }
    RowLayout {
        Layout.fillWidth: true
        visible: section.measuring
        spacing: Theme.gap

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
        visible: section.measuring
        reading: section.model
    }
    PanelText {
        visible: strength.visible
        text: "Strength"
        Accessible.ignored: true
    }
    PanelPicker {
        id: strength
        Layout.fillWidth: true
        visible: !section.measuring
        label: "Strength"
        choices: Theme.tierNames
        current: section.model.fixedTier
        onChosen: index => section.model.fixedTier = index
    }
}
