// Last page of a recording: a listen, a name, and whether to keep it.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: body

    property RecordingModel recording: null

    spacing: Theme.inset

    PanelText {
        Layout.fillWidth: true
        text: qsTr("This is your keyboard. Type anything to hear it.")
        font.weight: Font.DemiBold
        Accessible.role: Accessible.AlertMessage
    }
    PanelText {
        Layout.fillWidth: true
        text: body.recording?.report ?? ""
        small: true
        secondary: true
    }
    SectionLabel { text: qsTr("Name") }
    PanelField {
        id: packName
        Layout.fillWidth: true
        text: qsTr("My Keyboard")
        maximumLength: 60
        Accessible.name: qsTr("Name of the pack")
        Component.onCompleted: {
            forceActiveFocus();
            selectAll();
        }
        onAccepted: keep.clicked()
    }
    RowLayout {
        Layout.fillWidth: true

        PanelButton {
            text: qsTr("Listen")
            symbol: "play"
            onClicked: body.recording.listen()
        }
        PanelButton {
            text: qsTr("Type More")
            onClicked: body.recording.typeMore()
        }
        Item { Layout.fillWidth: true }
        PanelButton {
            id: keep
            text: qsTr("Keep")
            prominent: true
            enabled: packName.text.trim() !== ""
            onClicked: body.recording.keep(packName.text)
        }
    }
}
