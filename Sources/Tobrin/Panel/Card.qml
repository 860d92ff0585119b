// A rounded, tinted container for grouped content, laid out from top to bottom.
import QtQuick
import QtQuick.Layouts
import Tobrin

Rectangle {
    id: card

    property color tint: Theme.surface
    property alias spacing: column.spacing
    default property alias content: column.data

    Layout.fillWidth: true
    implicitHeight: column.implicitHeight + 2 * Theme.unit
    radius: Theme.radius
    color: tint
    border.width: 1
    border.color: Theme.outline

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.leftMargin: Theme.inset
        anchors.rightMargin: Theme.inset
        anchors.topMargin: Theme.unit
        anchors.bottomMargin: Theme.unit
        spacing: 0
    }
}
