// Shows that keys are heard: a small keyboard on which each stroke lights its place, brighter and
// in another colour the harder it was. A place stands for several keys, so that nobody who looks on
// can read along.
import QtQuick
import Tobrin

Item {
    id: lights

    required property PanelModel model
    readonly property int columns: 15
    readonly property real gap: 2
    readonly property real keyWidth: (width - (columns - 1) * gap) / columns
    readonly property real keyHeight: Math.round(Theme.textSize * 0.5)
    readonly property real spaceFrom: 4 // in key widths, as the space bar lies
    readonly property real spaceKeys: 5
    readonly property bool seen: Window.visibility !== Window.Hidden && Window.visibility !== Window.Minimized

    implicitHeight: 2 * keyHeight + gap
    Accessible.ignored: true
    LayoutMirroring.enabled: false // keyboards are not mirrored
    LayoutMirroring.childrenInherit: true

    component Light: Rectangle {
        id: light

        property real glow: 0
        property color glowColor: Theme.accent
        readonly property bool seen: lights.seen

        height: lights.keyHeight
        radius: 2
        color: Theme.groove
        border.color: Theme.outline

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: light.glowColor
            opacity: light.glow
        }
        NumberAnimation {
            id: fade
            target: light
            property: "glow"
            to: 0
            duration: 600
            easing.type: Easing.OutQuad
        }
        Timer {
            id: out
            interval: 300
            onTriggered: light.glow = 0
        }

        onSeenChanged: {
            // Stands still while nobody sees it.
            fade.stop();
            out.stop();
            glow = 0;
        }

        function strike(tier, strength) {
            glowColor = Theme.tierColors[tier];
            fade.stop();
            glow = 0.5 + strength / 2;
            if (Theme.reducedMotion)
                out.restart();
            else
                fade.start();
        }
    }

    Repeater {
        id: keys
        model: lights.columns

        Light {
            required property int index

            x: index * (lights.keyWidth + lights.gap)
            width: lights.keyWidth
        }
    }
    Repeater {
        id: bottom
        model: 3 // left of the space bar, the space bar, right of it

        Light {
            required property int index
            readonly property real from: [0, lights.spaceFrom, lights.spaceFrom + lights.spaceKeys][index]
            readonly property real until: [lights.spaceFrom, lights.spaceFrom + lights.spaceKeys, lights.columns][index]

            x: from * (lights.keyWidth + lights.gap)
            y: lights.keyHeight + lights.gap
            width: (until - from) * (lights.keyWidth + lights.gap) - lights.gap
        }
    }
    Connections {
        target: lights.model
        enabled: lights.seen

        function onKeyStruck(column, isBottom, tier, strength) {
            const light = isBottom ? bottom.itemAt(column < lights.spaceFrom ? 0 : column < lights.spaceFrom + lights.spaceKeys ? 1 : 2)
                                   : keys.itemAt(Math.max(0, Math.min(lights.columns - 1, Math.floor(column))));
            light.strike(tier, strength); // qmllint disable
        }
    }
}
