// First page of a recording: which microphone, and whether it hears the keys well.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: body

    property RecordingModel recording: null

    spacing: Theme.inset

    PanelText {
        Layout.fillWidth: true
        text: qsTr("Two minutes of typing make a sound pack of the keyboard under your hands. Put the microphone near the keys.")
    }
    PanelText {
        Layout.fillWidth: true
        text: qsTr("The microphone is on only on these pages. Which keys you press is never written down, but the sound of typing can give it away: type nothing secret.")
        small: true
        secondary: true
    }
    SectionLabel { text: qsTr("Microphone") }
    PanelPicker {
        Layout.fillWidth: true
        visible: choices.length > 1
        label: qsTr("Microphone")
        choices: body.recording?.inputs ?? []
        current: body.recording?.inputIndex ?? 0
        onChosen: index => body.recording.chooseInput(index)
    }
    PanelText {
        Layout.fillWidth: true
        visible: (body.recording?.inputs.length ?? 0) === 1
        text: body.recording?.inputs[0] ?? ""
    }
    WarningLine {
        Layout.fillWidth: true
        text: body.recording?.inputWarning ?? ""
    }
    LevelMeter {
        Layout.fillWidth: true
        level: body.recording?.level ?? 0
    }
    PanelText {
        Layout.fillWidth: true
        Layout.minimumHeight: 2 * Theme.rowHeight / 2
        text: body.recording?.advice ?? ""
        font.weight: Font.DemiBold
        Accessible.role: Accessible.AlertMessage
    }
    PanelField {
        Layout.fillWidth: true
        placeholderText: qsTr("Type here to try it")
        focus: true
        Component.onCompleted: forceActiveFocus()
    }
    PanelButton {
        Layout.alignment: Qt.AlignRight
        text: qsTr("Start")
        prominent: true
        enabled: (body.recording?.inputIndex ?? -1) >= 0
        onClicked: body.recording.startTyping()
    }
}
