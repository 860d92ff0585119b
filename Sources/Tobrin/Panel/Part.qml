// A part that is not always shown: while hidden it takes neither room nor memory.
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
