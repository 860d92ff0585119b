// Sounds of the mouse.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: section

    required property MoreModel more
    readonly property string note: !more.canHearMouse ? qsTr("Here Tobrin hears keyboards alone, and no mouse.")
                                   : more.mouseSounds && !more.packHasMouse ? qsTr("The chosen pack has no sounds for a mouse.")
                                   : ""

    Layout.fillWidth: true
    spacing: Theme.unit * 1.5

    SectionLabel { text: qsTr("Mouse") }
    Card {
        Part {
            shown: section.more.canHearMouse
            content: ColumnLayout {
                spacing: 0

                PanelSwitch {
                    Layout.fillWidth: true
                    text: qsTr("Mouse buttons sound")
                    checked: section.more.mouseSounds
                    onToggled: section.more.mouseSounds = checked
                }
                Hairline { }
                PanelSwitch {
                    Layout.fillWidth: true
                    text: qsTr("The wheel sounds, too")
                    enabled: section.more.mouseSounds
                    checked: section.more.wheelSounds
                    onToggled: section.more.wheelSounds = checked
                }
            }
        }
        PanelText {
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit
            Layout.bottomMargin: Theme.unit
            visible: text !== ""
            text: section.note
            small: true
            secondary: true
        }
    }
}
