// Writes a run's reports on standard output: protocol lines for the application, or plain text for people.
#pragma once

#include "common/run_control.h"
#include "common/run_monitor.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace Compagnon {

// Which form the reports take.
enum class EDialect : unsigned char {
    plain, // text for people
    tool,  // protocol: message info|warning|error "text"
    engine // protocol: message LEVEL CODE "text"
};

// A text as one token of a protocol line: in double quotes, inner quotes doubled, line ends as blanks.
std::string QuoteText(std::string_view text);
// Lines with their line feed. `percent` is clipped to 0 to 100.
std::string MakeProgressLine(double percent);
std::string MakeMessageLine(EDialect dialect, ELevel level, int code, std::string_view text);

class CLineMonitor : public IRunMonitor {
  public:
    // `write` takes whole lines; it returns false when nobody listens any more, which stops the run.
    // `control` must outlive the monitor.
    CLineMonitor(CRunControl& control, EDialect dialect, std::function<bool(std::string_view)> write);

    // Writes at most about ten lines a second for the application, one in two seconds for people, and always
    // the line of 100.
    void Progress(double percent) override;
    void Message(ELevel level, EText code, std::string_view text) override;
    bool GoOn() override { return m_control.GoOn(); }

  private:
    void Write(std::string_view line);

    CRunControl& m_control;
    EDialect m_dialect;
    std::function<bool(std::string_view)> m_write;
    std::chrono::steady_clock::time_point m_lastProgress;
    double m_lastPercent = -1.0;
};

} // namespace Compagnon
