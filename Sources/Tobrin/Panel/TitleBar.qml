// In place of the frame where the desktop draws none: moves the window, and closes it.
import QtQuick
import QtQuick.Templates as T
import Tobrin

Item {
    id: bar

    implicitHeight: Theme.rowHeight * 0.75

    DragHandler {
        target: null
        grabPermissions: PointerHandler.CanTakeOverFromAnything
        onActiveChanged: if (active) bar.Window.window.startSystemMove()
    }
    T.Button {
        id: close
        anchors.right: parent.right
        height: parent.height
        width: height * 1.3
        focusPolicy: Qt.NoFocus  // Escape closes, too
        Accessible.name: qsTr("Close")
        Accessible.onPressAction: clicked()
        onClicked: bar.Window.window.close()

        background: Rectangle { color: close.hovered ? Theme.groove : "transparent" }
        contentItem: Item {
            Symbol {
                anchors.centerIn: parent
                name: "close"
                color: Theme.secondaryText
            }
        }
    }
}
