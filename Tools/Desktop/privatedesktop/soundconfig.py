"""Drop-in files that make the stock sound server run without hardware, at a chosen quantum."""

_SERVER = """
context.properties = {{
    default.clock.rate        = 48000
    default.clock.quantum     = {quantum}
    default.clock.min-quantum = {min_quantum}
    default.clock.max-quantum = 8192
    # Inside virtual machines the stock file's overrides win over the keys above.
    vm.overrides = {{ default.clock.min-quantum = {min_quantum} }}
}}
context.spa-libs = {{ audiotestsrc = audiotestsrc/libspa-audiotestsrc }}
context.objects = [
{nodes}]
"""

_NODE = """    {{ factory = adapter
        args = {{
            factory.name     = {factory}
            node.name        = {name}
            node.description = "{name}"
            media.class      = {media_class}
            audio.rate       = {rate}
            audio.position   = [ {channels} ]
            priority.session = {priority}
            priority.driver  = {driver_priority}
            monitor.channel-volumes = false
            session.suspend-timeout-seconds = {suspend}
            object.linger    = true
        }}
    }}
"""

_PULSE = """
pulse.properties = {{
    pulse.min.req     = {min_quantum}/48000
    pulse.min.frag    = {min_quantum}/48000
    pulse.min.quantum = {min_quantum}/48000
    vm.overrides = {{ pulse.min.quantum = {min_quantum}/48000 }}
}}
"""

_POLICY = """-- no hardware, no portal, nothing remembered between runs
alsa_monitor.enabled = false
v4l2_monitor.enabled = false
libcamera_monitor.enabled = false
default_access.properties["enable-flatpak-portal"] = false
device_defaults.properties["use-persistent-storage"] = false
stream_defaults.properties["restore-props"] = false
stream_defaults.properties["restore-target"] = false
"""


def _sink(name, rate, priority, suspend):
    return _NODE.format(factory="support.null-audio-sink", name=name, media_class="Audio/Sink", rate=rate,
                        channels="FL FR", priority=priority, driver_priority=priority, suspend=suspend)


def _nodes(options):
    suspend = options.suspend_seconds
    # The microphone outranks the sink, whose monitor would be the default source otherwise.
    text = _sink("test_sink", 48000, 1000, suspend)
    text += _NODE.format(factory="support.null-audio-sink", name="test_mic", media_class="Audio/Source/Virtual",
                         rate=48000, channels="MONO", priority=2000, driver_priority=900, suspend=suspend)
    for extra in options.extra_sinks:
        name, _, rate = extra.partition(":")
        text += _sink(name, rate or "48000", 500, suspend)
    if options.tone_mic:
        # No null sink: it has capture ports instead of monitor ports, and it is never silent.
        text += _NODE.format(factory="audiotestsrc", name="tone_mic", media_class="Audio/Source", rate=48000,
                             channels="MONO", priority=400, driver_priority=400, suspend=suspend)
    return text


def write_sound_config(folders, options):
    folders.write_config("pipewire/pipewire.conf.d/50-private.conf", _SERVER.format(
        quantum=options.quantum, min_quantum=options.min_quantum, nodes=_nodes(options)))
    folders.write_config("pipewire/pipewire-pulse.conf.d/50-private.conf",
                         _PULSE.format(min_quantum=options.min_quantum))
    folders.write_config("wireplumber/main.lua.d/51-private.lua", _POLICY)
    folders.write_config("wireplumber/bluetooth.lua.d/51-private.lua", "bluez_monitor.enabled = false\n")
