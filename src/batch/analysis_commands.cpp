// The commands that tell what is in files: the dictionary of a project, a scan of one packet file, the format
// of a recording.
#include "batch/commands.h"
#include "batch/packet_access.h"
#include "batch/session.h"
#include "dataaccess/data_file_analyzer.h"
#include "dataaccess/format_detection.h"
#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "values/adaptors.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <ostream>
#include <sstream>
#include <vector>

namespace Batch {

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using Outils_Fichiers::FromText;
using Outils_Temps::CDateTimeSpan;
using Outils_Texte::GetText;
using Outils_Valeurs::CTrvAdaptors;

namespace {

constexpr int kNatureLabels = 771; // number of the label of nature 0

// What the scan saw of one channel.
struct SSeen {
    std::uint64_t packets = 0;
    CDateTimeSpan first, last;
    std::uint32_t lastNumber = 0;
    std::uint64_t numberJumps = 0; // packets whose number does not follow the one before
    std::uint64_t timeJumps = 0;   // packets dated before the one before
};

class CFileScan {
  public:
    explicit CFileScan(CXpfFile& file) : m_file(file) {}

    // Walks the stream from its start to the end of what is whole, passing over damage. Progress goes to
    // `progress`.
    void Run(std::ostream& progress, std::ostream& damage) {
        const std::int64_t size = m_file.GetFileSize();
        int percent = 0;
        m_file.Seek(m_file.GetDataStart().Get());
        SPacketHeader header;
        std::span<const std::uint8_t> payload;
        for (;;) {
            const std::int64_t position = m_file.GetPosition();
            switch (m_file.ReadPacket(header, payload)) {
            case EPacketRead::whole: Take(header, payload); break;
            case EPacketRead::torn:
                if (position < size)
                    damage << "torn at byte " << position << ", " << size - position << " bytes\n";
                return;
            case EPacketRead::damaged:
                if (!FindNextPacket(position + 1)) {
                    damage << "damaged from byte " << position << " to the end\n";
                    return;
                }
                damage << "damaged at byte " << position << ", " << m_file.GetPosition() - position
                       << " bytes\n";
                break;
            }
            const int now = size > 0 ? static_cast<int>(m_file.GetPosition() * 100 / size) : 100;
            if (now >= percent + 10) progress << "progress " << (percent = now) << std::endl;
        }
    }

    const std::map<std::uint16_t, SSeen>& GetChannels() const { return m_channels; }

  private:
    // Moves to the first whole packet at or behind a place; false when there is none. Tries every place where
    // one could begin: the file's own search gives up behind a place that only looks like a packet.
    bool FindNextPacket(std::int64_t from) {
        std::vector<char> bytes(1 << 16);
        for (;;) {
            if (!m_file.Seek(from)) return false;
            const std::size_t count = m_file.Read(bytes.data(), bytes.size());
            if (count < kPacketOverhead) return false;
            for (std::size_t i = 0; i + 1 < count; ++i) {
                if (bytes[i] != '$' || bytes[i + 1] != '$') continue;
                const std::int64_t place = from + static_cast<std::int64_t>(i);
                SPacketHeader header;
                std::span<const std::uint8_t> payload;
                if (m_file.Seek(place) && m_file.ReadPacket(header, payload) == EPacketRead::whole)
                    return m_file.Seek(place);
            }
            from += static_cast<std::int64_t>(count) - 1;
        }
    }

    void Take(const SPacketHeader& header, std::span<const std::uint8_t> payload) {
        SSeen& seen = m_channels[header.channel];
        std::int64_t ticks = 0;
        if (payload.size() >= sizeof ticks) std::memcpy(&ticks, payload.data(), sizeof ticks);
        const CDateTimeSpan date(ticks);
        if (seen.packets == 0)
            seen.first = date;
        else {
            seen.numberJumps += header.number != seen.lastNumber + 1;
            seen.timeJumps += date < seen.last;
        }
        seen.last = date;
        seen.lastNumber = header.number;
        ++seen.packets;
    }

    CXpfFile& m_file;
    std::map<std::uint16_t, SSeen> m_channels;
};

// What the program's own analysis of an input file finds first.
void PrintFirstData(const std::filesystem::path& path, const CTrvAdaptors& adaptors, SStreams streams) {
    Outils::CMessageQueue queue;
    Outils::CMessagePort port(queue);
    CTrvTarinDataFileAnalyzerThread analyzer(path, port, [](std::uint16_t) {});
    analyzer.Start();
    const SFirstData data = analyzer.WaitForFirstData(std::chrono::hours(1));
    std::string text;
    if (data.hasUtc) {
        adaptors.GetDateTime().ValueToText(data.utcOrigin, text);
        streams.out << "UTC origin;" << text << '\n';
    }
    if (!data.hasPosition) return;
    const auto& position = adaptors.GetGeographicPosition();
    position.latitude.ValueToText(data.position.latitude, text);
    streams.out << "first position;" << text;
    position.longitude.ValueToText(data.position.longitude, text);
    streams.out << ';' << text;
    position.altitude.ValueToText(data.position.altitude, text);
    streams.out << ';' << text << '\n';
}

} // namespace

int AnalyseCommand(const COptions& options, SStreams streams) {
    const std::string& path = options.GetArguments()[0];
    const SOpenFile open = OpenFile(path, streams);
    if (!open.file) return exitFailure;
    CFileScan scan(*open.file);
    std::ostringstream damage;
    scan.Run(streams.error, damage);

    streams.out << "number;name;packets;first;last;rate;number jumps;time jumps\n";
    for (const auto& [number, seen] : scan.GetChannels()) {
        const CXpfChannel* channel = open.file->FindChannelByNumber(number);
        const double length = (seen.last - seen.first).GetTotalSeconds();
        const double rate = length > 0 ? static_cast<double>(seen.packets - 1) / length : 0;
        streams.out << number << ';' << (channel ? channel->GetName() : std::string()) << ';' << seen.packets
                    << ';' << seen.first.ToText() << ';' << seen.last.ToText() << ';'
                    << Outils_Texte::FormatFixed(rate, 3) << ';' << seen.numberJumps << ';' << seen.timeJumps
                    << '\n';
    }
    CTrvAdaptors adaptors;
    ConfigureAdaptors(adaptors);
    if (open.kind == EFileKind::tarin) PrintFirstData(FromText(path), adaptors, streams);
    streams.out << damage.str();
    return exitSuccess;
}

int DetectCommand(const COptions& options, SStreams streams) {
    const std::string& path = options.GetArguments()[0];
    CTrvAdaptors adaptors;
    ConfigureAdaptors(adaptors);
    int code = formatUnknown;
    if (!DetectFileFormat(FromText(path), code, adaptors.GetDateTime()))
        return Fail(path, textNoSuchFile, streams);
    streams.out << code << ';' << GetText(GetFormatTextId(code)) << '\n';
    return exitSuccess;
}

int DictionaryCommand(const COptions& options, SStreams streams) {
    CSession session(streams);
    if (!session.Open(options.GetArguments()[0])) return exitFailure;
    auto& project = *session.GetDocument().GetProject();
    if (options.Has("--expert")) project.RebuildDataModel(true);
    session.WaitForAnalysis();
    for (const auto& layer : project.dataModel->m_layers) {
        streams.out << Outils_Fichiers::ToText(layer->m_dataFile->path.filename()) << ';' << layer->m_name
                    << ';' << layer->m_description << ';' << (layer->m_hasData ? "data" : "no data") << '\n';
        for (const auto& measure : layer->m_measures)
            streams.out << "  measure;" << measure->m_index << ';' << measure->m_name << ';'
                        << GetText(kNatureLabels +
                                   static_cast<int>(std::min<std::uint32_t>(measure->m_nature, natureCount)))
                        << '\n';
        for (const auto& enumeration : layer->m_enums) {
            streams.out << "  enumeration;" << enumeration->m_index << ';' << enumeration->m_name;
            for (const auto& literal : enumeration->m_literals) streams.out << ';' << literal->m_name;
            streams.out << '\n';
        }
    }
    return exitSuccess;
}

} // namespace Batch
