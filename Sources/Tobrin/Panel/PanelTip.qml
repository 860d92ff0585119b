// What a control means or shows in full, beside it while the pointer or the keyboard rests there.
// Nothing of it exists before.
import QtQuick
import QtQuick.Templates as T
import Tobrin

Item {
    id: tip

    property string text: ""
    property bool shown: false
    property Item over: parent
    property int delay: 500 // milliseconds
    property bool above: false

    Loader {
        active: tip.shown && tip.text !== ""
        sourceComponent: T.ToolTip {
            id: bubble

            parent: tip.over
            visible: true
            delay: tip.delay
            margins: Theme.unit
            padding: Theme.unit * 1.5
            x: tip.above ? (parent.width - width) / 2 : 0
            y: tip.above ? -height - Theme.unit : parent.height + Theme.unit
            width: Math.min(implicitContentWidth + 2 * padding, Theme.panelWidth - 4 * Theme.margin)
            height: contentItem.implicitHeight + 2 * padding
            closePolicy: T.Popup.NoAutoClose
            text: tip.text

            background: Rectangle {
                radius: Theme.radius * 0.5
                color: Theme.surface
                border.color: Theme.edge
            }
            contentItem: ShortText {
                text: bubble.text
                small: true
                lines: 12
                Accessible.ignored: true
            }
        }
    }
}
