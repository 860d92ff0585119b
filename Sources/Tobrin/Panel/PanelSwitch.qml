// An on-off switch with its label at the left and the switch at the right.
import QtQuick
import QtQuick.Templates as T
import Tobrin

T.Switch {
    id: control

    property bool labelHidden: false

    implicitWidth: labelHidden ? indicator.implicitWidth : Math.max(implicitContentWidth + indicator.width + Theme.gap, 100)
    implicitHeight: labelHidden ? indicator.implicitHeight : Math.max(implicitContentHeight + Theme.unit, Theme.rowHeight)
    Accessible.name: text
    Accessible.onPressAction: flip()
    Accessible.onToggleAction: flip()

    // As by a click: assistive programs would change what is shown and nothing else.
    function flip() {
        toggle();
        toggled();
    }

    indicator: Rectangle {
        implicitWidth: Math.round(Theme.textSize * 2.5)
        implicitHeight: 2 * Math.round(Theme.textSize * 0.72)
        x: control.width - width
        y: (control.height - height) / 2
        radius: height / 2
        color: control.checked ? Theme.accent : Theme.control
        Behavior on color { ColorAnimation { duration: 120 } }

        Rectangle {
            readonly property real inset: 2
            x: control.checked ? parent.width - width - inset : inset
            y: inset
            width: parent.height - 2 * inset
            height: width
            radius: width / 2
            color: "#ffffff"
            Behavior on x { NumberAnimation { duration: 120; easing.type: Easing.OutCubic } }
        }
        FocusRing { control: control; radius: parent.radius + 4 }
    }
    contentItem: PanelText {
        text: control.labelHidden ? "" : control.text
        rightPadding: control.indicator.width + Theme.gap
        verticalAlignment: Text.AlignVCenter
        opacity: control.enabled ? 1 : 0.5
        Accessible.ignored: true
    }
}
