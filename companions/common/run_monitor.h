// What the engine tells its user while it works.
#pragma once

#include "foundation/texts.h"

#include <string_view>

namespace Morvex {

using Outils_Texte::EText;

enum class ELevel : int { information = 0, warning = 1, error = 2 };

using Outils_Texte::EText;

// Where they go; implemented over the line protocol, and by a list in tests.
class IRunMonitor {
  public:
    virtual ~IRunMonitor() = default;
    // Percent done; called often, never decreasing.
    virtual void Progress(double percent) = 0;
    virtual void Message(ELevel level, EText code, std::string_view text) = 0;
    // Asked all the time: waits while the run is paused, false once it is to stop.
    virtual bool GoOn() = 0;
};

} // namespace Morvex
