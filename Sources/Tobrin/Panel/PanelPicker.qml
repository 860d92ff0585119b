// A row of choices of which exactly one is taken; arrow keys move between them.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tobrin

FocusScope {
    id: picker

    property string label: ""
    property var choices: []
    property int current: 0
    signal chosen(int index)

    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius * 0.75
        color: Theme.groove
        border.color: Theme.outline
    }
    RowLayout {
        id: row
        anchors.fill: parent
        spacing: 0

        Repeater {
            id: segments
            model: picker.choices

            T.RadioButton {
                id: segment

                required property int index
                required property string modelData

                Layout.fillWidth: true
                Layout.preferredWidth: 1
                implicitWidth: implicitContentWidth + Theme.unit * 2
                implicitHeight: implicitContentHeight + Theme.unit * 2.5
                focus: checked
                focusPolicy: checked ? Qt.StrongFocus : Qt.ClickFocus
                // The document's own ids are in reach of a delegate, though the linter doubts it.
                checked: index === picker.current // qmllint disable unqualified
                text: modelData
                Accessible.name: picker.label + ": " + text // qmllint disable unqualified
                Accessible.onPressAction: picker.chosen(index) // qmllint disable unqualified
                Accessible.onToggleAction: picker.chosen(index) // qmllint disable unqualified
                onClicked: picker.chosen(index) // qmllint disable unqualified
                Keys.onLeftPressed: picker.move(-1) // qmllint disable unqualified
                Keys.onRightPressed: picker.move(1) // qmllint disable unqualified

                background: Rectangle {
                    anchors.fill: parent
                    anchors.margins: 2
                    radius: Theme.radius * 0.6
                    color: segment.checked ? Theme.segment : "transparent"
                    border.width: segment.checked ? 1 : 0
                    border.color: Theme.outline
                    FocusRing { control: segment; anchors.margins: 0; radius: parent.radius }
                }
                contentItem: PanelText {
                    text: segment.text
                    small: true
                    font.weight: segment.checked ? Font.DemiBold : Font.Normal
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    Accessible.ignored: true
                }
            }
        }
    }

    function move(step) {
        const next = Math.max(0, Math.min(choices.length - 1, current + step));
        if (next === current)
            return;
        chosen(next);
        segments.itemAt(next).forceActiveFocus(Qt.TabFocusReason);
    }
}
