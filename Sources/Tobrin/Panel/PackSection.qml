// The packs: a grid to choose from, and what is known of the chosen one.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: section

    required property PanelModel model

    spacing: Theme.gap

    RowLayout {
        Layout.fillWidth: true

        SectionLabel {
            Layout.fillWidth: true
            text: "Sound"
        }
        PanelButton {
            text: "Preview"
            symbol: "play"
            onClicked: section.model.preview()
        }
    }
    GridLayout {
        Layout.fillWidth: true
        visible: tiles.count > 0
        columns: 3
        columnSpacing: Theme.gap
        rowSpacing: Theme.gap

        Repeater {
            id: tiles
            model: section.model.packs

            PackTile {
                required property var modelData

                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                pack: modelData
                selected: modelData.id === section.model.selectedPackID
                onChosen: section.model.select(modelData.id)
            }
        }
    }
    PackDetail {
        Layout.fillWidth: true
        Layout.topMargin: Theme.unit
        Layout.leftMargin: Theme.unit / 2
        model: section.model
    }
}
