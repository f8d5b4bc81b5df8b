// How a child program reports while it works.
#pragma once

#include "foundation/text_id.h"

#include <initializer_list>
#include <string_view>

namespace Compagnon {

using Outils_Texte::EText;

enum class ELevel : int { information = 0, warning = 1, error = 2 };

// How a run ends; the values are the exit codes of the engine.
enum class ERunEnd : int { finished = 0, failed = 1, stopped = 2 };

// Receives the reports of a run. The line protocol implements it, and a list in tests. One thread.
class IRunMonitor {
  public:
    virtual ~IRunMonitor() = default;
    // Percent done, 0 to 100, never decreasing. Cheap: call it often.
    virtual void Progress(double percent) = 0;
    // `text` is the numbered text `code` with its arguments filled in.
    virtual void Message(ELevel level, EText code, std::string_view text) = 0;
    // Waits while the run is paused. False once the run is to stop. Ask at least ten times a second.
    virtual bool GoOn() = 0;

    // Formats the numbered text and reports it.
    void Report(ELevel level, EText code, std::initializer_list<std::string_view> arguments = {}) {
        Message(level, code, Outils_Texte::FormatText(code, arguments));
    }
};

} // namespace Compagnon
