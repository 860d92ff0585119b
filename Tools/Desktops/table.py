"""What worked, as a table for people."""

import subprocess


class Table:
    """Rows come out as they are known; `finish` says whether all worked."""

    def __init__(self, packages):
        self._worked = True
        versions = ", ".join(f"{package} {version(package)}" for package in packages)
        print(f"\n{versions}:\n\n| what | worked |\n| --- | --- |", flush=True)

    def row(self, what, worked, detail=""):
        self._worked = self._worked and bool(worked)
        _print(what, "yes" if worked else "NO", detail)
        return worked

    @staticmethod
    def not_here(what, why):
        """What this machine cannot try."""
        _print(what, "not here", why)

    def finish(self):
        return self._worked


def _print(what, worked, detail):
    print(f"| {what} | {worked}{': ' + detail if detail else ''} |", flush=True)


def version(package):
    return subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], stdout=subprocess.PIPE, text=True,
                          check=True).stdout
