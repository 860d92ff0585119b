// How hard the last key was struck, on a scale of 0 to 4 times a typical keystroke.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: meter

    required property PanelModel reading
    readonly property real fullScale: 4

    spacing: Theme.unit

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: Math.round(Theme.textSize * 0.6)
        radius: height / 2
        color: Theme.control
        Accessible.role: Accessible.ProgressBar
        Accessible.name: caption.text

        Rectangle {
            width: meter.reading.hasReading ? parent.width * Math.min(1, Math.max(0, meter.reading.readingRelative / meter.fullScale)) : 0
            height: parent.height
            radius: height / 2
            color: Theme.tierColors[meter.reading.readingTier]
            Behavior on width { NumberAnimation { duration: 120; easing.type: Easing.OutCubic } }
            Behavior on color { ColorAnimation { duration: 120 } }
        }
    }
    PanelText {
        id: caption
        Layout.fillWidth: true
        text: meter.reading.hasReading ? meter.reading.readingCaption : "Type to see how hard you hit"
        small: true
        secondary: true
    }
}
