"""One measured figure a line next to its goal: the table, or the JSON lines, of the other benchmark programs."""

import json

_ROW = "{:<58} {:>18} {:>28} {:>9} {:>8} {:>5} {:>7}"


def _number(value):
    return f"{value:.2f}" if value < 10 else f"{value:.1f}" if value < 1000 else f"{value:.0f}"


class Report:
    def __init__(self, as_json=False, heading=True):
        self._json = as_json
        if heading and not as_json:
            print(_ROW.format("figure", "measured", "peer or limit", "ratio", "goal", "met", "spread"), flush=True)

    def beside(self, figure, measured, unit, peer, peer_value, goal, spread=0.0):
        """A quantity that may be `goal` times the peer's, measured in the same run."""
        self._add(figure, measured, unit, peer, peer_value, measured / peer_value, goal, spread)

    def under(self, figure, measured, unit, limit, spread=0.0):
        """A quantity that stays at or under a limit, of which the ratio is a part; a limit of 0 has no parts."""
        ratio, goal = (measured / limit, 1.0) if limit else (measured, 0.0)
        self._add(figure, measured, unit, "limit", limit, ratio, goal, spread)

    def _add(self, figure, measured, unit, peer, peer_value, ratio, goal, spread):
        met = ratio <= goal
        if self._json:
            print(json.dumps({"figure": figure, "measured": measured, "unit": unit, "peer": peer,
                              "peerValue": peer_value, "ratio": ratio, "goal": goal, "atLeast": False, "met": met,
                              "spread": spread}), flush=True)
        else:
            print(_ROW.format(figure, f"{_number(measured)} {unit}", f"{peer} {_number(peer_value)} {unit}",
                              _number(ratio), f"<= {_number(goal)}", "yes" if met else "NO",
                              f"{100 * spread:.1f} %"), flush=True)
