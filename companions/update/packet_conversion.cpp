#include "update/packet_conversion.h"

#include "foundation/bytes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace MiseANiveau {

using namespace Persistance_Xpf;

namespace {

struct SRenamedField {
    std::uint16_t packetType;
    std::string_view former, present;
};
constexpr SRenamedField kRenamedFields[] = {
    {typeOdometer, "Distance", "Measure"},
    {typeOdometer, "Std. dev. distance", "Std. dev. measure"},
};

std::string_view GetFormerName(std::uint16_t packetType, std::string_view present) {
    for (const SRenamedField& row : kRenamedFields)
        if (row.packetType == packetType && row.present == present) return row.former;
    return present;
}

// The value as the nearest one of the other type: integers are clipped to its range.
template <class To, class From>
To ConvertValue(From value) {
    if constexpr (std::is_floating_point_v<To>) {
        return static_cast<To>(value);
    } else if constexpr (std::is_floating_point_v<From>) {
        if (std::isnan(value)) return 0;
        if (value <= static_cast<From>(std::numeric_limits<To>::min())) return std::numeric_limits<To>::min();
        if (value >= static_cast<From>(std::numeric_limits<To>::max())) return std::numeric_limits<To>::max();
        return static_cast<To>(std::llround(value));
    } else {
        if (std::cmp_less(value, std::numeric_limits<To>::min())) return std::numeric_limits<To>::min();
        if (std::cmp_greater(value, std::numeric_limits<To>::max())) return std::numeric_limits<To>::max();
        return static_cast<To>(value);
    }
}

using Copy = void (*)(const std::uint8_t* from, std::uint8_t* to);

template <class From, class To>
void CopyElement(const std::uint8_t* from, std::uint8_t* to) {
    const To value = ConvertValue<To>(Outils::Load<From>(from));
    std::memcpy(to, &value, sizeof value);
}

template <class From, class... To>
constexpr auto MakeRow() {
    return std::array<Copy, sizeof...(To)>{CopyElement<From, To>...};
}
constexpr auto kCopies = []<class... T>(std::tuple<T...>*) {
    return std::array{MakeRow<T, T...>()...};
}(static_cast<FieldElements*>(nullptr));

} // namespace

CPacketConversion::CPacketConversion(const SOwnDefinition& former, const SPacketLayout& present)
    : m_payload(present.payloadSize) {
    for (std::size_t i = 0; i < present.fields.size(); ++i) {
        const SFieldLayout& field = present.fields[i];
        auto found = std::ranges::find(former.fields, field.name, &SOwnField::name);
        if (found == former.fields.end())
            found =
                std::ranges::find(former.fields, GetFormerName(present.type, field.name), &SOwnField::name);
        if (found == former.fields.end()) continue;
        m_steps.push_back({found->offset, present.offsets[i], found->type,
                           static_cast<std::uint8_t>(field.type), std::min(found->count, field.count)});
    }
}

std::span<const std::uint8_t> CPacketConversion::Convert(std::span<const std::uint8_t> payload) {
    std::ranges::fill(m_payload, std::uint8_t{0});
    for (const SStep& step : m_steps) {
        const std::uint32_t fromWidth = GetWidth(static_cast<EFieldType>(step.fromType)),
                            toWidth = GetWidth(static_cast<EFieldType>(step.toType));
        for (std::uint32_t k = 0; k < step.count; ++k) {
            const std::size_t from = step.from + std::size_t{k} * fromWidth;
            if (from + fromWidth > payload.size()) break;
            kCopies[step.fromType][step.toType](payload.data() + from,
                                                m_payload.data() + step.to + k * toWidth);
        }
    }
    return m_payload;
}

} // namespace MiseANiveau
