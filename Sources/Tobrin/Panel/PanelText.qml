// A text of the panel: wraps rather than being cut off.
import QtQuick
import Tobrin

Text {
    property bool secondary: false
    property bool small: false

    color: secondary ? Theme.secondaryText : Theme.text
    font.pixelSize: small ? Theme.smallText : Theme.textSize
    wrapMode: Text.Wrap
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
