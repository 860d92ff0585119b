// A rounded, tinted container for grouped content, laid out from top to bottom.
import QtQuick
import QtQuick.Layouts
import Tobrin

Rectangle {
    id: card

    property color tint: Theme.surface
    default property alias content: column.data

    Layout.fillWidth: true
    implicitHeight: column.implicitHeight + 2 * Theme.gap * 1.5
    radius: Theme.radius
    color: tint
    border.width: 1
    border.color: Theme.outline

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: Theme.gap * 1.5
        spacing: Theme.gap
    }
}
