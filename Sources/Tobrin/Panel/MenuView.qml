// The whole panel, top to bottom. Scrolls where the screen is too low for it.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tobrin

Rectangle {
    id: panel

    required property PanelModel model
    property bool dark: false
    readonly property real fullHeight: content.implicitHeight + 2 * Theme.margin

    implicitWidth: Theme.panelWidth
    implicitHeight: fullHeight
    color: Theme.background
    Accessible.role: Accessible.Pane
    Accessible.name: "Tobrin"

    Binding {
        target: Theme
        property: "dark"
        value: panel.dark
    }
    Flickable {
        id: scroller
        anchors.fill: parent
        contentHeight: panel.fullHeight
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height
        ScrollBar.vertical: ScrollBar {
            policy: scroller.interactive ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
        }

        ColumnLayout {
            id: content
            x: Theme.margin
            y: Theme.margin
            width: panel.width - 2 * Theme.margin
            spacing: Theme.margin * 0.75

            MenuHeader {
                Layout.fillWidth: true
                model: panel.model
            }
            PermissionCard {
                visible: !panel.model.hasPermission
                model: panel.model
            }
            PackSection {
                Layout.fillWidth: true
                model: panel.model
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.gap

                Symbol { name: "speaker"; color: Theme.secondaryText }
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
            ForceSection { model: panel.model }
            OptionsSection { model: panel.model }
            ShortcutSection { model: panel.model }
            Rectangle {
                Layout.fillWidth: true
                implicitHeight: 1
                color: Theme.outline
                Accessible.ignored: true
            }
            RowLayout {
                Layout.fillWidth: true

                PanelButton {
                    text: "Packs Folder…"
                    onClicked: panel.model.openPacksFolder()
                }
                Item { Layout.fillWidth: true }
                PanelButton {
                    text: "Quit"
                    onClicked: panel.model.quit()
                }
            }
        }
    }
}
