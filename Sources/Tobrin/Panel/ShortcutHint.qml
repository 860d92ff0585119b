// A one-line hint about the toggle shortcut.
import QtQuick
import Tobrin

PanelText {
    secondary: true
    small: true
}
