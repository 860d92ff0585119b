// Between typing and listening.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    property RecordingModel recording: null

    PanelText {
        Layout.fillWidth: true
        Layout.topMargin: Theme.rowHeight
        Layout.bottomMargin: Theme.rowHeight
        text: qsTr("Making your pack…")
        horizontalAlignment: Text.AlignHCenter
        Accessible.role: Accessible.AlertMessage
    }
}
