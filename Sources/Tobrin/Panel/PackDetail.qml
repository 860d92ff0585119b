// Details of the selected pack, or why it does not play.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: detail

    required property PanelModel model
    readonly property var pack: model.selectedPack
    readonly property bool hasPack: pack.name !== undefined

    spacing: Theme.unit

    PanelText {
        Layout.fillWidth: true
        visible: detail.model.packError !== ""
        text: detail.model.packError
        color: Theme.warning
        Accessible.role: Accessible.AlertMessage
    }
    PanelText {
        Layout.fillWidth: true
        visible: detail.hasPack && detail.model.packError === ""
        text: detail.hasPack ? detail.pack.name + " · " + detail.pack.kind : ""
        font.weight: Font.DemiBold
    }
    PanelText {
        Layout.fillWidth: true
        visible: text !== "" && detail.model.packError === ""
        text: detail.hasPack ? detail.pack.summary : ""
        small: true
    }
    PanelText {
        Layout.fillWidth: true
        visible: text !== "" && detail.model.packError === ""
        text: detail.hasPack ? [detail.pack.author, detail.pack.license].filter(each => each).join(" · ") : ""
        small: true
        secondary: true
        maximumLineCount: 4
        elide: Text.ElideRight
    }
}
