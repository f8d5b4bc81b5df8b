// Events of external synchronisation: date, channel and number, with tabs between.
#include "convert/packet_values.h"
#include "convert/readers.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"

namespace Conversion {
namespace {

using Enregistrement::CPayload;
using Enregistrement::PlaceOf;
using Persistance_Xpf::kSynchroLayout;

constexpr std::size_t kChannels = 3;

// The text says by itself whether day or month comes first, as soon as one of them is above 12.
std::optional<EDayOrder> FindOrder(std::string_view date) {
    const auto first = ParseInteger<int>(date.substr(0, 2)),
               second = date.size() < 5 ? std::nullopt : ParseInteger<int>(date.substr(3, 2));
    if (!first || !second || date.size() < 5 || date[2] == ':') return std::nullopt;
    if (*first > 12) return EDayOrder::dayFirst;
    if (*second > 12) return EDayOrder::monthFirst;
    return std::nullopt;
}

// The order of the first line that shows one; the day first when none does.
EDayOrder FindOrder(SConversion& conversion) {
    constexpr int kLines = 10000;
    CLineReader lines(conversion.source);
    EDayOrder order = EDayOrder::dayFirst;
    int count = 0;
    for (std::string_view line; count < kLines && lines.Next(line); ++count)
        if (const auto found = FindOrder(Trim(line))) {
            order = *found;
            break;
        }
    if (!conversion.source.IsStopped() && !conversion.source.IsFailed()) conversion.source.Rewind();
    return order;
}

} // namespace

bool ReadEvents(SConversion& conversion) {
    const EDayOrder order = FindOrder(conversion);
    std::uint16_t rows[kChannels] = {GetChannelRow("SYNCHRO_1"), GetChannelRow("SYNCHRO_2"),
                                     GetChannelRow("SYNCHRO_3")};
    std::uint32_t counts[kChannels] = {};
    CLineReader lines(conversion.source);
    for (std::string_view line; !conversion.IsDone() && lines.Next(line);) {
        const auto fault = [&](EText kind) {
            if (!lines.IsUnfinished()) conversion.faults.Add(kind, lines.GetNumber());
        };
        if (Trim(line).empty() || line.starts_with('#')) continue;
        const CFields fields = CFields::Split(line, '\t');
        const auto date = ParseDate(fields[0], order);
        if (!date) {
            fault(EText::faultDate);
            continue;
        }
        const std::string_view channelText = Trim(fields[1]), numberText = Trim(fields[2]);
        const auto channel =
            channelText.empty() ? std::optional<std::size_t>(0) : ParseInteger<std::size_t>(channelText);
        if (!channel || *channel >= kChannels) {
            fault(EText::faultNoChannel);
            continue;
        }
        const auto number = numberText.empty() ? std::optional<std::uint32_t>(counts[*channel] + 1)
                                               : ParseInteger<std::uint32_t>(numberText);
        if (!number) {
            fault(EText::faultNumber);
            continue;
        }
        counts[*channel] = *number;
        CPayload payload;
        payload.Reset(kSynchroLayout.payloadSize);
        payload.Put(PlaceOf(kSynchroLayout, "Rejection"), kAuto);
        payload.Put(PlaceOf(kSynchroLayout, "Counter"), *number);
        conversion.sink.Add(rows[*channel], *date, payload.Get(), lines.GetNumber());
    }
    return true;
}

} // namespace Conversion
