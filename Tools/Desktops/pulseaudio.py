"""PulseAudio without PipeWire."""

import contextlib
import os
import pathlib
import subprocess
import threading

from listening import Background
from listening.panel import eventually
from soundtrial import SoundServer, peak

DEVICES = """load-module module-native-protocol-unix
load-module module-null-sink sink_name=speaker
load-module module-null-source source_name=microphone
set-default-sink speaker
set-default-source microphone
"""


class PulseAudio(SoundServer):
    name, packages = "pulseaudio", ("pulseaudio", "libasound2-plugins")

    def around(self):
        return contextlib.nullcontext()

    @contextlib.contextmanager
    def running(self):
        devices = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "devices.pa"
        devices.write_text(DEVICES, encoding="ascii")
        command = ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-F", str(devices)]
        with Background(command) as server:
            eventually(answers)
            yield
            server.stop()

    def listening(self):
        return listening_to(["parec", "--raw", "--format=s16le", "--device=speaker.monitor"])

    def recorder(self):
        return Background(["parec", "--raw", "--device=microphone", "/dev/null"])


def answers():
    return subprocess.run(["pactl", "info"], stdout=subprocess.DEVNULL, check=False).returncode == 0


@contextlib.contextmanager
def listening_to(command):
    """Runs a program that writes 16-bit samples; gives what tells their peak, as a share of full scale."""
    with subprocess.Popen(command, stdout=subprocess.PIPE) as process:
        parts = []
        reader = threading.Thread(target=lambda: parts.extend(iter(lambda: process.stdout.read(4096), b"")))
        reader.start()
        yield lambda: peak(b"".join(parts))
        process.terminate()
        reader.join()


make = PulseAudio
