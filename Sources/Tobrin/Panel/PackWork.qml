// What happens to the user's own packs: how far adding has come, what did not work, what can be
// brought back. Takes no room while there is nothing to say.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tobrin

Part {
    id: work

    required property PackShelfModel shelf

    shown: shelf.activity !== "" || shelf.problem !== "" || shelf.removed !== "" || shelf.invitation !== ""
    content: ColumnLayout {
        spacing: Theme.gap

        RowLayout {
            visible: work.shelf.activity !== ""
            spacing: Theme.inset

            ColumnLayout {
                Layout.fillWidth: true
                spacing: Theme.unit

                ShortText {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    text: work.shelf.activity
                    small: true
                }
                T.ProgressBar {
                    id: bar
                    Layout.fillWidth: true
                    implicitHeight: Theme.unit
                    value: work.shelf.fraction
                    Accessible.name: work.shelf.activity
                    background: Rectangle {
                        radius: height / 2
                        color: Theme.groove
                        border.color: Theme.control
                    }
                    contentItem: Item {
                        Rectangle {
                            x: bar.mirrored ? parent.width - width : 0
                            width: bar.position * parent.width
                            height: parent.height
                            radius: height / 2
                            color: Theme.accent
                        }
                    }
                }
            }
            PanelButton {
                text: qsTr("Cancel")
                onClicked: work.shelf.cancel()
            }
        }
        WarningLine {
            Layout.fillWidth: true
            text: work.shelf.problem
        }
        RowLayout {
            visible: work.shelf.removed !== ""
            spacing: Theme.inset

            ShortText {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                text: work.shelf.removed
                lines: 2
                small: true
                Accessible.role: Accessible.AlertMessage
            }
            PanelButton {
                text: qsTr("Undo")
                onClicked: work.shelf.bringBack()
            }
        }
        PanelText {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            visible: text !== ""
            text: work.shelf.invitation
            font.weight: Font.DemiBold
            Accessible.role: Accessible.AlertMessage
        }
    }
}
