#include "dataaccess/date_search.h"

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

} // namespace

EDateSearch SearchDate(CXpfChannel& channel, CXpfDatedPacket& packet, CDateTimeSpan date,
                       const Outils::CEvent& cancel, SDateBracket& bracket) {
    if (!channel.SeekFirstPacket(nullptr) ||
        !ReadDate(channel, packet, bracket.lowerDate, bracket.lowerNumber))
        return EDateSearch::failed;
    if (!channel.SeekLastPacket(nullptr) ||
        !ReadDate(channel, packet, bracket.upperDate, bracket.upperNumber))
        return EDateSearch::failed;
    if (date < bracket.lowerDate || date > bracket.upperDate) return EDateSearch::outside;

    // Every turn halves the distance of the two numbers, so damaged numbers end the search instead of
    // prolonging it.
    while (bracket.upperNumber > bracket.lowerNumber && bracket.upperNumber - bracket.lowerNumber > 1) {
        if (cancel.IsSet()) return EDateSearch::cancelled;
        if (date == bracket.lowerDate || date == bracket.upperDate) break;
        const std::uint32_t middle = bracket.lowerNumber + (bracket.upperNumber - bracket.lowerNumber) / 2;
        CDateTimeSpan middleDate;
        std::uint32_t number = 0;
        if (!channel.SeekPacketNumber(middle) || !ReadDate(channel, packet, middleDate, number))
            return EDateSearch::failed;
        if (number <= bracket.lowerNumber || number >= bracket.upperNumber) return EDateSearch::failed;
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

} // namespace Application_Tarvel
