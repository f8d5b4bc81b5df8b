// The commands that look into one packet file.
#include "batch/batch_host.h"
#include "batch/commands.h"
#include "batch/packet_access.h"
#include "dataaccess/view_queries.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "xpf/file.h"
#include "xpf/packet.h"

#include <limits>
#include <ostream>
#include <ranges>

namespace Batch {

using Outils_Texte::EText;

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using Outils_Texte::FormatText;

namespace {

constexpr std::string_view kSeparator = ";";

using EError = CTrvDataQuery::EError;

// Runs a query here and now; false, with the reason told, when it fails.
bool Ask(CTrvDataQuery& query, const std::string& path, SStreams streams) {
    if (query.Execute() == EQueryEnd::done) return true;
    Fail(path, query.GetError() == EError::noPackets ? EText::channelEmpty : EText::numbersContradict,
         streams);
    return false;
}

// The columns of a header once more, behind others, each named by a text about it.
std::string NameColumns(std::string_view header, EText text) {
    std::string columns;
    for (const auto column : std::views::split(header, kSeparator)) {
        columns += kSeparator;
        columns += FormatText(text, {std::string_view(column.begin(), column.end())});
    }
    return columns;
}

CDateTimeSpan DateOf(const CXpfPacket& packet) {
    CDateTimeSpan date;
    return packet.GetDate(0, date) ? date : CDateTimeSpan::Invalid();
}

} // namespace

int ChannelsCommand(const COptions& options, SStreams streams) {
    const std::string& path = options.GetArguments()[0];
    const SOpenFile open = OpenFile(path, streams);
    if (!open.file) return exitFailure;
    streams.out << Outils_Texte::GetText(EText::channelColumns) << '\n';
    for (const auto& channel : open.file->GetChannels()) {
        streams.out << channel->GetNumber() << kSeparator << channel->GetName() << kSeparator
                    << channel->GetPacketType() << kSeparator;
        SPacketHeader header;
        const auto packet = channel->CreatePacket();
        const auto date = [&]() -> std::string {
            if (packet) packet->Clear(); // what a short packet does not fill
            return packet && channel->ReadNextPacket(*packet) ? DateOf(*packet).ToText() : "";
        };
        const bool hasLast = channel->SeekLastPacket(&header);
        const std::string last = hasLast ? date() : "";
        // Damage can hide the end of a channel, and with it the number of its packets.
        const bool hasFirst = channel->SeekFirstPacket(nullptr);
        streams.out << (hasLast    ? std::to_string(header.number + 1ull)
                        : hasFirst ? ""
                                   : "0")
                    << kSeparator << (hasFirst ? date() : "") << kSeparator << last << kSeparator
                    << ToCell(channel->GetDescription()) << '\n';
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
    streams.out << open.packet->GetHeaderText(kSeparator) << '\n';
    if (from) {
        Outils::CEvent never;
        SDateBracket bracket;
        bool found = false;
        const auto path = Outils_Fichiers::FromText(arguments[0]);
        auto& dated = static_cast<CXpfDatedPacket&>(*open.packet);
        switch (SearchDate(*open.channel, dated, first, {path, nullptr, false, never}, bracket)) {
        case EDateSearch::found: found = open.channel->SeekPacketNumber(bracket.lowerNumber); break;
        case EDateSearch::outside:
            if (first > bracket.upperDate) return exitSuccess;
            break;
        default: break;
        }
        // Where damage defeats the search, the walk alone finds the packets.
        if (!found) open.channel->SeekFirstPacket(nullptr);
    }
    while (left > 0 && streams.out) {
        open.packet->Clear(); // what a short packet does not fill is zero
        if (!open.channel->ReadNextPacket(*open.packet)) break;
        const CDateTimeSpan date = DateOf(*open.packet);
        if (date < first) continue;
        if (date > last) break;
        streams.out << open.packet->ToText(kSeparator) << '\n';
        --left;
    }
    return exitSuccess;
}

int AtCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    const CDateTimeSpan time = ParseSeconds(arguments[2]);
    const SOpenChannel open = OpenChannel(arguments[0], arguments[1], streams);
    if (!open.packet) return exitFailure;
    CXpfFileCache cache;
    CTrvViewValueDataQuery query(
        {Outils_Fichiers::FromText(arguments[0]), open.kind, open.channel->GetNumber(), &cache}, time,
        nullptr);
    if (!Ask(query, arguments[0], streams)) return exitFailure;
    const auto packet = query.TakePacket();
    if (!packet) return Fail(arguments[0], EText::timeOutside, streams);
    streams.out << packet->GetHeaderText(kSeparator) << '\n' << packet->ToText(kSeparator) << '\n';
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
    CXpfFileCache cache;
    CTrvView1DDataQuery query(
        {Outils_Fichiers::FromText(arguments[0]), open.kind, open.channel->GetNumber(), &cache},
        {*from, *to, slice, true}, nullptr);
    if (!Ask(query, arguments[0], streams)) return exitFailure;
    const SReducedSeries series = query.TakeSeries();
    const std::string header = open.packet->GetHeaderText(kSeparator);
    streams.out << header << NameColumns(header, EText::minimumOf) << NameColumns(header, EText::maximumOf)
                << '\n';
    for (std::size_t i = 0; i < series.representatives.size(); ++i)
        streams.out << series.representatives[i]->ToText(kSeparator) << kSeparator
                    << series.minima[i]->ToText(kSeparator) << kSeparator
                    << series.maxima[i]->ToText(kSeparator) << '\n';
    return exitSuccess;
}

} // namespace Batch
