// What does not work, in a sentence; takes no room while all is well.
import QtQuick
import QtQuick.Layouts
import Tobrin

Part {
    id: line

    property string text: ""

    shown: text !== ""
    content: RowLayout {
        spacing: Theme.unit * 1.5

        Symbol {
            Layout.alignment: Qt.AlignTop
            name: "warning"
            color: Theme.warning
        }
        PanelText {
            Layout.fillWidth: true
            // However long: the lines follow from the width, and not the other way round.
            Layout.preferredWidth: 1
            text: line.text
            small: true
            color: Theme.warning
            Accessible.role: Accessible.AlertMessage
        }
    }
}
