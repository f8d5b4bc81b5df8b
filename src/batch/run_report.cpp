#include "batch/run_report.h"

#include "processing/message_line.h"
#include "processing/notification.h"
#include "xpf/file.h"
#include "xpf/packet.h"

#include <ostream>

namespace Batch {

using namespace Persistance_Xpf;
using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;
using Outils_Texte::EText;

namespace {

constexpr std::string_view kResultChannel = "MORVEX_STD";
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
    const CDateTimeSpan reached = FindDateReached(m_result);
    CTable& table = GetTable();
    table.Add(EText::rowProgress).Add(percent).Add(reached).Add(m_utcOrigin + reached);
    if (percent > 0) table.Add(EstimateTimeLeft(std::chrono::steady_clock::now() - m_start, percent).count());
    table.EndRow(true);
}

CDateTimeSpan FindDateReached(const std::filesystem::path& result) {
    CDateTimeSpan date = CDateTimeSpan::Invalid();
    const auto file = OpenXpfFile(result, EFileKind::tarout).file;
    CXpfChannel* channel = file ? file->FindChannelByName(kResultChannel) : nullptr;
    const auto packet = channel ? channel->CreatePacket() : nullptr;
    if (packet && channel->SeekLastPacket(nullptr) && channel->ReadNextPacket(*packet))
        packet->GetDate(0, date);
    return date;
}

std::chrono::seconds EstimateTimeLeft(std::chrono::steady_clock::duration elapsed, int percent) {
    return std::chrono::round<std::chrono::seconds>(elapsed * (100 - percent) / percent);
}

} // namespace Batch
