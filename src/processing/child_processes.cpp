#include "processing/child_processes.h"

#include "foundation/numbers.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace Communication_Processus {

namespace {

// The percentage of the line that all children share. False when the line is another one.
bool ParseProgress(const std::vector<std::string>& tokens, std::optional<float>& percent) {
    if (tokens.empty() || tokens[0] != "progress") return false;
    percent = tokens.size() == 2 ? ParsePercent(tokens[1]) : std::nullopt;
    return true;
}

} // namespace

void CProcessMorvex::Close() {
    CRemoteProcess::Close();
    m_progress.store(0.0f, std::memory_order_release);
}

void CProcessMorvex::OnCommand(const std::vector<std::string>& tokens) {
    auto* const sink = m_sink.Get();
    std::optional<float> percent;
    if (ParseProgress(tokens, percent)) {
        if (percent) m_progress.store(*percent, std::memory_order_release);
        if (percent && sink) sink->OnProgress(*percent);
        return;
    }
    if (!sink || tokens.size() != 4 || tokens[0] != "message") return;
    const auto level = Outils_Texte::ParseInt(tokens[1]);
    const auto code = Outils_Texte::ParseInt(tokens[2]);
    if (level && code) sink->OnMessage(*level, *code, tokens[3]);
}

void NotifyToolLine(const std::vector<std::string>& tokens,
                    Communication_Interfaces::IToolNotification* sink) {
    if (!sink) return;
    std::optional<float> percent;
    if (ParseProgress(tokens, percent)) {
        if (percent) sink->OnProgress(*percent);
        return;
    }
    if (tokens.size() != 3 || tokens[0] != "message") return;
    constexpr std::string_view words[] = {"info", "warning", "error"}; // in the order of EMessageLevel
    const auto word = std::find(std::begin(words), std::end(words), tokens[1]);
    if (word != std::end(words)) sink->OnMessage(static_cast<int>(word - std::begin(words)), tokens[2]);
}

} // namespace Communication_Processus
