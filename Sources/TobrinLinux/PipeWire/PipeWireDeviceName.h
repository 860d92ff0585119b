/// Which device a stream is linked to, for people.
#pragma once

#include <cstdint>
#include <string>

namespace tobrin {

class PipeWireLoop;

/// The description of the device that the stream with this node id plays on; empty where it has
/// none. Asks over a connection of its own, which nothing else can end meanwhile, and keeps
/// nothing. Thread: any but the loop's, holding its lock.
std::string linkedDeviceName(PipeWireLoop& loop, uint32_t nodeId);

}  // namespace tobrin
