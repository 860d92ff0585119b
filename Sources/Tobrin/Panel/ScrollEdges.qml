// Says of something that scrolls that there is more above or below: its content fades into a line.
import QtQuick
import Tobrin

Item {
    id: edges

    required property Flickable target
    property color color: Theme.background

    parent: target
    anchors.fill: parent
    z: 2

    component Edge: Rectangle {
        required property bool up

        width: edges.width
        height: Math.round(Theme.textSize)
        y: up ? 0 : edges.height - height
        gradient: Gradient {
            GradientStop { position: up ? 0 : 1; color: edges.color }
            GradientStop { position: up ? 1 : 0; color: Qt.rgba(edges.color.r, edges.color.g, edges.color.b, 0) }
        }
        Hairline {
            width: parent.width
            y: parent.up ? 0 : parent.height - height
            color: Theme.edge
        }
    }

    Edge { up: true; visible: !edges.target.atYBeginning }
    Edge { up: false; visible: !edges.target.atYEnd }
}
