"""The folders and environment variables that keep a session apart from the machine around it."""

import fcntl
import os
import shutil
import tempfile
import time

_PREFIX = "tobrin-desktop."
_FOREIGN = ("XDG_", "PIPEWIRE_", "PULSE_", "WIREPLUMBER_", "DBUS_", "WAYLAND_", "SPA_", "QT_", "ALSA_")
_FOREIGN_NAMES = ("DISPLAY", "XAUTHORITY", "SESSION_MANAGER", "DESKTOP_SESSION", "MODULE_DIR")


class Folders:
    """The session's private folder tree; a lock in it shows that the session lives."""

    def __init__(self):
        base = tempfile.gettempdir()
        # A socket's path holds 107 bytes at most.
        if len(base) > 60:
            base = "/tmp"
        _sweep(base)
        self.root = tempfile.mkdtemp(prefix=_PREFIX, dir=base)
        self._lock = open(os.path.join(self.root, "lock"), "w", encoding="ascii")
        fcntl.flock(self._lock, fcntl.LOCK_EX)
        for name in ("run", "home", "config", "state", "cache", "data", "log"):
            os.mkdir(os.path.join(self.root, name), 0o700)
            setattr(self, name, os.path.join(self.root, name))

    def write_config(self, relative, text):
        path = os.path.join(self.config, relative)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def remove(self):
        shutil.rmtree(self.root, ignore_errors=True)
        self._lock.close()


def _sweep(base):
    """Removes what sessions that were killed outright left behind."""
    for entry in os.scandir(base):
        if not entry.name.startswith(_PREFIX):
            continue
        try:
            status = entry.stat(follow_symlinks=False)
            # A young folder may belong to a session that has not locked it yet.
            if status.st_uid != os.getuid() or time.time() - status.st_mtime < 60:
                continue
            with open(os.path.join(entry.path, "lock"), "r+", encoding="ascii") as lock:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
                shutil.rmtree(entry.path, ignore_errors=True)
        except OSError:
            pass  # alive, or gone already


def private_environment(folders, keep_home, wayland=False):
    """This process's environment with everything that leads to another session replaced."""
    environment = {name: value for name, value in os.environ.items()
                   if not name.startswith(_FOREIGN) and name not in _FOREIGN_NAMES}
    environment.update(
        XDG_RUNTIME_DIR=folders.run, XDG_CONFIG_HOME=folders.config, XDG_STATE_HOME=folders.state,
        XDG_CACHE_HOME=folders.cache, XDG_DATA_HOME=folders.data, XDG_CONFIG_DIRS="/etc/xdg",
        XDG_DATA_DIRS="/usr/local/share:/usr/share", XDG_CURRENT_DESKTOP="Test",
        XDG_SESSION_TYPE="wayland" if wayland else "x11",
        # Leads nowhere: the machine's own system bus (real-time kit, logind) stays out of the session.
        DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={folders.run}/system-bus",
        NO_AT_BRIDGE="1", TOBRIN_DESKTOP=folders.root)
    if not wayland:
        environment["QT_QPA_PLATFORM"] = "xcb"
    environment.setdefault("LANG", "C.UTF-8")
    environment.setdefault("PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin")
    if not keep_home or "HOME" not in environment:
        environment["HOME"] = folders.home
    return environment
