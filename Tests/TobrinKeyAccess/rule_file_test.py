#!/usr/bin/env python3
"""What the helper writes, below a folder that stands for the root: rule_file_test.py PROGRAM RULE"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

RULE, PROGRAM = pathlib.Path(sys.argv.pop()), sys.argv.pop()
NOBODY = "nobody" if os.geteuid() == 0 else None


class RuleFileTest(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.root)
        self.root.chmod(0o777)
        # Where the user nobody can start it, in whatever folder it was built.
        self.program = shutil.copy(PROGRAM, self.root)
        self.file = self.root / "etc/udev/rules.d/70-tobrin-keys.rules"

    def run_as_user(self, action, user=NOBODY, **variables):
        return subprocess.run([self.program, action, "--root", self.root], user=user, env=variables, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def test_it_is_written_whole_and_taken_back(self):
        for _ in range(2):
            written = self.run_as_user("grant")
            self.assertEqual((written.returncode, written.stdout), (0, f"Wrote {self.file}.\n"), written.stderr)
            self.assertEqual(self.file.read_text(encoding="utf-8"), RULE.read_text(encoding="utf-8"))
            self.assertEqual(self.file.stat().st_mode & 0o7777, 0o644)
        self.assertEqual(list(self.file.parent.iterdir()), [self.file], "no draft is left")
        self.assertIn(RULE.read_text(encoding="utf-8"), self.run_as_user("explain").stdout)
        for said in ("Deleted", "There is no"):
            self.assertTrue(self.run_as_user("--remove").stdout.startswith(said))
            self.assertFalse(self.file.exists())

    def test_a_failure_leaves_what_was_there(self):
        self.run_as_user("grant")
        self.file.write_text("older", encoding="utf-8")
        self.file.parent.chmod(0o555)
        self.addCleanup(self.file.parent.chmod, 0o755)  # or nobody but root can clean up
        failed = self.run_as_user("grant")
        self.assertEqual(failed.returncode, 1)
        self.assertIn("Permission denied", failed.stderr)
        self.assertEqual(self.file.read_text(encoding="utf-8"), "older")

    def test_no_user_leads_root_to_a_folder_they_chose(self):
        callers = [self.run_as_user("grant", PKEXEC_UID="1000")]
        if NOBODY:
            callers.append(self.run_as_user("grant", user=None))
        for refused in callers:
            self.assertEqual(refused.returncode, 2)
        self.assertFalse(self.file.exists())


if __name__ == "__main__":
    unittest.main()
