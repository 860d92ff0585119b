// Asks for access to keys; shown only without it, or while no keys come in spite of it.
import QtQuick
import QtQuick.Layouts
import Tobrin

Card {
    id: card

    required property PanelModel model

    tint: Theme.warningTint
    spacing: Theme.unit * 1.5

    PanelText {
        Layout.fillWidth: true
        Layout.topMargin: Theme.unit
        text: card.model.keyAccessTitle
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    PanelText {
        Layout.fillWidth: true
        text: qsTr("It only uses key presses to pick a sound. It never records or sends what you type.")
        small: true
    }
    PanelText {
        Layout.fillWidth: true
        text: card.model.keyAccessNote
        small: true
        secondary: true
    }
    Flow {
        Layout.fillWidth: true
        Layout.topMargin: Theme.unit
        Layout.bottomMargin: Theme.unit
        spacing: Theme.gap

        PanelButton {
            text: card.model.keyAccessButton
            prominent: true
            onClicked: card.model.openSettings()
        }
        PanelButton {
            text: qsTr("Relaunch Tobrin")
            visible: card.model.needsRelaunch
            onClicked: card.model.relaunch()
        }
    }
    PanelText {
        Layout.fillWidth: true
        Layout.bottomMargin: Theme.unit
        visible: text !== ""
        text: card.model.keyAccessProblem
        small: true
        color: Theme.warning
        Accessible.role: Accessible.AlertMessage
    }
}
