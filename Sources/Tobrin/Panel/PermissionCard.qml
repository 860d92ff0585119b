// Asks for access to keys; shown only without it.
import QtQuick
import QtQuick.Layouts
import Tobrin

Card {
    id: card

    required property PanelModel model

    tint: Theme.dark ? "#33291a" : "#fff5e2"

    PanelText {
        Layout.fillWidth: true
        text: "Tobrin needs Input Monitoring"
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    PanelText {
        Layout.fillWidth: true
        text: "It only uses key presses to pick a sound. It never records or sends what you type."
    }
    Flow {
        Layout.fillWidth: true
        spacing: Theme.gap

        PanelButton {
            text: "Open Settings"
            prominent: true
            onClicked: card.model.openSettings()
        }
        PanelButton {
            text: "Relaunch Tobrin"
            visible: card.model.needsRelaunch
            onClicked: card.model.relaunch()
        }
    }
}
