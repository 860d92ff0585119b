// A text that somebody else wrote, a pack's for instance: so many lines and no more, then an
// ellipsis.
import QtQuick
import Tobrin

PanelText {
    id: shortText

    property int lines: 1
    readonly property real lineHeight: metrics.height
    readonly property FontMetrics metrics: FontMetrics { font: shortText.font }

    maximumLineCount: lines
    elide: Text.ElideRight
    wrapMode: lines > 1 ? Text.Wrap : Text.NoWrap
}
