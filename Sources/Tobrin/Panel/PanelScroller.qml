// The part of the panel that scrolls where the window is too low for all of it. One item stays in
// sight, at the edge that it would pass, and keeps its place among the others.
import QtQuick
import QtQuick.Templates as T
import Tobrin

Flickable {
    id: scroller

    property Item pinned: null // child of a place holder in the content
    readonly property Item focused: Window.activeFocusItem

    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    clip: interactive
    onFocusedChanged: show(focused)
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

    Binding {
        target: scroller.pinned
        property: "y"
        when: scroller.pinned !== null
        value: {
            const place = scroller.pinned?.parent.y ?? 0;
            const lowest = scroller.contentY + scroller.height - (scroller.pinned?.height ?? 0);
            return scroller.interactive ? Math.max(scroller.contentY, Math.min(lowest, place)) - place : 0;
        }
    }
    ScrollEdges { target: scroller }

    // The control that the keyboard has reached is in sight, beside the pinned item.
    function show(control) {
        if (!control || !interactive || control.height > height / 2 || !isWithin(control))
            return;
        const place = control.mapToItem(contentItem, 0, 0).y;
        const isAbove = pinned !== null && place < pinned.parent.y;
        const taken = pinned !== null ? pinned.height : 0;
        const top = place - Theme.margin - (isAbove ? 0 : taken);
        const bottom = place + control.height + Theme.margin + (isAbove ? taken : 0);
        contentY = Math.max(0, Math.min(contentHeight - height, Math.max(bottom - height, Math.min(contentY, top))));
    }

    function isWithin(control) {
        for (let item = control; item; item = item.parent) {
            if (item === pinned)
                return false;
            if (item === contentItem)
                return true;
        }
        return false;
    }
}
