// In which applications Tobrin is quiet. Where nobody tells what is in front, a sentence says so.
import QtQuick
import QtQuick.Layouts
import Tobrin

Card {
    id: section

    required property QuietAppsModel model
    readonly property bool isKnown: model.problem === ""

    spacing: Theme.unit

    Repeater {
        model: section.model.apps

        MoreListRow {
            required property var modelData
            required property int index

            name: qsTr("Quiet in %1").arg(modelData.name)
            icon: modelData.icon
            removal: qsTr("Sound in %1 again").arg(modelData.name)
            onRemoved: {
                fullScreen.forceActiveFocus(Qt.TabFocusReason);
                section.model.remove(index);
            }
        }
    }
    PanelButton {
        Layout.topMargin: Theme.unit
        visible: section.isKnown && section.model.candidate !== ""
        text: qsTr("Quiet in %1").arg(section.model.candidate)
        onClicked: {
            fullScreen.forceActiveFocus(Qt.OtherFocusReason);
            section.model.addCandidate();
        }
    }
    PanelText {
        Layout.fillWidth: true
        Layout.topMargin: Theme.unit
        visible: section.isKnown && section.model.candidate === ""
        text: qsTr("To have Tobrin quiet in an app, go to that app and open this page again.")
        small: true
        secondary: true
    }
    PanelSwitch {
        id: fullScreen
        Layout.fillWidth: true
        visible: section.isKnown
        text: qsTr("Quiet in full-screen apps")
        checked: section.model.inFullScreen
        onToggled: section.model.inFullScreen = checked
    }
    PanelText {
        Layout.fillWidth: true
        Layout.topMargin: Theme.unit
        Layout.bottomMargin: Theme.unit
        visible: !section.isKnown
        text: section.model.problem
        small: true
        secondary: true
    }
}
