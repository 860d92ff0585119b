"""Starting, watching and ending processes, and those they leave behind."""

import ctypes
import os
import signal
import subprocess
import time

_PR_SET_PDEATHSIG = 1
_PR_SET_CHILD_SUBREAPER = 36
_libc = ctypes.CDLL(None, use_errno=True)


def adopt_orphans():
    """Makes orphaned descendants children of this process, so that none escapes the tear-down."""
    _libc.prctl(_PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def die_with_parent():
    """For preexec_fn: the kernel kills the child should the parent be killed without warning."""
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL, 0, 0, 0)


def descendants(pid):
    """Process ids below `pid`, parents before children."""
    found, pending = [], [pid]
    while pending:
        parent = pending.pop()
        for child in _children(parent):
            found.append(child)
            pending.append(child)
    return found


def _children(pid):
    children = []
    try:
        for thread in os.listdir(f"/proc/{pid}/task"):
            with open(f"/proc/{pid}/task/{thread}/children", encoding="ascii") as listing:
                children += [int(word) for word in listing.read().split()]
    except OSError:
        pass  # it ended meanwhile
    return children


def wait_until(condition, seconds, pause=0.02):
    """True as soon as `condition()` holds, False when it does not within `seconds`."""
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(pause)
    return True


class Daemons:
    """The named background processes of a session, each with a log file."""

    def __init__(self, log_folder):
        self._log_folder = log_folder
        self._running = {}

    def start(self, name, arguments, environment, pass_fds=()):
        with open(os.path.join(self._log_folder, name + ".log"), "ab") as log:
            process = subprocess.Popen(
                arguments, env=environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                pass_fds=pass_fds, start_new_session=True, preexec_fn=die_with_parent)
        self._running[name] = process
        return process

    def stop(self, names, how=signal.SIGTERM, patience=3.0):
        """Ends the named daemons in this order; what does not go in time is killed."""
        going = [self._running.pop(name) for name in names if name in self._running]
        for process in going:
            if process.poll() is None:
                process.send_signal(how)
        deadline = time.monotonic() + patience
        for process in going:
            try:
                process.wait(max(0.01, deadline - time.monotonic()))
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()

    def pids(self):
        """The ids of those that still run, by name."""
        return {name: process.pid for name, process in self._running.items() if process.poll() is None}

    def is_running(self, name):
        return name in self._running and self._running[name].poll() is None

    def log_tail(self, name, size=2000):
        try:
            with open(os.path.join(self._log_folder, name + ".log"), errors="replace", encoding="utf-8") as log:
                return log.read()[-size:]
        except OSError:
            return ""


def end_orphans(keep, patience=1.5):
    """Ends every descendant of this process except the trees below the process ids in `keep`."""
    kept = set(keep)
    for pid in keep:
        kept.update(descendants(pid))
    for how in (signal.SIGTERM, signal.SIGKILL):
        for pid in _others(kept):
            try:
                os.kill(pid, how)
            except ProcessLookupError:
                pass
        if wait_until(lambda: not _others(kept), patience, pause=0.01):
            return


def _others(kept):
    """The descendants outside `kept` that still run; those that ended are reaped on the way."""
    alive = []
    for pid in descendants(os.getpid()):
        if pid in kept:
            continue
        try:
            if os.waitpid(pid, os.WNOHANG)[0] == pid:
                continue
        except ChildProcessError:
            pass  # a grandchild; its parent reaps it
        alive.append(pid)
    return alive
