#include "batch/run_report.h"

#include "dataaccess/date_search.h"
#include "dialogs/tool_run.h"
#include "foundation/texts.h"
#include "processing/message_line.h"
#include "processing/notification.h"

#include <ostream>

namespace Batch {

using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;
using Outils_Texte::EText;

namespace {

constexpr std::size_t kTextColumn = 5; // of the table of a run

} // namespace

void CLineReport::ReportLine(int level, std::string_view text) {
    m_out << Communication_Processus::FormatMessageLine(level, text) << std::endl;
}

void CLineReport::ReportProgress(int percent) {
    m_out << Outils_Texte::FormatText(EText::progressLine, {std::to_string(percent)}) << std::endl;
}

void CRunReport::SetResult(std::filesystem::path result, const CDateTime& utcOrigin) {
    m_result = std::move(result);
    m_utcOrigin = utcOrigin;
}

CTable& CRunReport::GetTable() {
    if (!m_table) m_table.emplace(m_out, m_form, EText::runColumns);
    return *m_table;
}

void CRunReport::ReportLine(int level, std::string_view text) {
    CTable& table = GetTable();
    table.Add(Communication_Processus::GetLevelWord(level)).SkipTo(kTextColumn).Add(text);
    table.EndRow(true);
}

void CRunReport::ReportProgress(int percent) {
    const CDateTimeSpan reached =
        Application_Tarvel::FindDateReached(m_result).value_or(CDateTimeSpan::Invalid());
    CTable& table = GetTable();
    table.Add(EText::rowProgress).Add(percent).Add(reached).Add(m_utcOrigin + reached);
    if (percent > 0)
        table.Add(
            Dialogue_Tarvel::EstimateTimeLeft(std::chrono::steady_clock::now() - m_start, percent).count());
    table.EndRow(true);
}

} // namespace Batch
