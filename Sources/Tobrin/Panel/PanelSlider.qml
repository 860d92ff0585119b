// A slider that moves with the mouse, the keyboard and the wheel of a pointer that was moved onto
// it; a page that scrolls by under a resting pointer changes nothing. Shows its value while it
// moves, and says when it has come to rest.
import QtQuick
import QtQuick.Templates as T
import Tobrin

T.Slider {
    id: control

    property string label: ""
    property string valueText: "" // the value as a person reads it
    readonly property int pageSteps: 4
    signal rested

    implicitWidth: Theme.textSize * 10
    implicitHeight: Math.round(Theme.textSize * 1.8)
    stepSize: (to - from) / 20
    snapMode: T.Slider.NoSnap
    wheelEnabled: pointer.came
    Accessible.name: label
    Accessible.description: valueText
    onMoved: rest.restart()
    onPressedChanged: if (!pressed && rest.running) rest.end()
    Keys.onPressed: event => {
        const targets = { [Qt.Key_Home]: from, [Qt.Key_End]: to,
                          [Qt.Key_PageUp]: value + pageSteps * stepSize,
                          [Qt.Key_PageDown]: value - pageSteps * stepSize };
        if (targets[event.key] === undefined)
            return;
        event.accepted = true;
        value = Math.max(from, Math.min(to, targets[event.key]));
        moved();
    }

    Timer {
        id: rest
        interval: 400
        onTriggered: if (!control.pressed) control.rested()

        function end() {
            stop();
            control.rested();
        }
    }
    HoverHandler {
        id: pointer

        property bool came: false
        property point entered

        onHoveredChanged: {
            came = false;
            entered = point.scenePosition;
        }
        onPointChanged: if (hovered && point.scenePosition !== entered) came = true
    }
    PanelTip {
        over: control.handle
        above: true
        shown: control.pressed || rest.running
        delay: 0
        text: control.valueText
    }

    background: Rectangle {
        y: (control.height - height) / 2
        width: control.width
        height: 4
        radius: 2
        color: Theme.control

        Rectangle {
            readonly property real filled: control.position * parent.width

            x: control.mirrored ? parent.width - filled : 0
            width: filled
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
        color: control.pressed ? Theme.pressed : control.hovered ? Theme.hover : Theme.surface
        border.width: control.hovered || control.pressed ? 2 : 1
        border.color: control.hovered || control.pressed ? Theme.accent : Theme.edge
        FocusRing { control: control }
    }
}
