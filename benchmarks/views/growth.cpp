// A result that is written at 100 MB/s while its graph is on the screen: how long after it was written a
// packet is shown, and the last one after the writer has ended.
#include "application.h"
#include "batch/session.h"
#include "document/project_file.h"
#include "recording/recording_writer.h"
#include "views/view_1d.h"
#include "xpf/packets.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <thread>

using namespace Application_Tarvel;
using namespace Presentation_Tarvel_Graphics;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kLatitude = 3;
constexpr double kBytesPerSecond = 100e6;
constexpr double kSeconds = 6;
constexpr auto kStep = std::chrono::milliseconds(10);

double SecondsSince(Clock::time_point time) {
    return std::chrono::duration<double>(Clock::now() - time).count();
}

// Writes a packet for every millisecond of the mission, as fast as an engine that writes this much.
class CWriter {
  public:
    explicit CWriter(const std::filesystem::path& path) {
        constexpr std::string_view channels[] = {"MORVEX_STD"};
        m_writer.Create(path, channels);
        Write(100);
    }
    ~CWriter() { Join(); }
    void Start() {
        m_thread = std::thread([this] {
            const auto start = Clock::now();
            const double size = Persistance_Xpf::CXpfTaroutMorvexStdPacketV2().GetPayloadSize() + 28.0;
            const std::int64_t before = m_count;
            while (SecondsSince(start) < kSeconds) {
                const auto due = static_cast<std::int64_t>(SecondsSince(start) * kBytesPerSecond / size);
                if (due > m_count - before) Write(due - (m_count - before));
                std::this_thread::sleep_for(kStep);
            }
            m_ended = true;
        });
    }
    void Join() {
        if (m_thread.joinable()) m_thread.join();
    }
    bool HasEnded() const { return m_ended; }
    // How long ago the packet of this date was written; 0 once it is the last one.
    double GetAge(std::int64_t date) {
        const std::lock_guard lock(m_mutex);
        const auto next = std::ranges::upper_bound(m_written, date, {}, &SWritten::last);
        return next == m_written.end() ? 0 : SecondsSince(next->time);
    }

  private:
    struct SWritten {
        std::int64_t last; // date
        Clock::time_point time;
    };

    void Write(std::int64_t count) {
        Persistance_Xpf::CXpfTaroutMorvexStdPacketV2 packet;
        for (std::int64_t i = 0; i < count; ++i, ++m_count) {
            packet.SetDate(0, CDateTimeSpan(m_count * 10'000));
            packet.SetDouble(kLatitude, std::sin(static_cast<double>(m_count) * 1e-4));
            m_writer.Write("MORVEX_STD", packet);
        }
        m_writer.Flush();
        const std::lock_guard lock(m_mutex);
        m_written.push_back({(m_count - 1) * 10'000, Clock::now()});
    }

    Enregistrement::CRecordingWriter m_writer;
    std::int64_t m_count = 0;
    std::mutex m_mutex;
    std::vector<SWritten> m_written;
    std::atomic<bool> m_ended = false;
    std::thread m_thread;
};

// Argument: everything is shown, or only the last tenth of it.
void FollowResult(benchmark::State& state) {
    QApplication& application = GetApplication();
    const auto folder = std::filesystem::temp_directory_path() / "varne-bench-growth";
    std::filesystem::create_directories(folder);
    std::vector<double> lags, ends;
    for (auto _ : state) {
        CWriter writer(folder / "r.tarout");
        Batch::CSession session({std::cout, std::cerr});
        Metier_Tarvel::CTrvProject project("/nowhere/r.tarin", folder / "r.tarout");
        project.graphSettings->AddMeasureGraph("graph")->AddCurve(
            project.simulationParameters->outputFile.get(), 1, kLatitude, "MORVEX_STD - Latitude");
        StoreProject(&project, folder / "p.tarprj");
        session.Open((folder / "p.tarprj").string());
        Outils_Configuration::CTrvCnfConfigFile settings;
        Outils_Valeurs::CTrvAdaptors adaptors;
        adaptors.Configure(settings);
        Outils_Plot2D::CPlot2DSettings plots;
        CViewState viewState;
        CTrvView1D view(session.GetDocument(), viewState, settings, adaptors, plots);
        view.resize(1600, 900);
        view.show();
        const auto run = [&] {
            session.GetHost().GetQueue().RunOne(std::chrono::milliseconds(2));
            application.processEvents();
        };
        const auto lastShown = [&] {
            CDateTimeSpan first, last(-1);
            view.GetStack().GetPortlets().front()->ForEachSource([&](const CTrv1DGraphDataSource& source) {
                if (source.GetDataset()) source.GetDataset()->GetExtent(first, last);
            });
            return last.GetTicks();
        };
        while (lastShown() < 0) run();
        if (state.range(0)) view.GetLoader().ZoomTime(3.3), view.GetLoader().ShowEnd();
        writer.Start();
        std::int64_t shown = lastShown();
        bool begun = false; // the document has heard of the growth
        while (!writer.HasEnded()) {
            const double age = writer.GetAge(shown);
            run();
            if (lastShown() == shown) continue;
            shown = lastShown();
            if (begun) lags.push_back(age);
            begun = true;
        }
        const auto ended = Clock::now();
        while (writer.GetAge(lastShown()) > 0 && SecondsSince(ended) < 10) run();
        ends.push_back(SecondsSince(ended));
    }
    std::filesystem::remove_all(folder);
    std::ranges::sort(lags);
    if (!lags.empty()) {
        state.counters["lag_median_ms"] = lags[lags.size() / 2] * 1000;
        state.counters["lag_worst_ms"] = lags.back() * 1000;
    }
    state.counters["looks"] = static_cast<double>(lags.size());
    state.counters["end_ms"] = *std::ranges::max_element(ends) * 1000;
}

} // namespace

BENCHMARK(FollowResult)
    ->ArgName("last")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
