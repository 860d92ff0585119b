// Which keyboards are silent because no finger touches them.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: section

    required property HeldBackModel model

    function add() {
        model.add(field.text);
        field.clear();
    }

    Layout.fillWidth: true
    spacing: Theme.unit * 1.5

    SectionLabel { text: qsTr("Programs That Type") }
    Card {
        spacing: Theme.unit

        PanelText {
            Layout.fillWidth: true
            Layout.topMargin: Theme.unit
            text: qsTr("What a program types for you stays silent: keyboards whose names hold one of these words. On X11, XTEST is that of xdotool, text expanders and remote desktops.")
            small: true
            secondary: true
        }
        Repeater {
            model: section.model.names

            MoreListRow {
                required property string modelData
                required property int index

                name: modelData
                removal: qsTr("Take out %1").arg(modelData)
                onRemoved: {
                    field.forceActiveFocus(Qt.TabFocusReason);
                    section.model.remove(index);
                }
            }
        }
        RowLayout {
            Layout.bottomMargin: Theme.unit

            PanelField {
                id: field
                Layout.fillWidth: true
                placeholderText: qsTr("Part of a keyboard's name")
                onAccepted: section.add()
            }
            PanelButton {
                text: qsTr("Add")
                enabled: field.text !== ""
                onClicked: section.add()
            }
        }
        PanelButton {
            Layout.bottomMargin: Theme.unit
            visible: !section.model.isUsual
            text: qsTr("Usual Names")
            onClicked: section.model.takeUsual()
        }
    }
}
