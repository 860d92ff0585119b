// One line of a list that can be shortened: a name, with a picture where there is one, and a button
// that takes it out.
import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Tobrin

RowLayout {
    id: row

    required property string name
    required property string removal // what the button does
    property string icon: ""

    signal removed()

    Layout.fillWidth: true
    spacing: Theme.gap

    Image {
        readonly property int side: Math.round(Theme.textSize * 1.5)

        visible: row.icon !== ""
        Layout.preferredWidth: side
        Layout.preferredHeight: side
        sourceSize { width: side * Screen.devicePixelRatio; height: side * Screen.devicePixelRatio }
        source: row.icon === "" ? "" : "image://app/" + encodeURIComponent(row.icon)
        Accessible.ignored: true
    }
    ShortText {
        Layout.fillWidth: true
        text: row.name
    }
    PanelButton {
        symbol: "close"
        hint: row.removal
        Accessible.name: row.removal
        onClicked: row.removed()
    }
}
