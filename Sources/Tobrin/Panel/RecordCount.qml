// How many good sounds of one kind there are, of those that are wanted.
import QtQuick
import QtQuick.Layouts
import Tobrin

RowLayout {
    id: count

    property string title: ""
    property int have: 0
    property int wanted: 1
    property bool current: false

    Accessible.role: Accessible.ProgressBar
    Accessible.name: qsTr("%1: %2 of %3").arg(title).arg(have).arg(wanted)

    PanelText {
        Layout.fillWidth: true
        text: count.title
        small: true
        font.weight: count.current ? Font.DemiBold : Font.Normal
        color: count.current ? Theme.text : Theme.secondaryText
        Accessible.ignored: true
    }
    PanelText {
        text: count.have >= count.wanted ? "✓" : count.have + "/" + count.wanted
        small: true
        color: count.have >= count.wanted ? Theme.accent : Theme.secondaryText
        Accessible.ignored: true
    }
}
