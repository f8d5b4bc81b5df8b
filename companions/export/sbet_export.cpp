#include "export/sbet_export.h"

#include "common/angles.h"
#include "export/trajectory.h"
#include "foundation/paths.h"

#include <bit>
#include <optional>

namespace Exportation {

using namespace Persistance_Xpf;
using Compagnon::EDialect;
using Compagnon::SProgram;
using namespace Outils_Temps;

namespace {

static_assert(std::endian::native == std::endian::little);

constexpr SSwitchRow kReferenceSwitch{"/tr", ESwitchValue::word, "day|week", EText::exportSwitchReference};
constexpr SSwitchRow kAccuracySwitch{"/a", ESwitchValue::none, "", EText::exportSwitchAccuracy};
constexpr std::size_t kDay = 0, kWeek = 1;

constexpr double kArcMinutesPerRadian = 60.0 * Compagnon::kDegreesPerRadian;

template <std::size_t Count>
void Write(CExportFile& file, const std::array<double, Count>& record) {
    constexpr std::size_t kSize = sizeof record;
    char* out = file.Begin(kSize);
    std::memcpy(out, record.data(), kSize);
    file.End(out + kSize);
}

// Seconds since the beginning of the day or week in which the first record lies. They grow on when the
// recording leaves it: readers interpolate in time.
class CReference {
  public:
    CReference(const CClock& clock, bool week) : m_clock(clock), m_week(week) {}

    double Count(std::int64_t date) {
        if (!m_clock.KnowsUtc()) return static_cast<double>(m_clock.Shift(date)) * 1e-7;
        const auto ticks = static_cast<std::int64_t>(m_clock.GetUtc(date).GetTicks());
        if (!m_begin) {
            // The epoch of the ticks is a Monday; weeks begin with Sunday.
            const std::int64_t day = ticks / kTicksPerDay, inWeek = (day + 1) % 7;
            m_begin = (m_week ? day - inWeek : day) * kTicksPerDay;
            m_length = (m_week ? 7 : 1) * kTicksPerDay;
        }
        m_left = m_left || ticks - *m_begin >= m_length;
        return static_cast<double>(ticks - *m_begin) / static_cast<double>(kTicksPerSecond);
    }
    // Whether a record lies beyond the day or week.
    bool IsLeft() const { return m_left; }

  private:
    const CClock& m_clock;
    bool m_week;
    std::optional<std::int64_t> m_begin; // ticks
    std::int64_t m_length = 0;
    bool m_left = false;
};

// Holds the packets on both sides of the one that is written.
class CSbetWriter {
  public:
    CSbetWriter(CExportRun& run, CExportFile& records, CExportFile* accuracy, CReference& reference)
        : m_records(records),
          m_accuracy(accuracy),
          m_reference(reference),
          m_reader(run.GetPoint()),
          m_decimation(run.GetDecimation()) {}

    void Take(const std::uint8_t* payload) {
        const SNavigationSample sample = m_reader.Read(payload);
        if (m_at) WriteRecord(&sample);
        m_before = m_at;
        m_at = sample;
    }
    void End() {
        if (m_at) WriteRecord(nullptr);
        m_at.reset();
    }
    std::uint64_t GetRecords() const { return m_count; }

  private:
    void WriteRecord(const SNavigationSample* after) {
        if (m_seen++ % m_decimation != 0) return;
        SNavigationSample at = *m_at;
        const auto [acceleration, rate] = GetMotion(m_before ? &*m_before : nullptr, at, after);
        const double time = m_reference.Count(at.date);
        constexpr double kWanderAngle = 0.0;
        Write(m_records,
              std::array{time, at.latitude, at.longitude, at.altitude, at.velocity[0], at.velocity[1],
                         at.velocity[2], at.roll, at.pitch, at.heading, kWanderAngle, acceleration[0],
                         acceleration[1], acceleration[2], rate[0], rate[1], rate[2]});
        if (m_accuracy) {
            const auto &p = at.positionDeviation, &v = at.velocityDeviation, &a = at.attitudeDeviation;
            Write(*m_accuracy,
                  std::array{time, p[0], p[1], p[2], v[0], v[1], v[2], a[0] * kArcMinutesPerRadian,
                             a[1] * kArcMinutesPerRadian, a[2] * kArcMinutesPerRadian});
        }
        ++m_count;
    }

    CExportFile& m_records;
    CExportFile* m_accuracy; // null without one
    CReference& m_reference;
    CNavigationReader m_reader;
    std::uint64_t m_decimation;
    std::optional<SNavigationSample> m_before, m_at;
    std::uint64_t m_seen = 0, m_count = 0;
};

ERunEnd ExportSbet(const CArguments& arguments, IRunMonitor& monitor) {
    CExportRun run(arguments, monitor);
    if (!run.Open({EFileKind::tarout})) return ERunEnd::failed;
    const SPassChannel* navigation = run.RequireChannel(kResultChannel);
    CExportFile records, accuracy;
    if (!navigation || !run.OpenFile(records, run.GetTarget())) return ERunEnd::failed;
    const bool withAccuracy = arguments.Has(kAccuracySwitch.name);
    const auto accuracyName = NameAccuracyFile(run.GetTarget());
    if (withAccuracy && !run.OpenFile(accuracy, accuracyName)) return ERunEnd::failed;
    if (!run.GetClock().KnowsUtc()) monitor.Report(ELevel::warning, EText::exportNoUtcSeconds);

    CReference reference(run.GetClock(), arguments.GetWord(kReferenceSwitch.name, kWeek) == kWeek);
    CSbetWriter writer(run, records, withAccuracy ? &accuracy : nullptr, reference);
    run.GetPass().Begin({navigation}, run.GetPeriod());
    for (SPassPacket packet; records.IsGood() && run.GetPass().Next(packet);) writer.Take(packet.payload);
    writer.End();
    if (reference.IsLeft()) monitor.Report(ELevel::information, EText::exportTimeGoesOn);
    if (withAccuracy)
        monitor.Report(ELevel::information, EText::exportAccuracyFile,
                       {Outils_Fichiers::ToText(accuracyName)});
    // The trajectory last: it stands for both.
    CExportFile* const files[] = {&accuracy, &records};
    return run.Finish(withAccuracy ? std::span(files) : std::span(files).last(1), writer.GetRecords());
}

constexpr SSwitchRow kSbetSwitches[] = {kPointSwitch, kReferenceSwitch, kAccuracySwitch,
                                        kFromSwitch,  kToSwitch,        kDecimationSwitch};

} // namespace

std::filesystem::path NameAccuracyFile(const std::filesystem::path& target) {
    constexpr std::string_view kFormer = "sbet_", kPrefix = "smrmsg_";
    std::string name = target.filename().string();
    if (name.starts_with(kFormer)) name.erase(0, kFormer.size());
    return target.parent_path() / (std::string(kPrefix) + name);
}

const SProgram kResultToSbet{
    "Tarout2Sbet.exe", EText::exportSbetPurpose, "SOURCE TARGET", 2, 2, kSbetSwitches, EDialect::tool, true,
    ExportSbet};

} // namespace Exportation
