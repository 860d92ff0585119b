"""PulseAudio for the sound, beside a PipeWire that has no sound devices and is there for shared screens."""

import contextlib

from configuration import write
from listening import Background
from pulseaudio import PulseAudio

NO_DEVICES = """alsa_monitor.enabled = false
v4l2_monitor.enabled = false
libcamera_monitor.enabled = false
"""


class ScreenSharing(PulseAudio):
    name, packages = "screen-sharing", ("pulseaudio", "pipewire", "wireplumber")

    @contextlib.contextmanager
    def around(self):
        write("pipewire/pipewire.conf.d/50-private.conf", "")  # the session's own devices
        write("wireplumber/main.lua.d/51-no-devices.lua", NO_DEVICES)
        write("wireplumber/bluetooth.lua.d/51-no-devices.lua", "bluez_monitor.enabled = false\n")
        with Background(["pipewire"]), Background(["wireplumber"]):
            yield


make = ScreenSharing
