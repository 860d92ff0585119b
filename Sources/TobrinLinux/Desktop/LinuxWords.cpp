#include "Desktop/LinuxWords.h"

#include "Base/Key.h"

namespace tobrin {
namespace {

/// As they are printed on keyboards.
constexpr PlatformWords::KeyLabel keyLabels[] = {{codeOf(Key::space), "Space"},
                                                 {codeOf(Key::enter), "Enter"},
                                                 {codeOf(Key::tab), "Tab"},
                                                 {codeOf(Key::backspace), "Backspace"},
                                                 {codeOf(Key::forwardDelete), "Delete"},
                                                 {codeOf(Key::escape), "Esc"},
                                                 {codeOf(Key::leftArrow), "Left"},
                                                 {codeOf(Key::rightArrow), "Right"},
                                                 {codeOf(Key::downArrow), "Down"},
                                                 {codeOf(Key::upArrow), "Up"},
                                                 {codeOf(Key::home), "Home"},
                                                 {codeOf(Key::end), "End"},
                                                 {codeOf(Key::pageUp), "Page Up"},
                                                 {codeOf(Key::pageDown), "Page Down"}};

}  // namespace

constexpr PlatformWords linuxWords = {
    .needsKeyAccess = "Needs access to the keyboard",
    .keyAccessTitle = "Tobrin needs access to the keyboard",
    .keyAccessButton = "Allow Access…",
    .keyAccessNote =
        "An administrator allows it once; then only Tobrin is told which keys go down and up, and "
        "only while you sit here.",
    .keyAccessForProbe =
        "Needs access to the keyboard: start tobrin, press \"Allow Access…\" in its "
        "panel, then rerun.",
    .keyAccessCheck = "keyboard tap (access to the keyboard)",
    .forceNeedsSensor =
        "Force sensing needs a laptop with a fast motion sensor. Pick a fixed "
        "strength instead.",
    .noSensor =
        "This computer has no motion sensor that is fast enough, so force sensing isn't "
        "available.",
    .noSensorCheck = "motion sensor (not on this computer)",
    .soundStateOnly = "(sound server state only, nothing is recorded)",
    .unknownRecorder = "unknown (the sound server does not say)",
    .reservedShortcut = " is a system shortcut (the desktop's keyboard settings). Pick another.",
    .modifiers = {"Ctrl", "Alt", "Shift", "Super"},
    .keySeparator = "+",
    .keys = keyLabels,
};

}  // namespace tobrin
