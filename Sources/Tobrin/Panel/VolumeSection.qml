// How loud the keys are. Lets one key be heard when the slider comes to rest; the speaker mutes.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tobrin

Card {
    id: section

    required property PanelModel model
    readonly property bool muted: model.volume === 0

    RowLayout {
        Layout.fillWidth: true
        Layout.minimumHeight: Theme.rowHeight
        spacing: Theme.gap

        T.Button {
            id: mute

            Layout.leftMargin: -Theme.unit
            implicitWidth: Math.round(Theme.textSize * 2)
            implicitHeight: implicitWidth
            checkable: true
            checked: section.muted
            Accessible.name: section.muted ? qsTr("Unmute") : qsTr("Mute")
            Accessible.onPressAction: clicked()
            Accessible.onToggleAction: clicked()
            Keys.onReturnPressed: clicked()
            Keys.onEnterPressed: clicked()
            onClicked: {
                section.model.mute();
                checked = Qt.binding(() => section.muted);
            }

            background: Rectangle {
                radius: Theme.radius * 0.75
                color: mute.down ? Theme.pressed : mute.hovered ? Theme.hover : "transparent"
                FocusRing { control: mute }
            }
            contentItem: Item {
                Symbol {
                    anchors.centerIn: parent
                    name: section.muted ? "speaker-muted" : "speaker"
                    color: section.muted ? Theme.warning : Theme.secondaryText
                }
            }
            PanelTip {
                shown: mute.hovered || mute.visualFocus
                text: mute.Accessible.name
            }
        }
        PanelSlider {
            Layout.fillWidth: true
            label: qsTr("Volume")
            valueText: qsTr("%1 %").arg(Math.round(value * 100))
            from: 0
            to: 1
            value: section.model.volume
            onMoved: section.model.volume = value
            onRested: section.model.playOneKey()
        }
        Symbol { name: "speaker-wave"; color: Theme.secondaryText }
    }
}
