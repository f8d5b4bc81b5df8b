#include "morvex/result_queue.h"

#include <algorithm>
#include <cstring>

namespace Morvex {
namespace {

// A result that waits for its smoothed errors: bytes for a temporary file of this process.
struct SOutput {
    double values[19];
    double heave[4];
    std::uint32_t status1, status2, sensorData;
    const char* sensor;
    std::size_t sensorSize;

    SOutput() = default;
    SOutput(const SNavigation& n, const SResultContext& c)
        : values{n.time,
                 n.position[0],
                 n.position[1],
                 n.position[2],
                 n.velocity[0],
                 n.velocity[1],
                 n.velocity[2],
                 n.attitude.w(),
                 n.attitude.x(),
                 n.attitude.y(),
                 n.attitude.z(),
                 c.geoidHeight,
                 c.rate[0],
                 c.rate[1],
                 c.rate[2],
                 c.vehicleToUnit.w(),
                 c.vehicleToUnit.x(),
                 c.vehicleToUnit.y(),
                 c.vehicleToUnit.z()},
          heave{c.heave[0], c.heave[1], c.heave[2], c.heave[3]},
          status1(c.status1),
          status2(c.status2),
          sensorData(c.sensorData),
          sensor(c.sensor.data()),
          sensorSize(c.sensor.size()) {}

    SNavigation GetNavigation() const {
        return {values[0],
                {values[1], values[2], values[3]},
                {values[4], values[5], values[6]},
                Quaterniond(values[7], values[8], values[9], values[10])};
    }
    SResultContext GetContext() const {
        SResultContext context;
        context.geoidHeight = values[11];
        context.rate = Vector3d(values[12], values[13], values[14]);
        context.vehicleToUnit = Quaterniond(values[15], values[16], values[17], values[18]);
        std::copy_n(heave, 4, context.heave.begin());
        context.status1 = status1;
        context.status2 = status2;
        context.sensorData = sensorData;
        context.sensor = std::string_view(sensor, sensorSize);
        return context;
    }
};

} // namespace

CResultQueue::CResultQueue(const SRunPlan& plan, CResultWriter& writer)
    : m_plan(plan), m_writer(writer), m_heave(plan.heave, plan.heavePeriod) {}

bool CResultQueue::OpenSpool(const std::filesystem::path& folder) {
    m_isSpooled = true;
    return m_spool.Open(folder, sizeof(SOutput));
}

void CResultQueue::AddMotion(const CStrapdown& strapdown) {
    if (!m_heave.Wants(strapdown.Get().time)) return;
    const Matrix3d toLevel = strapdown.Get().attitude.toRotationMatrix();
    m_heave.Add(strapdown.Get().time,
                {strapdown.GetFreeHeight(), toLevel(2, 0), toLevel(2, 1), toLevel(2, 2)});
}

bool CResultQueue::Add(const SNavigation& navigation, const NavigationCovariance& covariance,
                       const SResultContext& context) {
    m_waiting.push_back({navigation, covariance, context});
    while (!m_waiting.empty() && m_heave.IsReady(m_waiting.front().navigation.time)) {
        if (!Release(m_waiting.front())) return false;
        m_waiting.pop_front();
    }
    return true;
}

bool CResultQueue::Flush() {
    for (SWaiting& waiting : m_waiting)
        if (!Release(waiting)) return false;
    m_waiting.clear();
    m_heave.Reset();
    return true;
}

bool CResultQueue::Release(SWaiting& waiting) {
    const CHeaveFilter::Values heave = m_heave.Get(waiting.navigation.time);
    for (std::size_t i = 0; i < m_plan.points.size(); ++i)
        waiting.context.heave[i] = heave[0] + heave.tail<3>().dot(m_plan.points[i]);
    if (!m_isSpooled) return m_writer.Write(waiting.navigation, waiting.covariance, waiting.context);
    const SOutput output(waiting.navigation, waiting.context);
    return m_spool.Append(&output);
}

bool CResultQueue::WriteSmoothed(CSmoother& smoother, const std::function<bool(double)>& goOn) {
    for (std::int64_t i = 0; i < m_spool.GetCount(); ++i) {
        if (i % 256 == 0) {
            const double share = static_cast<double>(i) / static_cast<double>(m_spool.GetCount());
            if (!goOn(share) || !m_writer.FlushIfDue()) return false;
        }
        const std::uint8_t* bytes = m_spool.Read(i);
        if (!bytes) return false;
        SOutput output;
        std::memcpy(&output, bytes, sizeof output);
        NavigationErrors errors;
        NavigationCovariance covariance;
        SNavigation navigation = output.GetNavigation();
        if (!smoother.GetErrors(navigation.time, errors, covariance)) return false;
        CStrapdown corrected(navigation);
        corrected.Correct(errors.segment<3>(statePosition), errors.segment<3>(stateVelocity),
                          errors.segment<3>(stateAttitude));
        if (!m_writer.Write(corrected.Get(), covariance, output.GetContext())) return false;
    }
    return true;
}

} // namespace Morvex
