// What is done with the program as a whole.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: footer

    required property PanelModel model

    spacing: Theme.inset

    Hairline { color: Theme.outline }
    PackWork {
        Layout.fillWidth: true
        shelf: footer.model.shelf
    }
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
        PanelButton {
            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth
            text: qsTr("Add Pack…")
            hint: qsTr("Packs, archives and folders can also be dropped on this panel.")
            onClicked: footer.model.shelf.choose()
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
