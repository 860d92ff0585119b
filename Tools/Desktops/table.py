"""What held, as a table for people."""

import subprocess


class Table:
    """Rows come out as they are known; `finish` says whether all held."""

    def __init__(self, desktop):
        self._held = True
        versions = ", ".join(f"{package} {version(package)}" for package in desktop.packages)
        print(f"\n{versions}:\n\n| what | held |\n| --- | --- |", flush=True)

    def row(self, what, held, detail=""):
        self._held = self._held and bool(held)
        print(f"| {what} | {'yes' if held else 'NO'}{', ' + detail if detail else ''} |", flush=True)

    def finish(self):
        return self._held


def version(package):
    return subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], stdout=subprocess.PIPE, text=True,
                          check=True).stdout
