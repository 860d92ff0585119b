#include "Desktop/LinuxWords.h"

namespace tobrin {
namespace {

/// As they are printed on keyboards.
constexpr PlatformWords::KeyLabel keyLabels[] = {
    {49, "Space"}, {36, "Enter"}, {48, "Tab"},      {51, "Backspace"}, {117, "Delete"},
    {53, "Esc"},   {123, "Left"}, {124, "Right"},   {125, "Down"},     {126, "Up"},
    {115, "Home"}, {119, "End"},  {116, "Page Up"}, {121, "Page Down"}};

}  // namespace

constexpr PlatformWords linuxWords = {
    .needsKeyAccess = "Needs access to the keyboard",
    .keyAccessTitle = "Tobrin needs access to the keyboard",
    .keyAccessButton = "Allow Access…",
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
