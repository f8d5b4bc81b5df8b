#include "common/line_monitor.h"

#include "foundation/numbers.h"

#include <algorithm>
#include <utility>

namespace Compagnon {

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

std::string MakeMessageLine(EDialect dialect, ELevel level, int code, std::string_view text) {
    constexpr std::string_view kToolWords[] = {"info", "warning", "error"};
    constexpr std::string_view kPlainWords[] = {"INFO", "WARNING", "ERROR"};
    const auto index = static_cast<std::size_t>(level);
    switch (dialect) {
    case EDialect::plain: return std::string(kPlainWords[index]) + " : " + std::string(text) + "\n";
    case EDialect::tool: return "message " + std::string(kToolWords[index]) + " " + QuoteText(text) + "\n";
    case EDialect::engine:
        return "message " + std::to_string(index) + " " + std::to_string(code) + " " + QuoteText(text) + "\n";
    }
    return {};
}

CLineMonitor::CLineMonitor(CRunControl& control, EDialect dialect,
                           std::function<bool(std::string_view)> write)
    : m_control(control), m_dialect(dialect), m_write(std::move(write)) {}

void CLineMonitor::Write(std::string_view line) {
    if (!m_write(line)) m_control.Command("stop");
}

void CLineMonitor::Progress(double percent) {
    const auto now = std::chrono::steady_clock::now();
    const bool plain = m_dialect == EDialect::plain;
    const std::chrono::milliseconds least(plain ? 2000 : 100);
    const bool first = m_lastPercent < 0.0;
    if (percent <= m_lastPercent || (!first && percent < 100.0 && now - m_lastProgress < least)) return;
    m_lastProgress = now;
    m_lastPercent = percent;
    Write(plain ? Outils_Texte::FormatFixed(percent, 1) + " %\n" : MakeProgressLine(percent));
}

void CLineMonitor::Message(ELevel level, EText code, std::string_view text) {
    Write(MakeMessageLine(m_dialect, level, static_cast<int>(code), text));
}

} // namespace Compagnon
