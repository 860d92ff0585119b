// Shows the shortcut; pushed, it takes the next keys that are pressed together as the new one.
// Escape, or a move of the focus elsewhere, leaves the old one.
import QtQuick
import Tobrin

PanelButton {
    id: field

    required property PanelModel model
    property bool capturing: false

    text: capturing ? qsTr("Press a key with Ctrl, Alt or Super…") : model.shortcutName
    hint: capturing ? "" : qsTr("Push to choose other keys")
    Accessible.name: qsTr("Shortcut keys: %1").arg(text)
    onClicked: capture(true)
    onActiveFocusChanged: if (!activeFocus) capture(false)
    onEnabledChanged: if (!enabled) capture(false)
    Keys.priority: Keys.BeforeItem
    Keys.onPressed: event => {
        if (!capturing)
            return;
        const ends = event.key === Qt.Key_Escape || model.chooseShortcut(event.nativeScanCode, event.modifiers);
        const movesFocus = event.key === Qt.Key_Tab || event.key === Qt.Key_Backtab;
        event.accepted = ends || !movesFocus;
        if (ends)
            capture(false);
    }
    Keys.onReleased: event => event.accepted = capturing
    Keys.onShortcutOverride: event => event.accepted = capturing

    function capture(begins) {
        if (capturing === begins)
            return;
        capturing = begins;
        model.captureShortcut(begins);
        if (begins)
            forceActiveFocus(Qt.ShortcutFocusReason);
    }
}
