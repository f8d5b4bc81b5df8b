// Datasets made up for tests: one result packet per second with known values.
#pragma once

#include "dataaccess/test_recording.h"
#include "graph/dataset.h"
#include "xpf/packets.h"

#include <cmath>
#include <functional>

namespace test {

using namespace Presentation_Tarvel_Graphics;

// Fields of the result packet: latitude, longitude, altitude and heading.
inline constexpr std::uint32_t kLatitude = 3, kLongitude = 4, kAltitude = 5, kHeading = 40;

inline std::unique_ptr<CXpfPacket> MakeResult(double second, double value) {
    auto packet = std::make_unique<Persistance_Xpf::CXpfTaroutMorvexStdPacketV2>();
    packet->SetDate(0, Seconds(second));
    packet->SetDouble(kLatitude, value);
    packet->SetFloat(kAltitude, static_cast<float>(value));
    return packet;
}

// A bucket for every second of [from, to), its extremes `spread` below and above the value.
inline std::shared_ptr<CTrv1DGraphDataset> MakeDataset(double from, double to,
                                                       const std::function<double(double)>& value,
                                                       double spread = 0, CDateTimeSpan origin = {}) {
    Application_Tarvel::SReducedSeries series;
    for (double second = from; second < to; second += 1) {
        series.representatives.push_back(MakeResult(second, value(second)));
        if (spread == 0) continue;
        series.minima.push_back(MakeResult(second, value(second) - spread));
        series.maxima.push_back(MakeResult(second, value(second) + spread));
    }
    return std::make_shared<CTrv1DGraphDataset>(std::move(series), Seconds(1), origin);
}

} // namespace test
