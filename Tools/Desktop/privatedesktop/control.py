"""The socket through which the command inside a session disturbs the services around it."""

import os
import signal
import socket


class Control:
    """One line in, one line out: "ok NAME=PID..." or "error: ...". See desktop-ctl for the commands."""

    def __init__(self, folders, services, daemons):
        self._daemons = daemons
        self.path = os.path.join(folders.run, "control")
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.bind(self.path)
        self._socket.listen(4)
        self._commands = {
            "pids": lambda: None,
            "kill-sound": services.crash_sound,
            "stop-sound": services.stop_sound,
            "start-sound": services.start_sound,
            "restart-sound": lambda: (services.stop_sound(), services.start_sound()),
            "kill-policy": lambda: daemons.stop(["wireplumber"], signal.SIGKILL),
            "kill-display": lambda: daemons.stop(["display"], signal.SIGKILL),
            "start-display": services.start_display,
            "kill-bus": lambda: daemons.stop(["session-bus"], signal.SIGKILL),
            "start-bus": services.start_bus,
            "start-system-bus": lambda: services.start_bus("system-bus"),
            "kill-system-bus": lambda: daemons.stop(["system-bus"], signal.SIGKILL),
        }

    def fileno(self):
        return self._socket.fileno()

    def serve_one(self):
        client, _ = self._socket.accept()
        with client:
            client.settimeout(2)
            try:
                client.sendall(self._answer(client.recv(256).decode().strip()).encode())
            except OSError:
                pass  # the asker went away

    def close(self):
        self._socket.close()

    def _answer(self, command):
        if command not in self._commands:
            return f"error: unknown command '{command}', known: {' '.join(self._commands)}\n"
        try:
            self._commands[command]()
        except (OSError, RuntimeError) as error:
            return f"error: {error}\n"
        return "ok " + " ".join(f"{name}={pid}" for name, pid in self._daemons.pids().items()) + "\n"
