// Finds where a damaged stream goes on.
#pragma once

#include "xpf/file.h"

#include <functional>

namespace Persistance_Xpf {

// Moves the file pointer to the first whole packet at or after `from`; false when there is none, or when
// `goOn` returns false, which is asked for every 64 KiB and may be empty. CXpfFile::SearchPacketForward gives
// up after a place that only looks like a packet; this search tries every place with the magic.
bool FindWholePacket(CXpfFile& file, std::int64_t from, const std::function<bool()>& goOn = {});

} // namespace Persistance_Xpf
