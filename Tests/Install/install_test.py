#!/usr/bin/env python3
"""What `cmake --install` leaves works wherever it lies, and its manuals know what the programs know:
install_test.py SOURCE BUILD, in a desktop session without a tray."""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

BUILD, SOURCE = (pathlib.Path(sys.argv.pop()) for _ in range(2))
COMMANDS = {
    "tobrin": [[]],
    "tobrin-packs": [[], ["list"], ["check"], ["generate"], ["loudness"], ["render"], ["slice"], ["record"], ["build"], ["import"],
                     ["export"], ["install"]],
    "tobrin-force": [[], ["record"], ["replay"]],
}
UNLISTED = {"tobrin": {"snapshot"}}  # an aid for these documents, which the usage text leaves out
FOR_THE_DESKTOP = {"tobrin": {"at-login"}}  # in the manual alone: the autostart entry passes it, no user types it


def output(*words):
    return subprocess.run(words, stdout=subprocess.PIPE, text=True, check=True, timeout=60).stdout


def options(text):
    return set(re.findall(r"--([a-z][a-z-]*[a-z])", text))


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.root = pathlib.Path(folder.name) / "moved"
        installed = pathlib.Path(folder.name) / "installed"
        output("cmake", "--install", BUILD, "--prefix", installed)
        installed.rename(cls.root)
        cls.version = output(cls.root / "bin/tobrin", "--version").strip()

    def test_the_tree_may_be_moved(self):
        packs = json.loads(output(self.root / "bin/tobrin-packs", "list", "--json"))
        folders = {pathlib.Path(pack["folder"]).parent for pack in packs if pack["bundled"]}
        self.assertEqual(folders, {self.root / "share/tobrin/Packs"})
        for script in ("front-window.js", "place-panel.js"):
            self.assertTrue((self.root / "share/tobrin/kwin" / script).exists())
        icons = {path.stem for path in self.root.glob("share/icons/hicolor/*/*/*.svg")}
        self.assertLessEqual({f"app.tobrin.Tobrin-{each}" for each in ("playing", "silent", "playing-symbolic",
                                                                       "silent-symbolic")}, icons)
        with subprocess.Popen([self.root / "bin/tobrin"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True) as program:
            subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "^Tobrin$"],
                           stdout=subprocess.DEVNULL, timeout=60, check=True)
            program.terminate()
            self.assertNotIn("can't load", program.communicate(timeout=60)[0])

    def test_manuals_and_completions_name_every_option(self):
        zsh = (self.root / "share/zsh/site-functions/_tobrin").read_text()
        for program, commands in COMMANDS.items():
            known = set(UNLISTED.get(program, ()))
            for command in commands:
                known |= options(output(self.root / "bin" / program, *command, "--help")) | {"help", "version"}
            page = (self.root / f"share/man/man1/{program}.1").read_text().replace("\\-", "-")
            bash = (self.root / f"share/bash-completion/completions/{program}").read_text()
            fish = (self.root / f"share/fish/vendor_completions.d/{program}.fish").read_text()
            self.assertEqual(options(page), known | FOR_THE_DESKTOP.get(program, set()), f"{program}.1")
            self.assertEqual(options(bash), known, f"{program}, bash")
            self.assertEqual(set(re.findall(r"^complete .* -l ([a-z-]+)", fish, re.MULTILINE)), known, f"{program}, fish")
            self.assertLessEqual(known, options(zsh), f"{program}, zsh")
            self.assertIn(f"Tobrin {self.version}", page)

    def test_the_changelog_follows_the_version(self):
        headings = re.findall(r"^## (.*)$", (SOURCE / "CHANGELOG.md").read_text(), re.MULTILINE)
        released = [tuple(map(int, re.match(r"\d+\.\d+\.\d+", text)[0].split(".")))
                    for text in headings if text != "Unreleased"]
        self.assertEqual(released, sorted(set(released), reverse=True))
        self.assertTrue(headings[0] == "Unreleased" or headings[0].startswith(self.version), headings)
        self.assertNotIn("Unreleased", headings[1:])


if __name__ == "__main__":
    unittest.main()
