// Second page of a recording: what to type, and how many sounds of it are good so far.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: body

    property RecordingModel recording: null
    readonly property var step: recording?.steps[recording.step] ?? ({})
    readonly property bool paused: recording?.paused ?? false

    spacing: Theme.inset

    PanelText {
        Layout.fillWidth: true
        text: body.paused ? qsTr("Paused. Nothing is recorded.") : body.step.instruction ?? ""
        font.weight: Font.DemiBold
        Accessible.role: Accessible.AlertMessage
    }
    PanelText {
        Layout.fillWidth: true
        visible: text !== ""
        text: body.step.sample ?? ""
        secondary: true
    }
    PanelField {
        id: typed
        Layout.fillWidth: true
        placeholderText: qsTr("Type here")
        enabled: !body.paused
        Component.onCompleted: forceActiveFocus()
        onEnabledChanged: if (enabled) forceActiveFocus()
        onTextEdited: if (text.length > 60) clear()
    }
    LevelMeter {
        Layout.fillWidth: true
        level: body.paused ? 0 : body.recording?.level ?? 0
    }
    PanelText {
        Layout.fillWidth: true
        text: body.paused || (body.recording?.soundsGood ?? true) ? " " : body.recording.advice
        small: true
        color: Theme.warning
    }
    GridLayout {
        Layout.fillWidth: true
        columns: 2
        columnSpacing: Theme.inset
        rowSpacing: Theme.unit

        Repeater {
            model: body.recording?.steps ?? []

            RecordCount {
                required property int index
                required property var modelData

                Layout.fillWidth: true
                Layout.preferredWidth: 1
                title: modelData.title
                have: body.recording.counts[index]
                wanted: modelData.wanted
                current: index === body.recording.step
            }
        }
    }
    RowLayout {
        Layout.fillWidth: true

        PanelButton {
            text: body.paused ? qsTr("Resume") : qsTr("Pause")
            onClicked: body.paused ? body.recording.resume() : body.recording.pause()
        }
        PanelButton {
            text: qsTr("Skip")
            hint: qsTr("On to the next, where the keyboard has no such key.")
            onClicked: {
                body.recording.skip();
                typed.forceActiveFocus();
            }
        }
        Item { Layout.fillWidth: true }
        PanelButton {
            text: qsTr("Finish")
            hint: qsTr("Make a pack of what there is.")
            onClicked: body.recording.finish()
        }
    }
}
