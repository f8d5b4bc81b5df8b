// The commands that look into one packet file.
#include "batch/commands.h"
#include "batch/file_access.h"
#include "batch/packet_columns.h"
#include "batch/session.h"
#include "batch/table.h"
#include "dataaccess/file_scan.h"
#include "dataaccess/view_queries.h"
#include "document/index_settings.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <limits>
#include <ostream>

namespace Batch {

using namespace Application_Tarvel;
using namespace Persistance_Xpf;

namespace {

using EError = CTrvDataQuery::EError;

// Runs a query here and now; false, with the reason reported, when it fails.
bool Ask(CTrvDataQuery& query, const std::string& path, SStreams streams) {
    if (query.Execute() == EQueryEnd::done) return true;
    Fail(path, query.GetError() == EError::noPackets ? EText::channelEmpty : EText::numbersContradict,
         streams);
    return false;
}

// The channel of a query, with the kept index of its file unless the user asks for none.
class CAddress {
  public:
    CAddress(const COptions& options, const SOpenChannel& open) : m_indexes(ReadIndexSettings(CSettings())) {
        const auto path = Outils_Fichiers::FromText(options.GetArguments()[0]);
        address = {path, open.kind, open.channel->GetNumber(), &m_cache, &m_indexes};
        if (!options.Has("--no-index")) m_indexes.FindKept(path, open.kind);
    }
    SChannelAddress address;

  private:
    CXpfFileCache m_cache;
    CFileIndexes m_indexes;
};

// Date of the packet at the channel's position; invalid when it cannot be read or has none.
CDateTimeSpan ReadDate(CXpfChannel& channel) {
    CDateTimeSpan date = CDateTimeSpan::Invalid();
    const auto packet = channel.CreatePacket(); // a new one: what a short packet does not fill is zero
    if (packet && channel.ReadNextPacket(*packet)) packet->GetDate(0, date);
    return date;
}

struct SPeriod {
    CDateTimeSpan first = CDateTimeSpan::Invalid(), last = CDateTimeSpan::Invalid();
};

SPeriod FindPeriod(CXpfChannel& channel) {
    SPeriod period;
    if (channel.SeekFirstPacket(nullptr)) period.first = ReadDate(channel);
    if (channel.SeekLastPacket(nullptr)) period.last = ReadDate(channel);
    return period;
}

// Where the channel's last packet is now; not known for an empty channel.
CXpfFilePosition FindEnd(CXpfChannel& channel) {
    const bool has = channel.SeekLastPacket(nullptr);
    const CXpfFilePosition end = has ? channel.GetCurrent() : CXpfFilePosition();
    channel.SeekFirstPacket(nullptr);
    return end;
}

// Reports the period that the channel has: the one that was asked for holds nothing.
int FailOutside(const std::string& path, EText text, const SOpenChannel& open, SStreams streams) {
    const SPeriod period = FindPeriod(*open.channel);
    if (!period.first.IsValid()) return Fail(path, EText::channelEmpty, streams);
    return Fail(path, text, streams, {ToSeconds(period.first), ToSeconds(period.last)});
}

// Positions the channel for a walk at or before the date; false when the channel ends before it.
bool SeekDate(const SOpenChannel& open, const std::filesystem::path& path, CDateTimeSpan date) {
    Outils::CEvent never;
    SDateBracket bracket;
    auto& dated = static_cast<CXpfDatedPacket&>(*open.packet);
    const EDateSearch end = SearchDate(*open.channel, dated, date, {path, nullptr, false, never}, bracket);
    if (end == EDateSearch::outside && date > bracket.upperDate) return false;
    // Where damage defeats the search, the walk alone finds the packets.
    if (end != EDateSearch::found || !open.channel->SeekPacketNumber(bracket.lowerNumber))
        open.channel->SeekFirstPacket(nullptr);
    return true;
}

} // namespace

int ChannelsCommand(const COptions& options, SStreams streams) {
    const std::string& path = options.GetArguments()[0];
    SOpenFile open = OpenFile(path, streams);
    if (!open.file) return exitFailure;
    const auto origin = FindUtcOriginOf(open, Outils_Fichiers::FromText(path));
    CFileScan scan(*open.file, open.kind, Outils_Fichiers::FromText(path));
    scan.Run();
    CTable table(streams.out, options.GetForm(), EText::channelColumns);
    for (const auto& channel : open.file->GetChannels()) {
        const SChannelScan* seen = scan.GetChannel(channel->GetNumber());
        const bool dated = seen && seen->dates > 0;
        const SPeriod period = dated ? SPeriod{seen->first, seen->last} : SPeriod();
        table.Row(channel->GetNumber(), channel->GetName(), channel->GetPacketType(),
                  seen ? seen->packets : 0, period.first, period.last, origin + period.first,
                  origin + period.last, channel->GetDescription());
    }
    return exitSuccess;
}

int PacketsCommand(const COptions& options, SStreams streams) {
    const auto from = options.GetSeconds("--from");
    const auto to = options.GetSeconds("--to");
    const CDateTimeSpan first = from.value_or(CDateTimeSpan(std::numeric_limits<std::int64_t>::min()));
    const CDateTimeSpan last = to.value_or(CDateTimeSpan(std::numeric_limits<std::int64_t>::max()));
    long long left = options.GetPositive("--limit").value_or(std::numeric_limits<long long>::max());

    const auto& arguments = options.GetArguments();
    const SOpenChannel open = OpenChannel(arguments[0], arguments[1], streams);
    if (!open.packet) return exitFailure;
    const CPacketColumns columns(open.channel->GetPacketType(), open.utcOrigin);
    CTable table(streams.out, options.GetForm(), columns.GetNames());
    const CXpfFilePosition end = FindEnd(*open.channel);
    CXpfFilePosition reached;
    bool isEmpty = true, isCut = false;
    bool isPast = from && !SeekDate(open, Outils_Fichiers::FromText(arguments[0]), first);
    while (!isPast && left > 0 && streams.out) {
        open.packet->Clear(); // what a short packet does not fill is zero
        isCut = !open.channel->ReadNextPacket(*open.packet);
        if (isCut) break;
        reached = open.channel->GetPrevious();
        CDateTimeSpan date = CDateTimeSpan::Invalid();
        open.packet->GetDate(0, date);
        if (date < first) continue;
        isPast = date > last;
        if (isPast) break;
        columns.Add(table, *open.packet);
        table.EndRow();
        isEmpty = false;
        --left;
    }
    if (isCut && reached.Get() < end.Get()) return Fail(arguments[0], EText::packetsDamaged, streams);
    // An empty table is an answer, but seldom the one that was hoped for.
    if (isEmpty) FailOutside(arguments[0], EText::periodOutside, open, streams);
    return exitSuccess;
}

int AtCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    const CDateTimeSpan time = ParseSeconds(arguments[2]);
    const SOpenChannel open = OpenChannel(arguments[0], arguments[1], streams);
    if (!open.packet) return exitFailure;
    const CAddress channel(options, open);
    CTrvViewValueDataQuery query(channel.address, time, nullptr);
    if (!Ask(query, arguments[0], streams)) return exitFailure;
    const auto packet = query.TakePacket();
    if (!packet) return FailOutside(arguments[0], EText::timeOutside, open, streams);
    const CPacketColumns columns(open.channel->GetPacketType(), open.utcOrigin);
    CTable table(streams.out, options.GetForm(), columns.GetNames());
    columns.Add(table, *packet);
    table.EndRow();
    return exitSuccess;
}

int ReduceCommand(const COptions& options, SStreams streams) {
    const auto from = options.GetSeconds("--from");
    const auto to = options.GetSeconds("--to");
    const auto slices = options.GetPositive("--slices");
    if (!from || !to || !slices || !(*from < *to)) throw CUsageError(EText::windowNeeded);
    const CDateTimeSpan slice(std::max<std::int64_t>(1, (*to - *from).GetTicks() / *slices));

    const auto& arguments = options.GetArguments();
    const SOpenChannel open = OpenChannel(arguments[0], arguments[1], streams);
    if (!open.packet) return exitFailure;
    const CAddress channel(options, open);
    CTrvView1DDataQuery query(channel.address, {*from, *to, slice, true}, nullptr);
    if (!Ask(query, arguments[0], streams)) return exitFailure;
    const SReducedSeries series = query.TakeSeries();
    const CPacketColumns columns(open.channel->GetPacketType(), open.utcOrigin);
    CTable table(streams.out, options.GetForm(),
                 columns.GetNames() + ';' + columns.GetNames(EText::minimumOf) + ';' +
                     columns.GetNames(EText::maximumOf));
    for (std::size_t i = 0; i < series.representatives.size(); ++i) {
        columns.Add(table, *series.representatives[i]);
        columns.AddFields(table, *series.minima[i]);
        columns.AddFields(table, *series.maxima[i]);
        table.EndRow();
    }
    if (series.representatives.empty()) FailOutside(arguments[0], EText::periodOutside, open, streams);
    return exitSuccess;
}

} // namespace Batch
