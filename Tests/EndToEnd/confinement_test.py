#!/usr/bin/env python3
"""What the program asks of the kernel in its life: confinement_test.py PROGRAM PACKS, in a desktop session."""

import collections
import os
import pathlib
import re
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "Tools" / "Desktop"))
from listening import DesktopTest, Tobrin, panels, press_keys, press_toggle  # noqa: E402

os.environ["ASAN_OPTIONS"] = "detect_leaks=0"  # the leak sanitizer wants to trace, too
PACKS, PROGRAM = sys.argv.pop(), sys.argv.pop()
CALLS = "socket,io_uring_setup,open,openat,openat2,creat,rename,renameat,renameat2,link,linkat,symlink,symlinkat"
FOR_WRITING = re.compile(r"O_WRONLY|O_RDWR|O_CREAT|O_TMPFILE|creat\(|rename|link")


class Traced(Tobrin):
    """The program as a child of strace, which writes down every call of every thread."""

    def __init__(self, log):
        super().__init__("strace", PACKS, ["-f", "-qq", "-s", "400", "-o", str(log), "-e", f"trace={CALLS}", PROGRAM])

    def end(self):
        tracer = self.process.pid
        children = pathlib.Path(f"/proc/{tracer}/task/{tracer}/children").read_text(encoding="ascii").split()
        os.kill(int(children[0]), signal.SIGTERM)
        return self.process.wait(60)


class ConfinementTest(DesktopTest):
    def setUp(self):
        super().setUp()
        self.log = self.folder / "calls"
        with Traced(self.log) as program:
            program.wait_for("status:")
            press_keys("--text", "my secret", "--interval", 60)
            while not panels():  # it opens by itself where there is no tray
                time.sleep(0.2)
            for _ in range(2):  # off and on: settings are written
                press_toggle()
                time.sleep(0.5)
            press_keys("--text", "my secret", "--interval", 60)
            self.assertEqual(program.end(), 0, program.lines)

    def calls(self, pattern):
        lines = self.log.read_text(encoding="utf-8").splitlines()
        self.assertGreater(len(lines), 100, "the tracer saw the program")
        return [line for line in lines if re.search(pattern, line)]

    def test_it_opens_local_sockets_only_and_writes_its_settings_only(self):
        sockets = self.calls(r"socket\(|io_uring_setup\(")
        self.assertTrue(sockets)
        self.assertEqual([call for call in sockets if "AF_UNIX" not in call and "KOBJECT_UEVENT" not in call], [])

        settings = re.escape(os.environ["XDG_CONFIG_HOME"]) + r"/Tobrin/\.?settings\.json[.\w]*"
        expected = "|".join((settings, re.escape(os.environ["XDG_RUNTIME_DIR"]) + r"/tobrin\.lock", "/dev/null",
                             r"/proc/(self|\d+)/task/\d+/comm",
                             r"/tmp/tsan\.rodata\.\d+"))  # the last is the thread sanitizer's own
        written = [call for call in self.calls("") if FOR_WRITING.search(call.split('"')[0] + call.split('"')[-1])]
        paths = {path for call in written for path in re.findall('"([^"]*)"', call)}
        self.assertTrue(any("settings.json" in path for path in paths))
        self.assertEqual([path for path in paths if not re.fullmatch(expected, path)], [])


class AudioThreadTest(DesktopTest):
    def test_it_only_waits_for_the_servers_cycles_and_answers_them(self):
        log = self.folder / "calls"
        with Tobrin(PROGRAM, PACKS) as program:
            program.wait_for("status:")
            press_keys("--text", "first", "--interval", 60)
            tasks = pathlib.Path(f"/proc/{program.process.pid}/task").iterdir()
            audio = next(task.name for task in tasks if (task / "comm").read_text(encoding="ascii") == "Tobrin.Render\n")
            tracer = subprocess.Popen(["strace", "-o", str(log), "-p", audio], stderr=subprocess.PIPE, text=True)
            self.assertIn("attached", attached := tracer.stderr.readline(), attached)
            press_keys("--text", "my secret", "--interval", 60)
            tracer.send_signal(signal.SIGINT)
            tracer.communicate()
            self.assertEqual(program.stop(signal.SIGTERM), 0, program.lines)
        asked = collections.Counter(re.findall(r"^\w+", log.read_text(encoding="utf-8"), re.MULTILINE))
        self.assertGreater(asked["write"], 20, asked)
        self.assertEqual(set(asked) - {"epoll_wait", "epoll_pwait", "read", "write", "restart_syscall"}, set())


if __name__ == "__main__":
    unittest.main()
