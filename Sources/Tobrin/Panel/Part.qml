// What is not always there takes neither room nor memory while it is not.
import QtQuick
import QtQuick.Layouts

Loader {
    property bool shown: false
    property alias content: part.sourceComponent

    id: part
    Layout.fillWidth: true
    active: shown
    visible: shown
}
