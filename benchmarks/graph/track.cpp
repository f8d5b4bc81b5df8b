// The track of a plan view over a whole channel of positions against the reduction of that channel to slices,
// on one recording, alternating; the counter "ratio" compares the medians.
#include "dataaccess/recording.h"
#include "graph/track_query.h"
#include "xpf/tarin_layouts.h"

#include <benchmark/benchmark.h>

#include <cmath>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace Presentation_Tarvel_Graphics;
using namespace bench;

namespace {

// Lines up and down a field of some kilometres, with the noise of positions.
class CSurvey {
  public:
    CSurvey() {
        constexpr std::string_view channels[] = {"GPS_1"};
        Enregistrement::CRecordingWriter writer;
        writer.Create(GetPath(), channels);
        CXpfTarinGpsPacketV2 gps;
        std::uint32_t noise = 1;
        for (std::size_t i = 0; i < kPackets; ++i) {
            gps.SetDate(0, CDateTimeSpan(static_cast<std::int64_t>(i) * kStep));
            const double way = static_cast<double>(i) / 100'000;
            const double leg = std::floor(way), along = way - leg;
            const bool isBack = static_cast<int>(leg) % 2 == 1;
            noise = noise * 1664525 + 1013904223;
            const double error = static_cast<double>(noise >> 16) * 1e-13;
            gps.SetDouble(kGpsLayout.IndexOf("Latitude"), 45 + 0.05 * (isBack ? 1 - along : along) + error);
            gps.SetDouble(kGpsLayout.IndexOf("Longitude"), -4 + leg * 0.001 - error);
            writer.Write(0, gps);
        }
        writer.Close();
    }
    const std::filesystem::path& GetPath() const { return m_file.path; }

  private:
    CMadeFile m_file;
};

void TrackOfWholeChannel(benchmark::State& state) {
    static const CSurvey survey;
    const CDateTimeSpan end(static_cast<std::int64_t>(kPackets) * kStep);
    constexpr std::uint16_t kGpsNumber = 5; // row of the channel table
    const SChannelAddress address{survey.GetPath(), EFileKind::tarin, kGpsNumber};
    STrackRequest request;
    request.latitude = kGpsLayout.IndexOf("Latitude");
    request.longitude = kGpsLayout.IndexOf("Longitude");
    if (state.range(0)) { // a picture of a hundredth of the field
        request.region = SGeoBox{{45.02, -4}, {45.025, -3.997}};
        request.cell = 0.25;
    }
    std::vector<double> reduction, tracking;
    std::size_t points = 0;
    for (auto _ : state) {
        CTrvView1DDataQuery reduce(address, {CDateTimeSpan(1), end, CDateTimeSpan(end.GetTicks() / kSlices)},
                                   nullptr);
        reduction.push_back(ProcessorSecondsOf([&] { reduce.Execute(); }));
        CTrvTrackQuery query(address, {CDateTimeSpan(0), end}, request, {});
        tracking.push_back(ProcessorSecondsOf([&] { query.Execute(); }));
        const STrack track = query.TakeTrack();
        points = track.points.size();
        if (track.count != kPackets) state.SkipWithError("packets are missing");
    }
    state.counters["points"] = static_cast<double>(points);
    state.counters["reduction_ms"] = Median(reduction) * 1e3;
    state.counters["track_ms"] = Median(tracking) * 1e3;
    state.counters["ratio"] = Median(tracking) / Median(reduction);
}
BENCHMARK(TrackOfWholeChannel)
    ->ArgNames({"region"})
    ->Arg(0)
    ->Arg(1)
    ->Iterations(7)
    ->Unit(benchmark::kMillisecond);

} // namespace
