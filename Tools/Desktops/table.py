"""What worked, as a table for people."""

import subprocess


class Table:
    """Rows come out as they are known; `finish` says whether all worked."""

    def __init__(self, desktop):
        self._worked = True
        versions = ", ".join(f"{package} {version(package)}" for package in desktop.packages)
        print(f"\n{versions}:\n\n| what | worked |\n| --- | --- |", flush=True)

    def row(self, what, worked, detail=""):
        self._worked = self._worked and bool(worked)
        print(f"| {what} | {'yes' if worked else 'NO'}{', ' + detail if detail else ''} |", flush=True)

    def finish(self):
        return self._worked


def version(package):
    return subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], stdout=subprocess.PIPE, text=True,
                          check=True).stdout
