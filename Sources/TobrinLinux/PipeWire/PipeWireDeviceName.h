/// Which device a stream is linked to, for people. Thread: any.
#pragma once

#include <cstdint>
#include <string>

namespace tobrin {

class PipeWireLoop;

/// The description of the device that the stream with this node id plays on; empty where it has
/// none. Asks over a second connection, which nothing else can end in between, and keeps nothing.
/// Not to be called on the loop's thread; the caller holds the loop's lock.
std::string linkedDeviceName(PipeWireLoop& loop, uint32_t nodeId);

}  // namespace tobrin
