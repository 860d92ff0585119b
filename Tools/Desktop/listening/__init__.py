"""Types on a private desktop, records what is played there, and tells which press made which sound."""

from .levels import plateaus_db
from .matching import Figures, Match, figures, match
from .program import Tobrin, control, types_audibly, write_click_pack
from .tools import Background, Press, Sound, find_sounds, press_keys, record, tool

__all__ = ["Background", "Figures", "Match", "Press", "Sound", "Tobrin", "control", "figures", "find_sounds", "match",
           "plateaus_db", "press_keys", "record", "tool", "types_audibly", "write_click_pack"]
