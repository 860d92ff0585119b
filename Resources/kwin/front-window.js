// Runs within KWin while Tobrin asks which application is in front: on Wayland KWin tells nobody
// else. Plasma 5 calls its windows clients.
"use strict";

const activated = workspace.windowActivated || workspace.clientActivated;
const hasChanged = () => tell(active());
let told = null; // the window that is listened to

function active() {
    return workspace.activeWindow || workspace.activeClient || null;
}

function applicationOf(window) {
    return String(window.resourceClass || window.resourceName || "");
}

function tell(window) {
    callDBus("app.tobrin.FrontWindow", "/app/tobrin/FrontWindow", "app.tobrin.FrontWindow", "Changed",
             window ? applicationOf(window) : "", window ? Boolean(window.fullScreen) : false);
}

// Tobrin asks when its panel opens, which may be in front by now: first the window behind it.
function tellWhatIsBehind() {
    const windows = workspace.stackingOrder
        || Array.from(workspace.clientList()).sort((a, b) => a.stackingOrder - b.stackingOrder);
    for (let i = windows.length - 1; i >= 0; --i) {
        const window = windows[i];
        if (window.normalWindow && !window.minimized && !/tobrin$/i.test(applicationOf(window)))
            return tell(window);
    }
}

function follow() {
    try {
        told && told.fullScreenChanged.disconnect(hasChanged);
        told && told.windowClassChanged.disconnect(hasChanged);
    } catch (error) {
        // It has been closed.
    }
    told = active();
    if (told) {
        told.fullScreenChanged.connect(hasChanged);
        told.windowClassChanged.connect(hasChanged);
    }
    hasChanged();
}

if (active() && /tobrin$/i.test(applicationOf(active())))
    tellWhatIsBehind();
activated.connect(follow);
follow();
