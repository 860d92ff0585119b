// What a control means or shows in full, beside it while the pointer or the keyboard rests there.
import QtQuick
import QtQuick.Templates as T
import Tobrin

T.ToolTip {
    id: tip

    delay: 500
    margins: Theme.unit
    padding: Theme.unit * 1.5
    y: parent.height + Theme.unit
    width: Math.min(implicitContentWidth + 2 * padding, Theme.panelWidth - 4 * Theme.margin)
    height: contentItem.implicitHeight + 2 * padding
    closePolicy: T.Popup.NoAutoClose

    background: Rectangle {
        radius: Theme.radius * 0.5
        color: Theme.surface
        border.color: Theme.edge
    }
    contentItem: ShortText {
        text: tip.text
        small: true
        lines: 12
        Accessible.ignored: true
    }
}
