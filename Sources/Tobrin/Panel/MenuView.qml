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
    // Access given, but no keys: the card has the button that starts Tobrin again.
    readonly property bool lacksKeys: !model.hasPermission || model.needsRelaunch
    // A page in the panel's place, and what Escape leaves first.
    readonly property bool showsPage: recordPage.wanted || morePage.active
    property alias showsMore: morePage.active
    readonly property real ownHeight: titleBar.height + topMargin + header.implicitHeight + content.implicitHeight
                                      + footer.implicitHeight + 2 * Theme.inset + Theme.margin
    readonly property real topMargin: titled ? 0 : Theme.margin

    implicitWidth: Theme.panelWidth
    implicitHeight: recordPage.item !== null ? titleBar.height + (recordPage.item as Item).implicitHeight
                    : Math.max(ownHeight, titleBar.height + ((morePage.item as Item)?.implicitHeight ?? 0))
    color: Theme.background
    LayoutMirroring.enabled: Qt.application.layoutDirection === Qt.RightToLeft // qmllint disable
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
        visible: !panel.showsPage
        anchors { top: titleBar.bottom; left: parent.left; right: parent.right; margins: Theme.margin; topMargin: panel.topMargin }
        model: panel.model
    }
    PanelScroller {
        id: scroller
        visible: !panel.showsPage
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
                shown: panel.lacksKeys
                content: PermissionCard { model: panel.model }
            }
            Part {
                shown: !panel.lacksKeys && panel.model.offersNarrowerKeyAccess
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
            OptionsSection {
                id: options
                model: panel.model
            }
            Connections {
                target: options.moreButton
                function onClicked() {
                    morePage.byKeyboard = options.moreButton.visualFocus;
                    morePage.active = true;
                }
            }
            ShortcutSection {
                Layout.fillWidth: true
                model: panel.model
            }
        }
    }
    PanelFooter {
        id: footer
        visible: !panel.showsPage
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
    Loader {
        id: morePage

        property bool byKeyboard: false // how it was opened

        anchors { top: titleBar.bottom; bottom: parent.bottom; left: parent.left; right: parent.right }
        active: false
        sourceComponent: MorePage {
            more: panel.model.more
            byKeyboard: morePage.byKeyboard
            onClosed: {
                morePage.active = false;
                options.moreButton.forceActiveFocus(byKeyboard ? Qt.TabFocusReason : Qt.OtherFocusReason);
            }
        }
    }
    Connections {
        target: panel.Window.window
        function onVisibleChanged() {
            morePage.active = false;
        }
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
