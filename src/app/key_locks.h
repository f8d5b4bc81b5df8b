// Whether the lock keys of the keyboard are on, as far as the platform tells.
#pragma once

#include <optional>

namespace Application_Tarvel {

enum class ELock { caps, num, scroll };

// Empty when it cannot be known.
std::optional<bool> ReadLock(ELock lock);

} // namespace Application_Tarvel
