// The whole panel, top to bottom. Header and footer stay where they are; what is between them
// scrolls where the screen is too low for it.
import QtQuick
import QtQuick.Layouts
import Tobrin

Rectangle {
    id: panel

    required property PanelModel model
    property bool dark: false
    property bool highContrast: false
    property bool reducedMotion: false
    property bool framed: false
    property bool titled: false
    readonly property real topMargin: titled ? 0 : Theme.margin

    implicitWidth: Theme.panelWidth
    implicitHeight: recordPage.item !== null ? titleBar.height + recordPage.item.implicitHeight
                    : titleBar.height + topMargin + header.implicitHeight + content.implicitHeight + footer.implicitHeight
                    + 2 * Theme.inset + Theme.margin
    color: Theme.background
    LayoutMirroring.enabled: Qt.application.layoutDirection === Qt.RightToLeft
    LayoutMirroring.childrenInherit: true
    Accessible.role: Accessible.Pane
    Accessible.name: "Tobrin"

    Binding { target: Theme; property: "dark"; value: panel.dark }
    Binding { target: Theme; property: "highContrast"; value: panel.highContrast }
    Binding { target: Theme; property: "reducedMotion"; value: panel.reducedMotion }
    Shortcut {
        sequences: [StandardKey.Close]
        onActivated: panel.Window.window.close()
    }
    Shortcut {
        sequences: [StandardKey.Quit]
        onActivated: panel.model.quit()
    }

    Loader {
        id: titleBar
        width: panel.width
        active: panel.titled
        sourceComponent: TitleBar { }
    }
    MenuHeader {
        id: header
        visible: !recordPage.wanted
        anchors { top: titleBar.bottom; left: parent.left; right: parent.right; margins: Theme.margin; topMargin: panel.topMargin }
        model: panel.model
    }
    PanelScroller {
        id: scroller
        visible: !recordPage.wanted
        anchors { top: header.bottom; bottom: footer.top; left: parent.left; right: parent.right; topMargin: Theme.inset; bottomMargin: Theme.inset }
        contentHeight: content.implicitHeight
        pinned: volume

        ColumnLayout {
            id: content
            x: Theme.margin
            width: panel.width - 2 * Theme.margin
            spacing: Theme.inset

            WarningLine {
                Layout.fillWidth: true
                text: panel.model.soundProblem
            }
            Part {
                shown: panel.model.welcome && panel.model.playing
                content: Card {
                    tint: Theme.accentTint

                    PanelText {
                        Layout.fillWidth: true
                        Layout.margins: Theme.unit
                        text: qsTr("Type anything: it sounds in every app.")
                        font.weight: Font.DemiBold
                    }
                }
            }
            Part {
                shown: !panel.model.hasPermission
                content: PermissionCard { model: panel.model }
            }
            Part {
                shown: panel.model.hasPermission && panel.model.offersNarrowerKeyAccess
                content: AccessOfferCard { model: panel.model }
            }
            PackSection {
                Layout.fillWidth: true
                model: panel.model
            }
            Item {
                Layout.fillWidth: true
                implicitHeight: volume.implicitHeight
                z: 1

                VolumeSection {
                    id: volume
                    width: parent.width
                    model: panel.model
                }
            }
            ForceSection {
                Layout.fillWidth: true
                model: panel.model
            }
            OptionsSection { model: panel.model }
            ShortcutSection {
                Layout.fillWidth: true
                model: panel.model
            }
        }
    }
    PanelFooter {
        id: footer
        visible: !recordPage.wanted
        anchors { bottom: parent.bottom; left: parent.left; right: parent.right; margins: Theme.margin }
        model: panel.model
    }
    // Loaded when it is wanted: few open it, and everybody opens the panel.
    Loader {
        id: recordPage

        readonly property bool wanted: panel.model.recording.stage !== RecordingModel.Away

        anchors { top: titleBar.bottom; bottom: parent.bottom; left: parent.left; right: parent.right }
        onWantedChanged: setSource(wanted ? "RecordPage.qml" : "", { recording: panel.model.recording })
    }
    DropArea {
        id: drop
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: event => {
            panel.model.shelf.add(event.urls);
            event.accept(Qt.CopyAction); // the files stay where they are
        }
    }
    Rectangle {
        anchors.fill: parent
        visible: drop.containsDrag
        color: "transparent"
        border { color: Theme.accent; width: Theme.unit }
    }
    Rectangle {
        anchors.fill: parent
        visible: panel.framed
        color: "transparent"
        border.color: Theme.outline
    }
}
