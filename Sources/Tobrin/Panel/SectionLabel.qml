// A small heading for a section.
import QtQuick
import Tobrin

PanelText {
    leftPadding: Theme.unit / 2
    secondary: true
    small: true
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
