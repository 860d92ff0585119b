// One of the panel's drawn symbols, in the colour of the text next to it.
import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Tobrin

Image {
    id: symbol

    required property string name
    property color color: Theme.text
    property real size: Math.round(Theme.textSize * 1.4)

    width: size
    height: size
    Layout.preferredWidth: size // not the picture's own, which is that of the screen's dots
    Layout.preferredHeight: size
    readonly property real pixels: Math.ceil(size * Screen.devicePixelRatio)
    sourceSize.width: pixels
    sourceSize.height: pixels
    source: name === "" ? "" : "image://symbol/" + name + "/" + color.toString().substring(1)
    Accessible.ignored: true
}
