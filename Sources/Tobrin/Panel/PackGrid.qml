// The packs to choose from. It shows three rows and scrolls by itself; where there are many, a
// field finds one. For the keyboard it is one stop: arrows, Home, End and letters move within it.
import QtQuick
import QtQuick.Layouts
import Tobrin

ColumnLayout {
    id: section

    required property PanelModel model
    readonly property int manyPacks: 12
    readonly property var shown: {
        const wanted = (finder.item as PanelField)?.text.trim().toLocaleLowerCase() ?? "";
        return model.packs.filter(pack => (pack.name + " " + pack.kind).toLocaleLowerCase().includes(wanted));
    }

    spacing: Theme.gap

    Part {
        id: finder
        shown: section.model.packs.length >= section.manyPacks
        content: PanelField {
            placeholderText: qsTr("Find a pack")
            Keys.onDownPressed: grid.moveTo(grid.currentIndex)
            Keys.onEscapePressed: event => {
                event.accepted = text !== "";
                clear();
            }
        }
    }
    Part {
        shown: finder.shown && section.shown.length === 0
        content: PanelText {
            text: qsTr("No pack is called that.")
            secondary: true
            Accessible.role: Accessible.AlertMessage
        }
    }
    GridView {
        id: grid

        readonly property int columns: Math.max(1, Math.min(3, Math.floor((width + Theme.gap) / (Theme.textSize * 6))))
        readonly property int rows: Math.ceil(count / columns)
        readonly property int rowsShown: 3
        readonly property bool mirrored: effectiveLayoutDirection === Qt.RightToLeft
        readonly property int nameLines: section.shown.some(pack => names.advanceWidth(pack.name) > nameWidth) ? 2 : 1
        readonly property real nameWidth: cellWidth - 3 * Theme.gap
        readonly property string selectedID: section.model.selectedPackID
        property string typed: ""

        Layout.fillWidth: true
        // Each tile brings the gap to the next one.
        Layout.rightMargin: -Theme.gap
        Layout.bottomMargin: interactive ? 0 : -Theme.gap
        Layout.preferredHeight: Math.min(rows, rowsShown) * cellHeight
        visible: count > 0
        clip: true
        activeFocusOnTab: true
        keyNavigationEnabled: false // the tiles do that, and show the ring
        boundsBehavior: Flickable.StopAtBounds
        interactive: rows > rowsShown
        cellWidth: Math.floor(width / columns)
        cellHeight: probe.implicitHeight + Theme.gap
        model: section.shown
        onSelectedIDChanged: showSelected()
        onModelChanged: showSelected()
        onHeightChanged: Qt.callLater(showSelected) // qmllint disable
        onCellHeightChanged: Qt.callLater(showSelected) // qmllint disable
        Component.onCompleted: showSelected()
        Accessible.role: Accessible.Grouping
        Accessible.name: qsTr("Packs")

        delegate: FocusScope {
            id: cell

            required property int index
            required property var modelData

            width: grid.cellWidth
            height: grid.cellHeight

            PackTile {
                x: grid.mirrored ? Theme.gap : 0
                width: cell.width - Theme.gap
                height: cell.height - Theme.gap
                focus: true
                focusPolicy: Qt.ClickFocus
                nameLines: grid.nameLines
                pack: cell.modelData
                selected: usable && pack.id === section.model.selectedPackID
                onChosen: if (usable) section.model.select(pack.id)
                Keys.onDeletePressed: grid.remove(pack)
                Keys.onPressed: event => event.accepted = grid.moveBy(event)
            }
        }

        FontMetrics {
            id: names
            font.pixelSize: Theme.textSize
            font.weight: Font.DemiBold
        }
        // How high a tile is, whether there is one or not.
        PackTile {
            id: probe
            visible: false
            nameLines: grid.nameLines
            pack: ({ name: "", kind: "", problem: "" })
        }
        Timer {
            id: forget
            interval: 1000
            onTriggered: grid.typed = ""
        }
        ScrollEdges {
            target: grid
            anchors.rightMargin: Theme.gap
        }

        function showSelected() {
            currentIndex = Math.max(0, section.shown.findIndex(pack => pack.id === section.model.selectedPackID));
            positionViewAtIndex(currentIndex, GridView.Contain);
        }

        function moveTo(index) {
            if (count === 0)
                return;
            currentIndex = Math.max(0, Math.min(count - 1, index));
            positionViewAtIndex(currentIndex, GridView.Contain);
            currentItem.children[0].forceActiveFocus(Qt.TabFocusReason);
        }

        /// The keyboard stays where the pack was.
        function remove(pack) {
            const place = currentIndex;
            if (!pack.own)
                return;
            section.model.shelf.remove(pack.id);
            Qt.callLater(() => moveTo(place));
        }

        /// Whether the key means a place in the grid.
        function moveBy(event) {
            const forward = mirrored ? -1 : 1;
            const steps = { [Qt.Key_Left]: -forward, [Qt.Key_Right]: forward, [Qt.Key_Up]: -columns,
                            [Qt.Key_Down]: columns, [Qt.Key_PageUp]: -columns * rowsShown,
                            [Qt.Key_PageDown]: columns * rowsShown, [Qt.Key_Home]: -count, [Qt.Key_End]: count };
            const step = steps[event.key];
            if (step === undefined)
                return moveToName(event);
            const isJump = Math.abs(step) > columns;
            if (isJump || (currentIndex + step >= 0 && currentIndex + step < count))
                moveTo(currentIndex + step);
            return true;
        }

        /// Letters in quick order are the beginning of a name.
        function moveToName(event) {
            if (event.text < "!" || event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier))
                return false;
            typed += event.text.toLocaleLowerCase();
            forget.restart();
            const found = section.shown.findIndex(pack => pack.name.toLocaleLowerCase().startsWith(typed));
            if (found >= 0)
                moveTo(found);
            return true;
        }
    }
}
