"""One test program of the build: what is in it, how long it takes, and what fails."""
import hashlib
import json
import os
import pathlib
import re
import signal
import subprocess
import tempfile

# Seconds. Tests that take longer are asked last.
SLOW = 0.3


def environment(home):
    hidden = ('DISPLAY', 'WAYLAND_DISPLAY', 'DBUS_SESSION_BUS_ADDRESS')
    env = {key: value for key, value in os.environ.items() if key not in hidden}
    return env | {name: home for name in ('HOME', 'XDG_CONFIG_HOME', 'XDG_RUNTIME_DIR', 'TMPDIR')} | {
        'QT_QPA_PLATFORM': 'offscreen', 'GTEST_FAIL_FAST': '1', 'GTEST_BRIEF': '1'}


class Program:
    """`line` is one of unit-tests.txt: a target and its file."""

    def __init__(self, line):
        self.target, file = line.split()
        self.file = pathlib.Path(file)
        self.seconds = {}  # of each test
        self.noticed = {}  # the tests that noticed a change of a source before, the last one first
        self.unchanged = self.sum()

    def sum(self):
        """The same for two builds that behave the same."""
        return hashlib.sha256(self.file.read_bytes()).digest() if self.file.exists() else None

    def measure(self):
        """Runs the program whole; the name of a test that fails already."""
        with tempfile.TemporaryDirectory() as folder:
            report = pathlib.Path(folder) / 'report.json'
            failed = self.run([f'--gtest_output=json:{report}'], 300)
            if not failed and report.exists():
                self.seconds = {f'{suite["name"]}.{test["name"]}': float(test['time'].rstrip('s'))
                                for suite in json.loads(report.read_text())['testsuites'] for test in suite['testsuite']}
        return failed

    def failure(self, source, near):
        """The name of the first test that fails with this change of `source`; None where all pass."""
        for tests in self.groups(source, near):
            limit = 10 + 10 * sum(map(self.seconds.get, tests))
            failed = self.run([f'--gtest_filter={":".join(tests)}'], limit) if tests else None
            if failed:
                if failed in self.seconds:
                    self.remember(source, failed)
                return failed
        return None

    def groups(self, source, near):
        """All tests, the likeliest to notice first; `near` are suites whose sources are next to the changed one."""
        left = sorted(self.seconds, key=self.seconds.get)
        before = self.noticed.get(source, [])[:5]
        quick = [test for test in left if test not in before and self.seconds[test] < SLOW]
        close = [test for test in quick if near.intersection(re.split('[./]', test))]
        return (before, close, [test for test in quick if test not in close],
                [test for test in left if test not in before and test not in quick])

    def remember(self, source, test):
        tests = self.noticed.setdefault(source, [])
        if test in tests:
            tests.remove(test)
        tests.insert(0, test)

    def run(self, options, limit):
        with tempfile.TemporaryDirectory() as home:
            process = subprocess.Popen([self.file, *options], env=environment(home), cwd=home, text=True, errors='replace',
                                       stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                       start_new_session=True)
            try:
                output, _ = process.communicate(timeout=limit)
            except subprocess.TimeoutExpired:
                return f'{self.target}: no end'
            finally:
                self.end(process)
        if process.returncode == 0:
            return None
        failed = re.search(r'\[  FAILED  \] ([\w./]+)', output)
        return failed.group(1) if failed else self.target

    @staticmethod
    def end(process):
        """What a test that died left running goes with it."""
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.communicate()
