// What only some want, in the panel's place: where Tobrin sounds, when it does not, and what else
// does.
import QtQuick
import QtQuick.Layouts
import Tobrin

Rectangle {
    id: page

    required property MoreModel more
    property bool byKeyboard: false // how it was opened: the focus is then shown

    signal closed()

    implicitHeight: 2 * Theme.margin + top.implicitHeight + sections.implicitHeight + Theme.inset
    color: Theme.background
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("More")
    Component.onCompleted: back.forceActiveFocus(byKeyboard ? Qt.TabFocusReason : Qt.OtherFocusReason)

    Shortcut {
        sequences: ["Escape", StandardKey.Back]
        onActivated: page.closed()
    }
    RowLayout {
        id: top
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.margin }

        PanelText {
            Layout.fillWidth: true
            text: page.Accessible.name
            font { pixelSize: Theme.titleText; weight: Font.DemiBold }
            Accessible.role: Accessible.Heading
        }
        PanelButton {
            id: back
            text: qsTr("Back")
            onClicked: page.closed()
        }
    }
    PanelScroller {
        anchors { left: parent.left; right: parent.right; top: top.bottom; bottom: parent.bottom; topMargin: Theme.inset; bottomMargin: Theme.margin }
        contentHeight: sections.implicitHeight

        ColumnLayout {
            id: sections
            x: Theme.margin
            width: page.width - 2 * Theme.margin
            spacing: Theme.inset

            MoreSound { sound: page.more.sound }
            MoreQuiet { more: page.more }
            MoreQuietApps { model: page.more.quietApps }
            MoreMouse { more: page.more }
            MoreHeldBack { model: page.more.heldBack }
        }
    }
}
