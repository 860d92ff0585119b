// The switches for how and when Tobrin plays.
import QtQuick
import QtQuick.Layouts
import Tobrin

Card {
    id: section

    required property PanelModel model

    readonly property alias moreButton: moreButton

    PanelSwitch {
        Layout.fillWidth: true
        text: qsTr("Key release sounds")
        checked: section.model.releaseSounds
        onToggled: section.model.releaseSounds = checked
    }
    Hairline { }
    PanelSwitch {
        Layout.fillWidth: true
        text: qsTr("Stereo by key position")
        checked: section.model.stereo
        onToggled: section.model.stereo = checked
    }
    Hairline { }
    PanelSwitch {
        Layout.fillWidth: true
        text: qsTr("Quiet during calls")
        checked: section.model.quietDuringCalls
        onToggled: section.model.quietDuringCalls = checked
        Accessible.description: quietNote.text
    }
    PanelText {
        id: quietNote
        Layout.fillWidth: true
        Layout.rightMargin: Theme.inset
        Layout.bottomMargin: Theme.gap
        text: qsTr("Pause while any app is using the microphone, and resume when it's free. Tobrin never listens to it.")
        small: true
        secondary: true
    }
    Hairline { }
    PanelSwitch {
        id: login
        Layout.fillWidth: true
        text: qsTr("Open at login")
        checked: section.model.launchAtLogin
        onToggled: {
            section.model.launchAtLogin = checked;
            checked = Qt.binding(() => section.model.launchAtLogin);
        }
    }
    WarningLine {
        Layout.fillWidth: true
        Layout.bottomMargin: Theme.gap
        text: section.model.loginItemProblem
    }
    Hairline { visible: access.visible }
    Part {
        id: access
        Layout.topMargin: Theme.unit
        Layout.bottomMargin: Theme.unit
        shown: section.model.canGiveBackKeyAccess
        content: RowLayout {
            PanelText {
                Layout.fillWidth: true
                text: qsTr("Access to the keyboard")
            }
            PanelButton {
                text: qsTr("Take Back")
                onClicked: section.model.giveBackKeyAccess()
            }
        }
    }
    WarningLine {
        Layout.fillWidth: true
        Layout.bottomMargin: Theme.gap
        text: access.visible && !section.model.offersNarrowerKeyAccess ? section.model.keyAccessProblem : ""
    }
    Hairline { }
    RowLayout {
        Layout.topMargin: Theme.unit
        Layout.bottomMargin: Theme.unit

        PanelText {
            Layout.fillWidth: true
            text: qsTr("Output, quiet apps, mouse")
            Accessible.ignored: true
        }
        PanelButton {
            id: moreButton
            text: qsTr("More…")
        }
    }
}
