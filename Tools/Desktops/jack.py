"""JACK alone, which ALSA's programs reach by way of its plugin, as JACK's users set it up."""

import contextlib
import os
import pathlib
import subprocess
import threading
import time

from listening import Background
from listening.panel import eventually
from soundtrial import SoundServer, peak

ALSA = """pcm.!default { type plug slave.pcm "jack" }
pcm.jack { type jack
  playback_ports { 0 system:playback_1 1 system:playback_2 }
  capture_ports { 0 system:capture_1 1 system:capture_2 }
}
"""


class Jack(SoundServer):
    name, packages = "jack", ("jackd2", "libasound2-plugins")
    says_who_records = False

    @contextlib.contextmanager
    def around(self):
        (pathlib.Path(os.environ["HOME"]) / ".asoundrc").write_text(ALSA, encoding="ascii")
        yield

    @contextlib.contextmanager
    def running(self):
        with Background(["jackd", "--no-realtime", "-d", "dummy", "-r", "48000", "-p", "256"]) as server:
            eventually(ports)
            yield
            server.stop()

    @contextlib.contextmanager
    def listening(self):
        """The program's ports are there only while it plays; they are joined to the recorder as they come."""
        file = pathlib.Path(os.environ["XDG_RUNTIME_DIR"]) / "heard.wav"
        with subprocess.Popen(["jack_rec", "-f", file, "-d", "20", "-b", "16", "system:capture_1"],
                              stdout=subprocess.DEVNULL) as recorder:
            joiner = threading.Thread(target=_join_ports, args=(recorder,))
            joiner.start()
            yield lambda: peak(file.read_bytes())
            recorder.wait()
            joiner.join()


def ports():
    """None where the server does not answer."""
    return subprocess.run(["jack_lsp"], stdout=subprocess.PIPE, text=True, check=False).stdout.split()


def _join_ports(recorder):
    while recorder.poll() is None:
        for port in ports():
            if ":out_" in port:
                subprocess.run(["jack_connect", port, "jackrec:input1"], stderr=subprocess.DEVNULL, check=False)
        time.sleep(0.2)


make = Jack
