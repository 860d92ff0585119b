// When Tobrin is quiet, and when it hides what is typed.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: section

    required property MoreModel more

    Layout.fillWidth: true
    spacing: Theme.unit * 1.5

    SectionLabel { text: qsTr("Quiet") }
    Card {
        PanelSwitch {
            Layout.fillWidth: true
            text: qsTr("Quiet while the screen is locked")
            enabled: section.more.hearsWhileLocked
            checked: section.more.quietWhileLocked || !enabled
            onToggled: section.more.quietWhileLocked = checked
        }
        Part {
            Layout.rightMargin: Theme.inset
            Layout.bottomMargin: Theme.gap
            shown: !section.more.hearsWhileLocked
            content: PanelText {
                text: qsTr("Here Tobrin isn't told what is typed while the screen is locked. Only an administrator can change that.")
                small: true
                secondary: true
            }
        }
        Hairline { }
        PanelSwitch {
            Layout.fillWidth: true
            text: qsTr("Mask keys while the sound is recorded")
            checked: section.more.maskWhileRecorded
            onToggled: section.more.maskWhileRecorded = checked
            Accessible.description: maskNote.text
        }
        PanelText {
            id: maskNote
            Layout.fillWidth: true
            Layout.rightMargin: Theme.inset
            Layout.bottomMargin: Theme.gap
            text: qsTr("Each key then gets the sound of another, so that a recording does not tell what you type.")
            small: true
            secondary: true
        }
    }
}
