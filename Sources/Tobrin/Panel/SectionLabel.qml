// A small heading for a section.
import QtQuick
import Tobrin

PanelText {
    secondary: true
    small: true
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
