// How loud the microphone is now, from 60 dB below full scale up to it.
import QtQuick
import Tobrin

Rectangle {
    id: meter

    property real level: 0

    implicitHeight: Math.round(Theme.textSize * 0.66)
    radius: height / 2
    color: Theme.groove
    border.color: Theme.edge
    Accessible.role: Accessible.ProgressBar
    Accessible.name: qsTr("Level of the microphone")

    Rectangle {
        anchors.left: parent.left // mirrored where the panel is
        width: height + meter.level * (parent.width - height)
        height: parent.height
        radius: height / 2
        color: meter.level > 0.97 ? Theme.tierColors[3] : Theme.accent
        Behavior on width { NumberAnimation { duration: Theme.quick } }
    }
}
