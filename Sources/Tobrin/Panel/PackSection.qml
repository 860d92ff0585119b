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
            enabled: section.model.packError === ""
            onClicked: section.model.preview()
        }
    }
    GridLayout {
        id: grid
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

                Layout.fillHeight: true
                Layout.preferredWidth: (section.width + grid.columnSpacing) / grid.columns - grid.columnSpacing // qmllint disable unqualified
                // The document's own ids are in reach of a delegate, though the linter doubts it.
                pack: modelData
                selected: modelData.id === section.model.selectedPackID // qmllint disable unqualified
                onChosen: section.model.select(modelData.id) // qmllint disable unqualified
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
