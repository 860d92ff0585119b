// Runs within KWin for the moments in which Tobrin opens its panel from the tray: moves it next to the
// pointer, which has clicked the icon there. Plasma 5 calls its windows clients.
"use strict";

const gap = 8;
const added = workspace.windowAdded || workspace.clientAdded;
const within = (least, value, most) => Math.max(least, Math.min(value, most));

function place(window) {
    if (!/tobrin$/i.test(String(window.resourceClass)))
        return;
    added.disconnect(place);
    const room = workspace.clientArea(KWin.PlacementArea, window);
    const { width, height } = window.frameGeometry;
    const { x, y } = workspace.cursorPos;
    const top = y < room.y + room.height / 2 ? y + gap : y - gap - height;
    window.skipTaskbar = window.skipPager = true; // as on X11
    window.frameGeometry = {
        x: within(room.x + gap, x - Math.round(width / 2), room.x + room.width - width - gap),
        y: within(room.y + gap, top, room.y + room.height - height - gap),
        width,
        height,
    };
}

added.connect(place);
