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
        columns: Math.max(1, Math.min(3, Math.floor(width / (Theme.textSize * 6))))
        columnSpacing: Theme.gap
        rowSpacing: Theme.gap

        Repeater {
            id: tiles
            model: section.model.packs

            PackTile {
                required property var modelData

                Layout.fillHeight: true
                // Columns of one width, however wide the names are and the panel is.
                Layout.fillWidth: true
                Layout.minimumWidth: 0
                Layout.preferredWidth: 1
                // The document's own ids are in reach of a delegate, though the linter doubts it.
                pack: modelData
                selected: modelData.id === section.model.selectedPackID // qmllint disable unqualified
                onChosen: section.model.select(modelData.id) // qmllint disable unqualified
            }
        }
        // Few packs are as wide as many.
        Repeater {
            model: Math.max(0, grid.columns - tiles.count)

            Item {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
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
