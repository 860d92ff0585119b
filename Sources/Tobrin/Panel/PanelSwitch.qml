// An on-off switch with its label at one end and the switch at the other.
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
    Keys.onReturnPressed: flip()
    Keys.onEnterPressed: flip()

    // As by a click: assistive programs would change what is shown and nothing else.
    function flip() {
        toggle();
        toggled();
    }

    indicator: Rectangle {
        readonly property real inset: 2

        implicitWidth: Math.round(Theme.textSize * 2.5)
        implicitHeight: 2 * Math.round(Theme.textSize * 0.72)
        x: control.mirrored ? 0 : control.width - width
        y: (control.height - height) / 2
        radius: height / 2
        color: control.checked ? Theme.accent : Theme.control
        border.width: control.hovered ? 2 : 0
        border.color: control.checked ? Theme.text : Theme.edge
        opacity: control.down ? 0.85 : 1
        Behavior on color { ColorAnimation { duration: Theme.quick } }

        Rectangle {
            x: control.checked !== control.mirrored ? parent.width - width - parent.inset : parent.inset
            y: parent.inset
            width: parent.height - 2 * parent.inset
            height: width
            radius: width / 2
            color: control.checked ? Theme.accentInk : Theme.surface
            Behavior on x { NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic } }
        }
        FocusRing { control: control }
    }
    contentItem: PanelText {
        text: control.labelHidden ? "" : control.text
        leftPadding: control.mirrored ? control.indicator.width + Theme.gap : 0
        rightPadding: control.mirrored ? 0 : control.indicator.width + Theme.gap
        verticalAlignment: Text.AlignVCenter
        opacity: control.enabled ? 1 : 0.5
        Accessible.ignored: true
    }
}
