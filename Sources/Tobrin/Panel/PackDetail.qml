// Details of the selected pack, or why it does not play. Every pack gets the same room, so that the
// page stands still while packs are tried one after the other.
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
        ShortText {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            Layout.minimumHeight: title.lineHeight + summary.reserved + origin.lineHeight
            text: detail.model.packError
            lines: 5
            color: Theme.warning
            Accessible.role: Accessible.AlertMessage
        }
        Part {
            Layout.fillWidth: false
            Layout.alignment: Qt.AlignTop
            shown: detail.fails && detail.pack.name !== undefined
            content: PanelButton {
                text: qsTr("Try Again")
                onClicked: detail.model.select(detail.model.selectedPackID)
            }
        }
    }
    ShortText {
        id: title
        Layout.fillWidth: true
        visible: detail.hasPack
        text: detail.hasPack ? detail.pack.name + " · " + detail.pack.kind : ""
        font.weight: Font.DemiBold
    }
    ShortText {
        id: summary

        // As many lines as the longest summary of all packs takes, three at most.
        readonly property int reservedLines: {
            const longest = detail.model.packs.reduce((most, pack) => Math.max(most, metrics.advanceWidth(pack.summary)), 0);
            return Math.max(1, Math.min(lines, Math.ceil(longest * 1.1 / Math.max(1, width))));
        }
        readonly property real reserved: reservedLines * lineHeight

        Layout.fillWidth: true
        Layout.preferredWidth: 1
        Layout.minimumHeight: reserved
        visible: detail.hasPack
        text: detail.hasPack ? detail.pack.summary : ""
        lines: 3
        small: true
    }
    ShortText {
        id: origin
        Layout.fillWidth: true
        Layout.preferredWidth: 1
        Layout.minimumHeight: lineHeight
        visible: detail.hasPack
        text: detail.hasPack ? detail.pack.origin : ""
        small: true
        secondary: true

        HoverHandler { id: pointer }
        PanelTip {
            shown: pointer.hovered && origin.truncated
            text: origin.text
        }
    }
}
