// What is done with the program as a whole.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: footer

    required property PanelModel model

    spacing: Theme.inset

    Hairline { color: Theme.outline }
    WarningLine {
        Layout.fillWidth: true
        text: footer.model.packsFolderProblem
    }
    RowLayout {
        Layout.fillWidth: true

        PanelButton {
            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth
            text: qsTr("Packs Folder…")
            onClicked: footer.model.openPacksFolder()
        }
        Item { Layout.fillWidth: true }
        PanelButton {
            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth
            text: qsTr("Quit")
            onClicked: footer.model.quit()
        }
    }
}
