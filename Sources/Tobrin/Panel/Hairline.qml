// Separates the rows of a card.
import QtQuick
import QtQuick.Layouts
import Tobrin

Rectangle {
    Layout.fillWidth: true
    implicitHeight: 1
    color: Theme.hairline
    Accessible.ignored: true
}
