// The time of a UTC packet.
#pragma once

#include "foundation/date_time.h"
#include "xpf/tarin_layouts.h"

#include <cstdint>
#include <cstring>
#include <span>

namespace Persistance_Xpf {

// The calendar fields of a UTC packet, its seconds with their fraction, and the packet's own date.
struct SUtcFields {
    // REQUIRES: `payload` holds at least kUtcLayout.payloadSize bytes.
    explicit SUtcFields(std::span<const std::uint8_t> payload) {
        const auto load = [payload](std::uint32_t offset, auto& value) {
            std::memcpy(&value, payload.data() + offset, sizeof value);
        };
        std::int64_t ticks = 0;
        load(kUtcLayout.OffsetOf("Date"), ticks);
        date = Outils_Temps::CDateTimeSpan(ticks);
        load(kUtcLayout.OffsetOf("UTC Year"), year);
        load(kUtcLayout.OffsetOf("UTC Month"), month);
        load(kUtcLayout.OffsetOf("UTC day"), day);
        load(kUtcLayout.OffsetOf("UTC Hour"), hour);
        load(kUtcLayout.OffsetOf("UTC Minute"), minute);
        load(kUtcLayout.OffsetOf("UTC Second"), second);
    }

    // The UTC of date zero of the recording's clock; invalid when the fields name no instant.
    Outils_Temps::CDateTime GetOrigin() const {
        auto origin = Outils_Temps::CDateTime::Invalid();
        origin.SetDateTime(year, month, day, hour, minute, 0, 0);
        origin += Outils_Temps::CDateTimeSpan::FromSeconds(static_cast<double>(second));
        return origin - date;
    }

    Outils_Temps::CDateTimeSpan date;
    std::uint16_t year = 0;
    std::uint8_t month = 0, day = 0, hour = 0, minute = 0;
    float second = 0.0f;
};

} // namespace Persistance_Xpf
