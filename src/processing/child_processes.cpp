#include "processing/child_processes.h"

#include "foundation/numbers.h"

#include <algorithm>
#include <iterator>

namespace Communication_Processus {

namespace {

// The line that all children share. False when the line is another one.
template <class TNotification>
bool NotifyProgress(const std::vector<std::string>& tokens, TNotification& sink) {
    if (tokens[0] != "progress") return false;
    const auto percent = tokens.size() == 2 ? ParsePercent(tokens[1]) : std::nullopt;
    if (percent) sink.OnProgress(*percent);
    return true;
}

} // namespace

void CProcessMorvex::OnCommand(const std::vector<std::string>& tokens) {
    auto* const sink = m_sink.Get();
    if (!sink || tokens.empty() || NotifyProgress(tokens, *sink)) return;
    if (tokens[0] != "message" || tokens.size() != 4) return;
    const auto level = Outils_Texte::ParseInt(tokens[1]);
    const auto code = Outils_Texte::ParseInt(tokens[2]);
    if (level && code) sink->OnMessage(*level, *code, tokens[3]);
}

void NotifyToolLine(const std::vector<std::string>& tokens,
                    Communication_Interfaces::IToolNotification* sink) {
    if (!sink || tokens.empty() || NotifyProgress(tokens, *sink)) return;
    if (tokens[0] != "message" || tokens.size() != 3) return;
    constexpr std::string_view words[] = {"info", "warning", "error"}; // in the order of EMessageLevel
    const auto word = std::find(std::begin(words), std::end(words), tokens[1]);
    if (word != std::end(words)) sink->OnMessage(static_cast<int>(word - std::begin(words)), tokens[2]);
}

} // namespace Communication_Processus
