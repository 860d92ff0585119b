// The whole panel, top to bottom. Scrolls where the screen is too low for it.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tobrin

Rectangle {
    id: panel

    required property PanelModel model
    property bool dark: false
    property bool framed: false
    property bool titled: false
    readonly property real fullHeight: content.y + content.implicitHeight + Theme.margin
    readonly property Item focused: Window.activeFocusItem

    implicitWidth: Theme.panelWidth
    implicitHeight: fullHeight + titleBar.height
    color: Theme.background
    Accessible.role: Accessible.Pane
    Accessible.name: "Tobrin"
    onFocusedChanged: scroller.show(focused)

    Binding {
        target: Theme
        property: "dark"
        value: panel.dark
    }
    Flickable {
        id: scroller
        anchors.fill: parent
        anchors.topMargin: titleBar.height
        contentHeight: panel.fullHeight
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height
        T.ScrollBar.vertical: T.ScrollBar {
            visible: scroller.interactive
            implicitWidth: implicitContentWidth + 2 * padding
            padding: Theme.unit / 2
            contentItem: Rectangle {
                implicitWidth: Theme.unit
                radius: width / 2
                color: Theme.control
            }
        }

        // Whoever moves by keyboard sees where to.
        function show(control) {
            if (!control || !interactive || control.height > height / 2)
                return;
            const top = control.mapToItem(contentItem, 0, 0).y - Theme.margin;
            const bottom = top + control.height + 2 * Theme.margin;
            const least = Math.min(contentHeight - height, bottom - height);
            contentY = Math.max(0, least, Math.min(contentY, top));
        }

        ColumnLayout {
            id: content
            x: Theme.margin
            y: panel.titled ? 0 : Theme.margin
            width: panel.width - 2 * Theme.margin
            spacing: Theme.inset

            MenuHeader {
                Layout.fillWidth: true
                model: panel.model
            }
            WarningLine {
                Layout.fillWidth: true
                text: panel.model.soundProblem
            }
            PermissionCard {
                visible: !panel.model.hasPermission
                model: panel.model
            }
            PackSection {
                Layout.fillWidth: true
                model: panel.model
            }
            Card {
                RowLayout {
                    Layout.fillWidth: true
                    Layout.minimumHeight: Theme.rowHeight
                    spacing: Theme.gap

                    Symbol {
                        Layout.rightMargin: -Theme.gap
                        name: "speaker"
                        color: Theme.secondaryText
                    }
                    PanelSlider {
                        Layout.fillWidth: true
                        label: "Volume"
                        from: 0
                        to: 1
                        value: panel.model.volume
                        onMoved: panel.model.volume = value
                    }
                    Symbol { name: "speaker-wave"; color: Theme.secondaryText }
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
            Hairline { color: Theme.outline }
            RowLayout {
                Layout.fillWidth: true

                PanelButton {
                    Layout.fillWidth: true
                    Layout.maximumWidth: implicitWidth
                    text: "Packs Folder…"
                    onClicked: panel.model.openPacksFolder()
                }
                Item { Layout.fillWidth: true }
                PanelButton {
                    Layout.fillWidth: true
                    Layout.maximumWidth: implicitWidth
                    text: "Quit"
                    onClicked: panel.model.quit()
                }
            }
        }
    }
    TitleBar {
        id: titleBar
        width: panel.width
        height: visible ? implicitHeight : 0
        visible: panel.titled
    }
    Rectangle {
        anchors.fill: parent
        visible: panel.framed
        color: "transparent"
        border.color: Theme.outline
    }
}
