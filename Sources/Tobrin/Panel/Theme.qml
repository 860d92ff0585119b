// Colours, distances and type sizes of the panel, in one place. Light or dark is decided outside.
pragma Singleton
import QtQuick

QtObject {
    id: theme

    property bool dark: false
    // The desktop's own text size; everything else follows from it, so that nothing is cut off.
    property real textSize: Math.max(11, metrics.font.pixelSize)
    readonly property TextMetrics metrics: TextMetrics {
        font: Qt.application.font
    }

    readonly property color background: dark ? "#1b1b1f" : "#f4f4f7"
    readonly property color surface: dark ? "#26262c" : "#ffffff"
    readonly property color outline: dark ? "#3a3a43" : "#dedee6"
    readonly property color text: dark ? "#f3f3f6" : "#1b1b20"
    readonly property color secondaryText: dark ? "#a9a9b6" : "#5f5f6b"
    readonly property color accent: dark ? "#8f8bff" : "#5450d8"
    readonly property color onAccent: dark ? "#14141a" : "#ffffff"
    readonly property color control: dark ? "#4a4a55" : "#c4c4cf"
    readonly property color hover: dark ? "#2f2f37" : "#ececf2"
    readonly property color warning: dark ? "#ffb454" : "#a85b00"
    readonly property var tierColors: dark ? ["#5cb3f2", "#5ccf95", "#f7b955", "#ff6b70"]
                                           : ["#2f86cf", "#2a9a63", "#d98512", "#d8343b"]
    readonly property var tierNames: ["Soft", "Medium", "Hard", "Slam"]

    readonly property real smallText: Math.round(textSize * 0.86)
    readonly property real titleText: Math.round(textSize * 1.35)
    readonly property real unit: Math.round(textSize * 0.32)
    readonly property real gap: unit * 2
    readonly property real margin: unit * 4
    readonly property real radius: Math.round(textSize * 0.75)
    readonly property real panelWidth: Math.round(textSize * 27)
}
