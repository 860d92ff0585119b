#!/usr/bin/python3
"""tobrin-bench-latency [--presses N] [--long] [--json|--rows]: how long a key takes to sound, and what the program
costs in between. Runs in a desktop session. --long adds what takes three quiet minutes."""

import argparse
import contextlib
import pathlib
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "Tools" / "Desktop"))

from footprint import (report_first_key_after_suspension, report_memory, report_start,  # noqa: E402
                       report_wakeups)
from latency import every_core_busy, measure, report_latency, report_panel  # noqa: E402
from listening import write_click_pack  # noqa: E402
from report import Report  # noqa: E402

BLOCKS = 8


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    parser.add_argument("packs")
    parser.add_argument("--presses", type=int, default=1000)
    parser.add_argument("--long", action="store_true")
    parser.add_argument("--json", action="store_true")
    parser.add_argument("--rows", action="store_true", help="no heading")
    options = parser.parse_args()
    report = Report(options.json, heading=not options.rows)
    with tempfile.TemporaryDirectory() as folder:
        clicks = write_click_pack(folder)
        block = max(1, options.presses // BLOCKS)
        for state, load in (("idle", contextlib.nullcontext()), ("busy", every_core_busy())):
            with load:
                ours, limit = measure(options.program, clicks, block, BLOCKS, folder)
            report_latency(report, state, ours, limit)
        report_panel(report, options.program, clicks, block, BLOCKS, folder)
        report_start(report, options.program, options.packs, folder)
        report_memory(report, options.program, options.packs)
        report_wakeups(report, options.program, options.packs)
        if options.long:
            report_first_key_after_suspension(report, options.program, clicks, folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
