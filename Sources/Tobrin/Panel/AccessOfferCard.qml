// Offers once to replace the older access to keys, which every program has.
import QtQuick
import QtQuick.Layouts
import Tobrin

Card {
    id: card

    required property PanelModel model

    tint: Theme.accentTint
    spacing: Theme.unit * 1.5

    PanelText {
        Layout.fillWidth: true
        Layout.topMargin: Theme.unit
        text: qsTr("Other programs can read your keyboard")
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    PanelText {
        Layout.fillWidth: true
        text: qsTr("An older rule lets every program you run read it. Without the rule only Tobrin is told of keys. An administrator has to agree.")
        small: true
    }
    Flow {
        Layout.fillWidth: true
        Layout.topMargin: Theme.unit
        Layout.bottomMargin: Theme.unit
        spacing: Theme.gap

        PanelButton {
            text: qsTr("Remove the Rule…")
            prominent: true
            onClicked: card.model.narrowKeyAccess()
        }
        PanelButton {
            text: qsTr("Leave It")
            onClicked: card.model.keepWideKeyAccess()
        }
    }
    WarningLine {
        Layout.bottomMargin: Theme.unit
        text: card.model.keyAccessProblem
    }
}
