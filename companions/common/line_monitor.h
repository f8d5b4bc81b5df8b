// What the engine says on its standard output: protocol lines for the application, or plain text.
#pragma once

#include "foundation/texts.h"
#include "morvex/messages.h"
#include "morvex/run_control.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace Morvex {

using Outils_Texte::EText;

// A text as one token of a protocol line: in double quotes, each one inside doubled, line ends as blanks.
std::string QuoteText(std::string_view text);
// Lines with their line feed. `percent` from 0 to 100.
std::string MakeProgressLine(double percent);
std::string MakeMessageLine(ELevel level, int code, std::string_view text);

class CLineMonitor : public IRunMonitor {
  public:
    // `write` gets whole lines and answers false when nobody listens any more, which stops the run. `remote`:
    // protocol lines; else text for people.
    CLineMonitor(CRunControl& control, bool remote, std::function<bool(std::string_view)> write);

    // At most about ten lines in a second, and always 100.
    void Progress(double percent) override;
    void Message(ELevel level, EText code, std::string_view text) override;
    bool GoOn() override { return m_control.GoOn(); }

  private:
    void Write(std::string_view line);

    CRunControl& m_control;
    bool m_remote;
    std::function<bool(std::string_view)> m_write;
    std::chrono::steady_clock::time_point m_lastProgress;
    double m_lastPercent = -1.0;
};

} // namespace Morvex
