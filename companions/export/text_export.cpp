#include "export/text_export.h"

#include "export/text_row.h"
#include "foundation/paths.h"
#include "xpf/tarout_layouts.h"

#include <algorithm>
#include <memory>

namespace Exportation {

using namespace Persistance_Xpf;
using Compagnon::EDialect;
using Compagnon::SProgram;
using Outils_Texte::GetText;

namespace {

constexpr SSwitchRow kHeaderSwitch{"/header", ESwitchValue::word, "on|off", EText::exportSwitchHeader};
constexpr SSwitchRow kImuSwitch{"/imu", ESwitchValue::word, "on|off", EText::exportSwitchImu};

constexpr std::string_view kImuFields[] = {"Gyro X", "Gyro Y", "Gyro Z", "Acc X", "Acc Y", "Acc Z"};

bool HasHeader(const CArguments& arguments) { return arguments.GetWord(kHeaderSwitch.name, kOn) == kOn; }

// The table of one channel.
struct STable {
    const SPassChannel* channel;
    CTextRow row;
    CExportFile file;
    CIsoFormatter iso;
    std::uint64_t seen = 0, rows = 0;
    std::int64_t first = 0, last = 0; // dates of its rows

    explicit STable(const SPassChannel& of) : channel(&of), row(*of.layout) {}
};

void AddRow(STable& table, const CClock& clock, const SPassPacket& packet) {
    char* out = table.file.Begin(table.row.GetWidth() + 2 * kWidestValue);
    out = FormatDates(clock, packet.date, table.iso, out);
    out = table.row.Format(packet.payload, out);
    *out++ = '\n';
    table.file.End(out);
    if (table.rows++ == 0) table.first = packet.date;
    table.last = packet.date;
}

std::filesystem::path NameTable(const std::filesystem::path& target, std::string_view channel) {
    std::filesystem::path name = target.stem();
    name += "_" + std::string(channel);
    name += target.extension();
    return target.parent_path() / name;
}

bool OpenTable(CExportRun& run, STable& table) {
    if (!run.OpenFile(table.file, NameTable(run.GetTarget(), table.channel->row->name))) return false;
    if (HasHeader(run.GetArguments()))
        table.file.Write(GetDateHeadings(run.GetClock()) + table.row.GetHeadings() + '\n');
    return true;
}

void WriteList(CExportRun& run, CExportFile& list, const std::vector<std::unique_ptr<STable>>& tables) {
    if (HasHeader(run.GetArguments())) list.Write(std::string(GetText(EText::exportListHeadings)) + '\n');
    for (const auto& table : tables) {
        if (table->rows == 0) continue;
        list.Write(std::string(table->channel->row->name) + kColumnSeparator + std::to_string(table->rows));
        for (const std::int64_t date : {table->first, table->last}) {
            char text[kWidestValue];
            list.Write(kColumnSeparator + std::string(text, FormatSeconds(run.GetClock().Shift(date), text)));
        }
        list.Write(kColumnSeparator + QuoteCell(Outils_Fichiers::ToText(table->file.GetTarget().filename())) +
                   '\n');
    }
}

ERunEnd ExportInput(const CArguments& arguments, IRunMonitor& monitor) {
    CExportRun run(arguments, monitor);
    if (!run.Open({EFileKind::tarin})) return ERunEnd::failed;
    CExportFile list;
    if (!run.OpenFile(list, run.GetTarget())) return ERunEnd::failed;
    std::vector<std::unique_ptr<STable>> tables;
    for (const SPassChannel& channel : run.GetPass().GetChannels())
        tables.push_back(std::make_unique<STable>(channel));

    const std::uint64_t decimation = run.GetDecimation();
    std::uint64_t packets = 0;
    run.GetPass().Begin({}, run.GetPeriod());
    for (SPassPacket packet; run.GetPass().Next(packet);) {
        STable& table =
            *tables[static_cast<std::size_t>(packet.channel - run.GetPass().GetChannels().data())];
        if (table.seen++ % decimation != 0) continue;
        if (!table.file.IsOpen() && !OpenTable(run, table)) return ERunEnd::failed;
        AddRow(table, run.GetClock(), packet);
        ++packets;
        if (!table.file.IsGood()) break; // reported when the file cannot be committed
    }
    WriteList(run, list, tables);
    std::vector<CExportFile*> files;
    for (const auto& table : tables)
        if (table->rows > 0) files.push_back(&table->file);
    files.push_back(&list); // last: it names the others
    return run.Finish(files, packets);
}

// Writes the navigation with the values of the extended packet of the same date, which follows or precedes.
class CResultTable {
  public:
    CResultTable(CExportRun& run, CExportFile& file, bool withImu)
        : m_clock(run.GetClock()), m_file(file), m_decimation(run.GetDecimation()), m_row(kMorvexStdLayout) {
        if (withImu)
            m_imu = std::make_unique<CTextRow>(kMorvexExtLayout, [](std::string_view name) {
                return std::ranges::find(kImuFields, name) != std::end(kImuFields);
            });
        if (HasHeader(run.GetArguments()))
            m_file.Write(GetDateHeadings(m_clock) + m_row.GetHeadings() +
                         (m_imu ? m_imu->GetHeadings() : "") + '\n');
    }

    void Take(const SPassPacket& packet) {
        if (packet.channel->layout->type == typeMorvexExt) {
            m_extended.assign(packet.payload, packet.payload + kMorvexExtLayout.payloadSize);
            m_extendedDate = packet.date;
            if (m_waits && m_waitingDate == packet.date) Complete();
            return;
        }
        Complete();
        if (m_seen++ % m_decimation != 0) return;
        BeginRow(packet);
        m_waits = m_imu != nullptr;
        m_waitingDate = packet.date;
        if (!m_imu || HasExtended()) Complete();
    }
    // Ends the row that waits for its extended packet.
    void Complete() {
        if (!m_open) return;
        char* out = m_file.Begin(m_imu ? m_imu->GetWidth() + 1 : 1);
        if (m_imu) out = HasExtended() ? m_imu->Format(m_extended.data(), out) : m_imu->FormatEmpty(out);
        *out++ = '\n';
        m_file.End(out);
        m_open = false;
        m_waits = false;
    }
    std::uint64_t GetRows() const { return m_rows; }

  private:
    bool HasExtended() const { return !m_extended.empty() && m_extendedDate == m_waitingDate; }
    void BeginRow(const SPassPacket& packet) {
        char* out = m_file.Begin(m_row.GetWidth() + 2 * kWidestValue);
        out = FormatDates(m_clock, packet.date, m_iso, out);
        m_file.End(m_row.Format(packet.payload, out));
        m_open = true;
        ++m_rows;
    }

    const CClock& m_clock;
    CExportFile& m_file;
    std::uint64_t m_decimation;
    CTextRow m_row;
    std::unique_ptr<CTextRow> m_imu; // null without them
    CIsoFormatter m_iso;
    std::vector<std::uint8_t> m_extended; // payload of the last extended packet
    std::int64_t m_extendedDate = 0;
    bool m_open = false;  // a row has no end yet
    bool m_waits = false; // for the extended packet of m_waitingDate
    std::int64_t m_waitingDate = 0;
    std::uint64_t m_seen = 0, m_rows = 0;
};

ERunEnd ExportResult(const CArguments& arguments, IRunMonitor& monitor) {
    CExportRun run(arguments, monitor);
    if (!run.Open({EFileKind::tarout})) return ERunEnd::failed;
    const SPassChannel* navigation = run.RequireChannel(kResultChannel);
    const SPassChannel* extended = run.GetPass().FindChannel("MORVEX_EXT");
    CExportFile file;
    if (!navigation || !run.OpenFile(file, run.GetTarget())) return ERunEnd::failed;
    const bool asked = arguments.GetWord(kImuSwitch.name, kOff) == kOn;
    if (asked && !extended) monitor.Report(ELevel::warning, EText::exportNoImu);

    CResultTable table(run, file, asked && extended);
    std::vector<const SPassChannel*> channels{navigation};
    if (asked && extended) channels.push_back(extended);
    run.GetPass().Begin(channels, run.GetPeriod());
    for (SPassPacket packet; file.IsGood() && run.GetPass().Next(packet);) table.Take(packet);
    table.Complete();
    CExportFile* const files[] = {&file};
    return run.Finish(files, table.GetRows());
}

constexpr SSwitchRow kInputSwitches[] = {kHeaderSwitch, kFromSwitch, kToSwitch, kDecimationSwitch};
constexpr SSwitchRow kResultSwitches[] = {kHeaderSwitch, kImuSwitch, kFromSwitch, kToSwitch,
                                          kDecimationSwitch};

} // namespace

const SProgram kInputToText{"Tarin2Txt.exe",
                            EText::exportInputTextPurpose,
                            "SOURCE TARGET",
                            2,
                            2,
                            kInputSwitches,
                            EDialect::tool,
                            true,
                            ExportInput};
const SProgram kResultToText{"Tarout2Txt.exe",
                             EText::exportResultTextPurpose,
                             "SOURCE TARGET",
                             2,
                             2,
                             kResultSwitches,
                             EDialect::tool,
                             true,
                             ExportResult};

} // namespace Exportation
