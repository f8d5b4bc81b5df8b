#include "dataaccess/date_search.h"

#include "dataaccess/file_index.h"
#include "xpf/file.h"

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

bool ReadDate(CXpfChannel& channel, CXpfDatedPacket& packet, CDateTimeSpan& date, std::uint32_t& number) {
    SPacketHeader header;
    if (!channel.ReadNextPacket(packet, &header)) return false;
    date = packet.GetPacketDate();
    number = header.number;
    return true;
}

std::uint64_t Distance(CDateTimeSpan a, CDateTimeSpan b) {
    const auto x = static_cast<std::uint64_t>(a.GetTicks());
    const auto y = static_cast<std::uint64_t>(b.GetTicks());
    return a.GetTicks() >= b.GetTicks() ? x - y : y - x;
}

// Draws the bracket closer by what the cache knows; false on an exact hit, which leaves it as it is.
bool NarrowByCache(const CXpfChannel& channel, CDateTimeSpan date, const SDateSearch& search,
                   SDateBracket& bracket) {
    std::uint32_t exact = 0;
    SDateSamples samples;
    if (search.cache->FindDate(search.path, channel.GetNumber(), date, exact, samples)) return false;
    if (samples.lowerDate.IsValid()) {
        bracket.lowerDate = samples.lowerDate;
        bracket.lowerNumber = samples.lowerNumber;
    }
    if (samples.upperDate.IsValid()) {
        bracket.upperDate = samples.upperDate;
        bracket.upperNumber = samples.upperNumber;
    }
    return true;
}

// Draws the bracket closer to the packets of one block, and shows the channel where they are. Only where the
// search by bisection would end at the same packets: in a file without damage that the index knows to the
// end, with dates and numbers that follow each other, and with one packet of this date at most.
void NarrowByIndex(CXpfChannel& channel, CDateTimeSpan date, const CFileIndex& index, SDateBracket& bracket) {
    const CChannelIndex* records = index.GetChannel(channel.GetNumber());
    if (!records || !records->IsOrderly() || index.HasGaps() || channel.GetLast().Get() >= index.GetCovered())
        return;
    CIndexCursor cursor(*records);
    const auto block = cursor.FindDate(date.GetTicks());
    const auto head = block ? cursor.GetHead(0, *block) : std::nullopt;
    if (!head || !head->Has(indexDistinct)) return;
    CXpfChannel::SPlace lower{head->firstNumber, head->position}, upper;
    if (*block + 1 < cursor.GetCount(0)) {
        const auto next = cursor.GetHead(0, *block + 1);
        if (!next || !next->Has(indexDistinct)) return;
        upper = {next->firstNumber, next->position};
        if (next->firstNumber < bracket.upperNumber) {
            bracket.upperDate = CDateTimeSpan(next->minimumDate);
            bracket.upperNumber = next->firstNumber;
        }
    } else if (date.GetTicks() >= head->maximumDate) {
        return; // the packets after the last block are not known well enough
    }
    if (head->firstNumber > bracket.lowerNumber) {
        bracket.lowerDate = CDateTimeSpan(head->minimumDate);
        bracket.lowerNumber = head->firstNumber;
    }
    channel.ExpectBetween(lower, upper);
}

} // namespace

EDateSearch SearchDate(CXpfChannel& channel, CXpfDatedPacket& packet, CDateTimeSpan date,
                       const SDateSearch& search, SDateBracket& bracket) {
    if (!SeekFirstCached(channel, search.path, search.cache) ||
        !ReadDate(channel, packet, bracket.lowerDate, bracket.lowerNumber))
        return EDateSearch::failed;
    if (!SeekLastCached(channel, search.path, search.cache) ||
        !ReadDate(channel, packet, bracket.upperDate, bracket.upperNumber))
        return EDateSearch::failed;
    if (date < bracket.lowerDate || date > bracket.upperDate) return EDateSearch::outside;
    if (date == bracket.lowerDate || date == bracket.upperDate) return EDateSearch::found;
    if (search.cache && !NarrowByCache(channel, date, search, bracket)) return EDateSearch::found;
    if (search.index) NarrowByIndex(channel, date, *search.index, bracket);

    // Every turn brings the two numbers closer, so damaged numbers end the search instead of prolonging it.
    while (bracket.upperNumber > bracket.lowerNumber && bracket.upperNumber - bracket.lowerNumber > 1) {
        if (search.cancel.IsSet()) return EDateSearch::cancelled;
        if (date == bracket.lowerDate || date == bracket.upperDate) break;
        channel.ExpectNumbers(bracket.lowerNumber, bracket.upperNumber);
        const std::uint32_t middle = bracket.lowerNumber + (bracket.upperNumber - bracket.lowerNumber) / 2;
        CDateTimeSpan middleDate;
        std::uint32_t number = 0;
        if (!channel.SeekPacketNumber(middle) || !ReadDate(channel, packet, middleDate, number))
            return EDateSearch::failed;
        if (number <= bracket.lowerNumber || number >= bracket.upperNumber) return EDateSearch::failed;
        if (search.cache && search.feedsCache)
            search.cache->InsertDate(search.path, channel.GetNumber(), middleDate, number);
        if (middleDate <= date) {
            bracket.lowerDate = middleDate;
            bracket.lowerNumber = number;
        } else {
            bracket.upperDate = middleDate;
            bracket.upperNumber = number;
        }
    }
    return EDateSearch::found;
}

std::uint32_t PickNearer(const SDateBracket& bracket, CDateTimeSpan date) {
    return Distance(date, bracket.lowerDate) <= Distance(date, bracket.upperDate) ? bracket.lowerNumber
                                                                                  : bracket.upperNumber;
}

std::optional<CDateTimeSpan> FindDateReached(const std::filesystem::path& result,
                                             const Outils::CEvent* interrupt) {
    const SOpenedFile opened = OpenXpfFile(result, EFileKind::tarout, interrupt);
    CXpfChannel* channel = opened.file ? opened.file->FindChannelByName(kResultChannel) : nullptr;
    const auto packet = channel ? channel->CreatePacket() : nullptr;
    const auto* dated = dynamic_cast<const CXpfDatedPacket*>(packet.get());
    if (!dated || !channel->SeekLastPacket(nullptr) || !channel->ReadNextPacket(*packet)) return std::nullopt;
    return dated->GetPacketDate();
}

} // namespace Application_Tarvel
