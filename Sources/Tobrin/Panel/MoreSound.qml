// Where it sounds, and how much louder than usual. Lets one key be heard after each change.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: section

    required property SoundModel sound

    Layout.fillWidth: true
    spacing: Theme.unit * 1.5

    SectionLabel { text: qsTr("Sound") }
    Card {
        PanelText {
            Layout.fillWidth: true
            Layout.topMargin: Theme.gap
            text: picker.label
            Accessible.ignored: true // the picker has the name
        }
        PanelPicker {
            id: picker
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit
            Layout.bottomMargin: Theme.gap
            label: qsTr("Plays on")
            choices: section.sound.outputs
            current: section.sound.outputIndex
            Accessible.description: note.text
            onChosen: index => {
                section.sound.outputIndex = index;
                section.sound.playOneKey();
            }
        }
        PanelText {
            id: note
            Layout.fillWidth: true
            Layout.bottomMargin: Theme.gap
            visible: text !== ""
            text: section.sound.outputNote
            small: true
            secondary: true
        }
        Hairline { }
        RowLayout {
            Layout.fillWidth: true
            Layout.minimumHeight: Theme.rowHeight
            spacing: Theme.inset

            FieldLabel { text: louder.label }
            PanelSlider {
                id: louder
                Layout.fillWidth: true
                label: qsTr("Louder")
                valueText: qsTr("%1 %").arg(Math.round(value * 100))
                Accessible.description: valueText + ". " + loudNote.text
                from: 1
                to: section.sound.mostBoost
                value: section.sound.boost
                onMoved: section.sound.boost = value
                onRested: section.sound.playOneKey()
            }
        }
        PanelText {
            id: loudNote
            Layout.fillWidth: true
            Layout.rightMargin: Theme.inset
            Layout.bottomMargin: Theme.gap
            text: qsTr("Makes keys louder than their pack has them, up to twice as loud. Hard strokes grow less, so that nothing is distorted. Volume and this are kept for each device.")
            small: true
            secondary: true
        }
    }
}
