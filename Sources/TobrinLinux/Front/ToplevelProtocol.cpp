#include "Front/ToplevelProtocol.h"

namespace tobrin::toplevel {
namespace {

// What is not an object has no type; no message has more than five arguments.
const wl_interface* noTypes[5] = {};
const wl_interface* handleType[] = {&handle};
const wl_interface* outputType[] = {&wl_output_interface};
const wl_interface* seatType[] = {&wl_seat_interface};
const wl_interface* rectangleTypes[] = {&wl_surface_interface, nullptr, nullptr, nullptr, nullptr};

const wl_message managerRequests[] = {{"stop", "", noTypes}};
const wl_message managerEvents[] = {{"toplevel", "n", handleType}, {"finished", "", noTypes}};

const wl_message handleRequests[] = {{"set_maximized", "", noTypes},
                                     {"unset_maximized", "", noTypes},
                                     {"set_minimized", "", noTypes},
                                     {"unset_minimized", "", noTypes},
                                     {"activate", "o", seatType},
                                     {"close", "", noTypes},
                                     {"set_rectangle", "oiiii", rectangleTypes},
                                     {"destroy", "", noTypes},
                                     {"set_fullscreen", "2?o", outputType},
                                     {"unset_fullscreen", "2", noTypes}};
const wl_message handleEvents[] = {{"title", "s", noTypes},
                                   {"app_id", "s", noTypes},
                                   {"output_enter", "o", outputType},
                                   {"output_leave", "o", outputType},
                                   {"state", "a", noTypes},
                                   {"done", "", noTypes},
                                   {"closed", "", noTypes}};

}  // namespace

const wl_interface manager = {
    "zwlr_foreign_toplevel_manager_v1", version, 1, managerRequests, 2, managerEvents};
const wl_interface handle = {
    "zwlr_foreign_toplevel_handle_v1", version, 10, handleRequests, 7, handleEvents};

}  // namespace tobrin::toplevel
