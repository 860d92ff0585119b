/// The keyboards that are plugged in, and which users may open them. Thread: main.
#pragma once

namespace tobrin::keyboards {

/// Has the device manager read its rules again and go through the keyboards by them. Returns once
/// it has; false where it does not run or refuses.
[[nodiscard]] bool applyRules();

/// Takes back what single users were given of the keyboards' event devices. Rules that give access
/// to one of them for another purpose do so again when they are applied. Other programs that have a
/// keyboard open keep it.
void takeBackAccess();

}  // namespace tobrin::keyboards
