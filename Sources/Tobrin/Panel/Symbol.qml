// One of the panel's drawn symbols, in the colour of the text beside it.
import QtQuick
import QtQuick.Window
import Tobrin

Image {
    id: symbol

    required property string name
    property color color: Theme.text
    property real size: Math.round(Theme.textSize * 1.2)

    width: size
    height: size
    readonly property real pixels: Math.ceil(size * Screen.devicePixelRatio)
    sourceSize: Qt.size(pixels, pixels)
    source: name === "" ? "" : "image://symbol/" + name + "/" + color.toString().substring(1)
    Accessible.ignored: true
}
