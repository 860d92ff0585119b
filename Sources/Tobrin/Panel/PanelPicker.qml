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

    activeFocusOnTab: true
    implicitWidth: grid.implicitWidth
    implicitHeight: grid.implicitHeight
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius * 0.75
        color: Theme.groove
        border.color: Theme.edge
    }
    // The widest choice decides into how many rows they fall.
    readonly property real widest: {
        let width = 0;
        for (let i = 0; i < segments.count; ++i)
            width = Math.max(width, segments.itemAt(i)?.implicitWidth ?? 0);
        return width;
    }

    GridLayout {
        id: grid
        anchors.fill: parent
        columnSpacing: 0
        rowSpacing: 0
        columns: picker.columnsFor(Math.floor(width / Math.max(1, picker.widest)))

        Repeater {
            id: segments
            model: picker.choices

            T.RadioButton {
                id: segment

                required property int index
                required property string modelData

                Layout.fillWidth: true
                Layout.minimumWidth: 0
                Layout.preferredWidth: 1
                implicitWidth: implicitContentWidth + Theme.unit * 2
                implicitHeight: implicitContentHeight + Theme.unit * 2.5
                focus: checked
                focusPolicy: Qt.ClickFocus
                // The document's own ids are in reach of a delegate, though the linter doubts it.
                checked: index === picker.current
                text: modelData
                Accessible.name: picker.label + ": " + text
                Accessible.onPressAction: picker.chosen(index)
                Accessible.onToggleAction: picker.chosen(index)
                onClicked: picker.chosen(index)
                Keys.onLeftPressed: picker.move(mirrored ? 1 : -1)
                Keys.onRightPressed: picker.move(mirrored ? -1 : 1)
                Keys.onUpPressed: picker.move(-grid.columns)
                Keys.onDownPressed: picker.move(grid.columns)
                Keys.onPressed: event => {
                    if (event.key === Qt.Key_Home || event.key === Qt.Key_End) {
                        event.accepted = true;
                        picker.moveTo(event.key === Qt.Key_Home ? 0 : picker.choices.length - 1);
                    }
                }

                background: Rectangle {
                    anchors.fill: parent
                    anchors.margins: 2
                    radius: Theme.radius * 0.6
                    color: segment.checked ? Theme.accent : segment.down ? Theme.pressed : segment.hovered ? Theme.hover : "transparent"
                    FocusRing { control: segment }
                }
                contentItem: PanelText {
                    text: segment.text
                    small: true
                    color: segment.checked ? Theme.accentInk : Theme.text
                    font.weight: segment.checked ? Font.DemiBold : Font.Normal
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    Accessible.ignored: true
                }
            }
        }
    }

    // As many as fit, in rows of one length where that is possible.
    function columnsFor(fitting) {
        for (let columns = Math.min(fitting, choices.length); columns > 1; --columns) {
            if (choices.length % columns === 0)
                return columns;
        }
        return fitting > 1 && choices.length % 2 !== 0 ? Math.min(fitting, choices.length) : 1;
    }

    function move(step) {
        if (current + step >= 0 && current + step < choices.length)
            moveTo(current + step);
    }

    function moveTo(next) {
        chosen(next);
        segments.itemAt(next).forceActiveFocus(Qt.TabFocusReason);
    }
}
