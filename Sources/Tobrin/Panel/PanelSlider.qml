// A slider that moves with the mouse, the arrow keys and, once it is in use, the wheel.
import QtQuick
import QtQuick.Templates as T
import Tobrin

T.Slider {
    id: control

    property string label: ""

    implicitWidth: Theme.textSize * 10
    implicitHeight: Math.round(Theme.textSize * 1.8)
    stepSize: (to - from) / 20
    snapMode: T.Slider.NoSnap
    wheelEnabled: activeFocus // else the wheel scrolls the panel
    Accessible.name: label

    background: Rectangle {
        x: 0
        y: (control.height - height) / 2
        width: control.width
        height: 4
        radius: 2
        color: Theme.control

        Rectangle {
            width: control.visualPosition * parent.width
            height: parent.height
            radius: 2
            color: Theme.accent
        }
    }
    handle: Rectangle {
        x: control.visualPosition * (control.width - width)
        y: (control.height - height) / 2
        width: 2 * Math.round(Theme.textSize * 0.62)  // an even size is drawn round
        height: width
        radius: width / 2
        color: "#ffffff"
        border.color: Theme.dark ? "#00000000" : Theme.control
        FocusRing { control: control; radius: parent.radius + 4 }
    }
}
