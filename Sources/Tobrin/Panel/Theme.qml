// Colours, distances and type sizes of the panel, in one place. Light or dark is decided outside.
pragma Singleton
import QtQuick

QtObject {
    id: theme

    property bool dark: false
    // The desktop's own text size; everything else follows from it, so that nothing is cut off.
    property real textSize: Math.max(11, metrics.font.pixelSize)
    readonly property TextMetrics metrics: TextMetrics { }

    readonly property color background: dark ? "#18181c" : "#f1f1f5"
    readonly property color surface: dark ? "#232329" : "#ffffff"
    readonly property color outline: dark ? "#34343d" : "#dfdfe7"
    readonly property color hairline: dark ? "#2e2e36" : "#ededf2"
    readonly property color text: dark ? "#f3f3f6" : "#1a1a1f"
    readonly property color secondaryText: dark ? "#a6a6b4" : "#5d5d6a"
    readonly property color accent: dark ? "#8a86ff" : "#524ed6"
    readonly property color accentTint: dark ? "#2b2a47" : "#eeedfc"
    readonly property color accentInk: dark ? "#14141a" : "#ffffff"
    readonly property color control: dark ? "#4b4b57" : "#c6c6d1"
    readonly property color groove: dark ? "#2f2f38" : "#ebebf1"
    readonly property color segment: dark ? "#4d4d59" : "#ffffff"
    readonly property color hover: dark ? "#2b2b33" : "#f8f8fb"
    readonly property color warning: dark ? "#ffb454" : "#9a5200"
    readonly property color warningTint: dark ? "#33291a" : "#fff3de"
    readonly property var tierColors: dark ? ["#5cb3f2", "#5ccf95", "#f7b955", "#ff6b70"]
                                           : ["#2f86cf", "#2a9a63", "#d98512", "#d8343b"]
    readonly property var tierNames: ["Soft", "Medium", "Hard", "Slam"]

    readonly property real smallText: Math.round(textSize * 0.88)
    readonly property real titleText: Math.round(textSize * 1.4)
    readonly property real unit: Math.round(textSize * 0.32)
    readonly property real gap: unit * 2
    readonly property real inset: unit * 3
    readonly property real margin: unit * 4
    readonly property real radius: Math.round(textSize * 0.75)
    readonly property real rowHeight: Math.round(textSize * 2.75)
    readonly property real panelWidth: Math.round(textSize * 30)
}
