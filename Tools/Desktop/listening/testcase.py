"""What the tests in a private desktop session have in common."""

import pathlib
import tempfile
import unittest


class DesktopTest(unittest.TestCase):
    """A test with a private folder."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
