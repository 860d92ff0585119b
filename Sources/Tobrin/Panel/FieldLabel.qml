// What the control next to it sets; `hint` says more under a resting pointer.
import QtQuick
import Tobrin

PanelText {
    id: label

    property string hint: ""

    Accessible.ignored: true // the control has the name

    HoverHandler { id: pointer }
    PanelTip {
        shown: pointer.hovered
        text: label.hint
    }
}
