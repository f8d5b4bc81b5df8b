#include "morvex/line_monitor.h"

#include "foundation/numbers.h"
#include "foundation/texts.h"

#include <algorithm>
#include <utility>

namespace Morvex {

using Outils_Texte::EText;

std::string QuoteText(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"') quoted += '"';
        quoted += c == '\n' || c == '\r' || c == '\0' ? ' ' : c;
    }
    return quoted += '"';
}

std::string MakeProgressLine(double percent) {
    return "progress " + Outils_Texte::FormatFixed(std::clamp(percent, 0.0, 100.0), 1) + "\n";
}

std::string MakeMessageLine(ELevel level, int code, std::string_view text) {
    return "message " + std::to_string(static_cast<int>(level)) + " " +
           std::to_string(static_cast<int>(code)) + " " + QuoteText(text) + "\n";
}

CLineMonitor::CLineMonitor(CRunControl& control, bool remote, std::function<bool(std::string_view)> write)
    : m_control(control), m_remote(remote), m_write(std::move(write)) {}

void CLineMonitor::Write(std::string_view line) {
    if (!m_write(line)) m_control.Command("stop");
}

void CLineMonitor::Progress(double percent) {
    const auto now = std::chrono::steady_clock::now();
    // For people a line in two seconds is enough.
    const std::chrono::milliseconds period(m_remote ? 100 : 2000);
    const bool first = m_lastPercent < 0.0;
    if (percent <= m_lastPercent || (!first && percent < 100.0 && now - m_lastProgress < period)) return;
    m_lastProgress = now;
    m_lastPercent = percent;
    Write(m_remote ? MakeProgressLine(percent) : Outils_Texte::FormatFixed(percent, 1) + " %\n");
}

void CLineMonitor::Message(ELevel level, EText code, std::string_view text) {
    if (m_remote) {
        Write(MakeMessageLine(level, static_cast<int>(code), text));
        return;
    }
    constexpr std::string_view words[] = {"INFO", "WARNING", "ERROR"};
    std::string line(words[static_cast<std::size_t>(level)]);
    line += " : ";
    line += text;
    Write(line += '\n');
}

} // namespace Morvex
