#include "dataaccess/packet_extremes.h"

#include <cstring>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

template <class T>
void IncludeRun(const std::uint8_t* packet, std::uint8_t* minimum, std::uint8_t* maximum,
                std::uint32_t count) {
    for (std::uint32_t i = 0; i < count;
         ++i, packet += sizeof(T), minimum += sizeof(T), maximum += sizeof(T)) {
        T value, low, high;
        std::memcpy(&value, packet, sizeof value);
        std::memcpy(&low, minimum, sizeof low);
        std::memcpy(&high, maximum, sizeof high);
        // "Not below" takes the place of "at least": it lets a number replace a NaN and keeps NaN from
        // replacing one.
        if (!(low <= value) && value == value) std::memcpy(minimum, &value, sizeof value);
        if (!(high >= value) && value == value) std::memcpy(maximum, &value, sizeof value);
    }
}

} // namespace

CPacketExtremes::CPacketExtremes(const CXpfPacket& packet) {
    std::uint32_t offset = 0;
    for (std::uint32_t field = 0; field < packet.GetFieldCount(); ++field) {
        EFieldType type;
        std::uint32_t count = 0;
        std::uint8_t nature = 0;
        if (!packet.GetFieldInfo(field, type, count, nature)) break;
        if (type != EFieldType::date) {
            if (!m_runs.empty() && m_runs.back().type == type &&
                m_runs.back().offset + m_runs.back().count * GetWidth(type) == offset)
                m_runs.back().count += count;
            else
                m_runs.push_back({type, offset, count});
        }
        offset += count * GetWidth(type);
    }
}

void CPacketExtremes::Include(const std::uint8_t* packet, std::uint8_t* minimum,
                              std::uint8_t* maximum) const {
    for (const SRun& run : m_runs) {
        const std::uint8_t* value = packet + run.offset;
        std::uint8_t* low = minimum + run.offset;
        std::uint8_t* high = maximum + run.offset;
        switch (run.type) {
        case EFieldType::u8: IncludeRun<std::uint8_t>(value, low, high, run.count); break;
        case EFieldType::u16: IncludeRun<std::uint16_t>(value, low, high, run.count); break;
        case EFieldType::u32: IncludeRun<std::uint32_t>(value, low, high, run.count); break;
        case EFieldType::i8: IncludeRun<std::int8_t>(value, low, high, run.count); break;
        case EFieldType::i16: IncludeRun<std::int16_t>(value, low, high, run.count); break;
        case EFieldType::i32: IncludeRun<std::int32_t>(value, low, high, run.count); break;
        case EFieldType::f32: IncludeRun<float>(value, low, high, run.count); break;
        case EFieldType::f64: IncludeRun<double>(value, low, high, run.count); break;
        case EFieldType::date: break;
        }
    }
}

} // namespace Application_Tarvel
