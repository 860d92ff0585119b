"""Types on a private desktop, records what is played there, and finds which press made which sound."""

from .levels import plateaus_db, steepest_fall
from .matching import Figures, Match, figures, match
from .program import Tobrin, control, is_heard, types_audibly, write_click_pack, write_pack
from .testcase import DesktopTest
from .tools import (Background, Press, Sound, find_sounds, panels, press_keys, press_toggle, record, tool,
                    xdotool)

__all__ = ["Background", "DesktopTest", "Figures", "Match", "Press", "Sound", "Tobrin", "control", "figures",
           "find_sounds", "is_heard", "match", "panels", "plateaus_db", "press_keys", "press_toggle", "record",
           "steepest_fall", "tool", "types_audibly", "write_click_pack", "write_pack", "xdotool"]
