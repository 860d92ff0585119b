// A text of the panel: wraps rather than being cut off. It begins at the side where the panel's own
// language begins, whatever language it is in.
import QtQuick
import Tobrin

Text {
    property bool secondary: false
    property bool small: false

    color: secondary ? Theme.secondaryText : Theme.text
    font.pixelSize: small ? Theme.smallText : Theme.textSize
    wrapMode: Text.Wrap
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignLeft // mirrored where the panel is
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
