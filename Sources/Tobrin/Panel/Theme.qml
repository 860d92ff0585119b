// Colours, distances and type sizes of the panel, in one place. Light or dark, high contrast and
// less motion are decided outside. A test holds the contrasts.
pragma Singleton
import QtQuick

QtObject {
    id: theme

    property bool dark: false
    property bool highContrast: false
    property bool reducedMotion: false
    // The desktop's own text size; everything else follows from it, so that nothing is cut off.
    property real textSize: Math.max(11, metrics.font.pixelSize)
    readonly property TextMetrics metrics: TextMetrics { }

    readonly property color background: pick("#f1f1f5", "#18181c", "#ffffff", "#000000")
    readonly property color surface: pick("#ffffff", "#232329", "#ffffff", "#000000")
    readonly property color text: pick("#1a1a1f", "#f3f3f6", "#000000", "#ffffff")
    readonly property color secondaryText: pick("#5a5a67", "#a9a9b7", "#262626", "#e0e0e0")
    // Parts of a control that must be seen to use it: its edge, its groove, its state.
    readonly property color edge: pick("#868692", "#7b7b89", "#333333", "#cccccc")
    readonly property color control: pick("#81818d", "#7d7d8b", "#595959", "#a6a6a6")
    readonly property color accent: pick("#524ed6", "#8f8bff", "#2a26b0", "#b3b0ff")
    readonly property color accentInk: pick("#ffffff", "#14141a", "#ffffff", "#000000")
    readonly property color accentTint: pick("#eeedfc", "#2b2a47", "#e8e7ff", "#23224a")
    readonly property color focus: text
    readonly property color groove: pick("#ebebf1", "#2f2f38", "#ffffff", "#000000")
    readonly property color hover: pick("#f0f0f6", "#2f2f38", "#ebebeb", "#262626")
    readonly property color pressed: pick("#e2e2ea", "#3a3a45", "#d6d6d6", "#3a3a3a")
    readonly property color warning: pick("#8f4b00", "#ffb454", "#7a3f00", "#ffc670")
    readonly property color warningTint: pick("#fff3de", "#33291a", "#ffffff", "#000000")
    readonly property var tierColors: pick(["#2f7fc4", "#1f8a55", "#b86a00", "#d8343b"],
                                           ["#5cb3f2", "#5ccf95", "#f7b955", "#ff6b70"],
                                           ["#0f5fa5", "#0b6b3c", "#8f4f00", "#b3161d"],
                                           ["#7cc6ff", "#6fe3a8", "#ffc75f", "#ff8a8e"])
    // Only decoration: the groups are clear without it.
    readonly property color outline: pick("#dfdfe7", "#34343d", "#333333", "#cccccc")
    readonly property color hairline: pick("#ededf2", "#2e2e36", "#808080", "#808080")
    readonly property var tierNames: [qsTr("Soft"), qsTr("Medium"), qsTr("Hard"), qsTr("Slam")]

    readonly property real smallText: Math.round(textSize * 0.88)
    readonly property real titleText: Math.round(textSize * 1.4)
    readonly property real unit: Math.round(textSize * 0.32)
    readonly property real gap: unit * 2
    readonly property real inset: unit * 3
    readonly property real margin: unit * 4
    readonly property real radius: Math.round(textSize * 0.75)
    readonly property real rowHeight: Math.round(textSize * 2.75)
    readonly property real panelWidth: Math.round(textSize * 30)
    readonly property int quick: reducedMotion ? 0 : 120 // milliseconds of a change that is shown

    function pick(light, dark, contrastLight, contrastDark) {
        if (highContrast)
            return theme.dark ? contrastDark : contrastLight;
        return theme.dark ? dark : light;
    }
}
