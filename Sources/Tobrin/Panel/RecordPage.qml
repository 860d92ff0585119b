// Recording one's own keyboard, in the panel's place: a microphone, what to type, a listen, a name.
// Leaving it at any time leaves nothing behind.
import QtQuick
import QtQuick.Layouts
import Tobrin

Rectangle {
    id: page

    required property RecordingModel recording

    implicitWidth: Theme.panelWidth
    // Of one height, so that nothing moves away under the pointer from page to page.
    implicitHeight: Math.max(28 * Theme.textSize, content.implicitHeight + 2 * Theme.margin)
    color: Theme.background
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Record Your Keyboard")

    Shortcut {
        sequences: ["Escape"]
        onActivated: {
            if (page.recording.stage === RecordingModel.Typing && !page.recording.paused)
                page.recording.pause();
            else
                page.recording.leave();
        }
    }
    ColumnLayout {
        id: content
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.margin }
        spacing: Theme.inset

        RowLayout {
            Layout.fillWidth: true

            PanelText {
                Layout.fillWidth: true
                text: page.Accessible.name
                font { pixelSize: Theme.titleText; weight: Font.DemiBold }
                Accessible.role: Accessible.Heading
            }
            PanelButton {
                text: qsTr("Cancel")
                hint: qsTr("Nothing of the recording is kept.")
                onClicked: page.recording.leave()
            }
        }
        WarningLine {
            Layout.fillWidth: true
            text: page.recording.problem
        }
        Loader {
            id: body
            Layout.fillWidth: true
            source: ["", "RecordMicrophone.qml", "RecordTyping.qml", "RecordBuilding.qml", "RecordResult.qml"][page.recording.stage]
            onLoaded: item.recording = page.recording
        }
    }
}
