// How hard the last key was struck, on a scale of 0 to 4 times a typical keystroke.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: meter

    required property PanelModel reading
    readonly property int fullScale: 4

    spacing: Theme.unit * 1.5

    Rectangle {
        id: track
        Layout.fillWidth: true
        implicitHeight: Math.round(Theme.textSize * 0.66)
        radius: height / 2
        color: Theme.groove
        border.color: Theme.edge
        Accessible.role: Accessible.ProgressBar
        Accessible.name: caption.text
        Accessible.description: meter.reading.hasReading ? Theme.tierNames[meter.reading.readingTier] : ""

        Rectangle {
            readonly property real filled: Math.min(1, Math.max(0, meter.reading.readingRelative / meter.fullScale))

            anchors.left: parent.left // mirrored where the panel is
            // Never narrower than its own round ends.
            width: meter.reading.hasReading ? height + filled * (parent.width - height) : 0
            height: parent.height
            radius: height / 2
            color: Theme.tierColors[meter.reading.readingTier]
            Behavior on width { NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic } }
            Behavior on color { ColorAnimation { duration: Theme.quick } }
        }
        Repeater {
            model: meter.fullScale - 1

            Rectangle {
                required property int index

                // The document's own ids are in reach of a delegate, though the linter doubts it.
                x: Math.round((index + 1) / meter.fullScale * track.width)
                width: 1
                height: track.height
                color: Theme.surface
            }
        }
    }
    PanelText {
        id: caption
        Layout.fillWidth: true
        text: meter.reading.hasReading ? meter.reading.readingCaption : qsTr("Type to see how hard you hit")
        small: true
        secondary: true
    }
}
