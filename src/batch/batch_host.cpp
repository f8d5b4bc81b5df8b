#include "batch/batch_host.h"

#include "batch/file_access.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "processing/notification.h"

#include <ostream>
#include <thread>

namespace Batch {

using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

using namespace Application_Tarvel;

std::string ToLine(std::string_view text) {
    std::string line;
    for (const char c : text) {
        if (c != '\n')
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    return line;
}

EAnswer CBatchHost::ShowMessage(const std::string& text, EButtons buttons, EIcon) {
    m_streams.error << ToLine(text) << std::endl;
    return buttons == EButtons::yesNo || buttons == EButtons::yesNoCancel ? EAnswer::yes : EAnswer::ok;
}

EOutcome CBatchHost::Refuse(std::string_view name) {
    FailWith(FormatText(EText::notAvailable, {name}), m_streams);
    return EOutcome::unavailable;
}

std::vector<std::filesystem::path> CBatchHost::AskPath(const SPathQuestion& question) {
    Refuse(GetText(question.title));
    return {};
}

EOutcome CBatchHost::MakeProject(SMadeProject&) { return Refuse(GetText(EText::makeProjectName)); }

EOutcome CBatchHost::MakeProjectFrom(const std::filesystem::path&, SMadeProject&) {
    return Refuse(GetText(EText::newFromBatchTitle));
}

EOutcome CBatchHost::UpdateDataFile(const std::filesystem::path& path) {
    Fail(Outils_Fichiers::ToText(path), EText::olderLayout, m_streams);
    return EOutcome::unavailable;
}

EOutcome CBatchHost::ConvertRawFiles(const std::vector<std::filesystem::path>& files, ERawFormat,
                                     std::filesystem::path&) {
    return Refuse(FormatText(EText::convertFilesName, {ToText(files.front())}));
}

void CBatchHost::AppendOutputText(const Application_Tarvel::SOutputLine& line) {
    m_report.ReportLine(Communication_Interfaces::levelInformation, ToLine(line.text));
}

void CBatchHost::SetProgress(int percent) {
    // A run sets the bar back to 0 at its end: lines report only progress made.
    if (!m_progressShows || percent <= m_lastPercent) return;
    m_lastPercent = percent;
    m_report.ReportProgress(percent);
}

void CBatchHost::ShowProgress(bool visible) {
    m_progressShows = visible;
    m_lastPercent = -1;
}

void CBatchHost::OnMessageQueued() {
    int level = 0, code = 0;
    std::string text;
    if (!m_receiver.TakeMessage(level, code, text)) return;
    if (level == Communication_Interfaces::levelError) m_failed = true;
    m_report.ReportLine(level, text);
}

std::filesystem::path CBatchHost::GetProgramFolder() {
    return Outils_Fichiers::GetExecutablePath().parent_path();
}

void CBatchHost::Sleep(std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }

} // namespace Batch
