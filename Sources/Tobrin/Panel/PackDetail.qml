// Details of the selected pack, or why it does not play.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: detail

    required property PanelModel model
    readonly property var pack: model.selectedPack
    readonly property bool fails: model.packError !== ""
    readonly property bool hasPack: pack.name !== undefined && !fails

    spacing: Theme.unit * 0.75

    RowLayout {
        visible: detail.fails
        spacing: Theme.unit * 1.5

        Symbol {
            Layout.alignment: Qt.AlignTop
            name: "warning"
            color: Theme.warning
        }
        PanelText {
            Layout.fillWidth: true
            text: detail.model.packError
            color: Theme.warning
            Accessible.role: Accessible.AlertMessage
        }
    }
    PanelText {
        Layout.fillWidth: true
        visible: detail.hasPack
        text: detail.hasPack ? detail.pack.name + " · " + detail.pack.kind : ""
        font.weight: Font.DemiBold
    }
    PanelText {
        Layout.fillWidth: true
        visible: text !== ""
        text: detail.hasPack ? detail.pack.summary : ""
        small: true
    }
    PanelText {
        Layout.fillWidth: true
        visible: text !== ""
        text: detail.hasPack ? [detail.pack.author, detail.pack.license].filter(each => each).join(" · ") : ""
        small: true
        secondary: true
        maximumLineCount: 4
        elide: Text.ElideRight
    }
}
