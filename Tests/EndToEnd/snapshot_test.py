#!/usr/bin/env python3
"""Pictures of the panel on a machine without display and sound server: snapshot_test.py PROGRAM PACKS"""

import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

PACKS, PROGRAM = sys.argv.pop(), sys.argv.pop()


class SnapshotTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def snapshot(self, *words, **variables):
        """Exit status and output of a run that finds nothing but packs."""
        sanitizers = {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
        bare = {"PATH": os.environ["PATH"], "HOME": str(self.folder), "XDG_RUNTIME_DIR": str(self.folder),
                "TOBRIN_PACKS": PACKS, **sanitizers, **variables}
        run = subprocess.run([PROGRAM, "--snapshot", *words], env=bare, cwd=self.folder, check=False, timeout=60,
                             stdout=subprocess.PIPE, text=True)
        return run.returncode, run.stdout

    def picture(self, name="menu.png"):
        """Bytes and size of a picture that was written."""
        data = (self.folder / name).read_bytes()
        self.assertEqual(data[:8], b"\x89PNG\r\n\x1a\n")
        return data, struct.unpack(">II", data[16:24])

    def test_every_word_changes_the_picture(self):
        settings = self.folder / ".config/Tobrin/settings.json"
        settings.parent.mkdir(parents=True)
        settings.write_text("broken", encoding="utf-8")
        pictures = []
        for words in ((), ("dark",), ("contrast",), ("more",), ("call",), ("pack=panda",)):
            self.assertEqual(self.snapshot(*words), (0, ""))
            pictures.append(self.picture()[0])
        self.assertEqual(len(set(pictures)), 6)
        self.assertEqual(self.snapshot("call", "other", "dark", QT_SCALE_FACTOR="2"), (0, ""))
        (_, small), (_, large) = self.picture(), self.picture("other")
        self.assertEqual(large[0], 2 * small[0])
        self.assertEqual((list(settings.parent.iterdir()), settings.read_text(encoding="utf-8")), ([settings], "broken"),
                         "nothing else is written")

    def test_what_is_wrong_is_said(self):
        for words, said in ((("pack=none",), 'There is no pack "none".'), (("no/where.png",), "no/where.png: "),
                            (("a.png", "b.png"), "Usage: "), (("x.unknown",), "x.unknown: Unsupported image format")):
            status, output = self.snapshot(*words)
            self.assertEqual(status, 1, words)
            self.assertTrue(output.startswith(said), output)


if __name__ == "__main__":
    unittest.main()
