// The packs: a grid to choose from, and what is known of the chosen one.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: section

    required property PanelModel model
    readonly property var pack: model.selectedPack

    spacing: Theme.gap

    RowLayout {
        Layout.fillWidth: true

        SectionLabel {
            Layout.fillWidth: true
            text: qsTr("Sound")
        }
        Part {
            Layout.fillWidth: false
            Layout.fillHeight: true
            shown: section.pack.own ?? false
            content: PanelButton {
                symbol: "trash"
                hint: qsTr("Move %1 to the trash").arg(section.pack.name ?? "")
                Accessible.name: hint
                Accessible.description: ""
                onClicked: section.model.shelf.remove(section.model.selectedPackID)
            }
        }
        Item {
            implicitWidth: preview.implicitWidth
            implicitHeight: preview.implicitHeight

            // A disabled button does not notice the pointer.
            HoverHandler { id: pointer }
            PanelTip {
                shown: pointer.hovered
                text: preview.hint
            }
            PanelButton {
                id: preview
                text: qsTr("Preview")
                symbol: "play"
                hint: section.model.previewProblem
                enabled: hint === ""
                onClicked: section.model.preview()
            }
        }
    }
    PackGrid {
        Layout.fillWidth: true
        model: section.model
    }
    PackDetail {
        Layout.fillWidth: true
        Layout.topMargin: Theme.unit
        Layout.leftMargin: Theme.unit / 2
        model: section.model
    }
    PanelButton {
        text: qsTr("Record Your Keyboard…")
        hint: qsTr("Makes a pack of the keyboard under your hands, with a microphone.")
        enabled: section.model.hasPermission
        onClicked: section.model.recording.begin()
    }
}
