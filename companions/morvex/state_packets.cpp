#include "morvex/state_packets.h"

#include "foundation/date_time.h"
#include "xpf/tarout_layouts.h"

#include <cstring>

namespace Morvex {
namespace {

using Persistance_Xpf::kMorvexExtLayout;

std::int64_t TicksOf(double seconds) { return Outils_Temps::CDateTimeSpan::FromSeconds(seconds).GetTicks(); }

class CEstimateFields {
  public:
    CEstimateFields() : m_bytes(kMorvexExtLayout.payloadSize, 0) {}
    template <class Value>
    void Put(std::uint32_t offset, Value value) {
        std::memcpy(m_bytes.data() + offset, &value, sizeof value);
    }
    // Three fields that follow each other.
    void Put3(std::uint32_t offset, const Vector3d& values) {
        for (Eigen::Index i = 0; i < 3; ++i) Put(offset + 8 * static_cast<std::uint32_t>(i), values[i]);
    }
    void PutTurn(std::uint32_t offset, const Quaterniond& turn) {
        Put(offset, turn.w());
        Put3(offset + 8, turn.vec());
    }
    std::vector<std::uint8_t> Take() { return std::move(m_bytes); }

  private:
    std::vector<std::uint8_t> m_bytes;
};

consteval std::uint32_t At(std::string_view name) { return kMorvexExtLayout.OffsetOf(name); }

} // namespace

std::vector<std::uint8_t> MakeEstimatePacket(CInsFilter& filter, const SRunPlan& plan,
                                             const SEstimateContext& context) {
    const SFilterState& state = filter.Get();
    const SNavigation& navigation = state.navigation;
    CEstimateFields fields;
    fields.Put(At("Date"), TicksOf(navigation.time));
    fields.PutTurn(At("Qnb"), navigation.attitude);
    fields.Put(At("Speed north"), navigation.velocity.x());
    fields.Put(At("Speed west"), navigation.velocity.y());
    fields.Put(At("Speed up"), navigation.velocity.z());
    fields.Put(At("Latitude"), navigation.position[0] / kRadiansPerDegree);
    fields.Put(At("Longitude"), navigation.position[1] / kRadiansPerDegree);
    fields.Put(At("Altitude"), navigation.position[2] - (plan.aboveGeoid ? context.geoidHeight : 0.0));
    fields.Put3(At("Acc bias X"), state.accelBias);
    fields.Put3(At("Gyro bias X"), state.gyroBias);
    constexpr std::uint32_t kArms[] = {At("Lever arm GPS1 X"), At("Lever arm GPS2 X")};
    for (std::size_t i = 0; i < std::size(kArms) && i < plan.gps.size(); ++i)
        if (!plan.gps[i].isUsbl)
            fields.Put3(kArms[i], plan.gps[i].leverArm +
                                      (i == 0 ? filter.GetSensor3(EGroup::gpsArm) : Vector3d(0.0, 0.0, 0.0)));
    for (const SAidingPlan& aiding : plan.aidings) {
        if (aiding.kind != EAiding::dvlBottom) continue;
        fields.Put3(At("Lever arm LOG X"), aiding.leverArm);
        fields.PutTurn(At("Qbody_log"),
                       RotationOf(filter.GetSensor3(EGroup::dvlTurn)) * Quaterniond(aiding.sensorToVessel));
        fields.Put(At("Scale factor Log"),
                   (1.0 + aiding.scale) * (1.0 + filter.GetSensor(EGroup::dvlScale)) - 1.0);
    }
    fields.Put(At("Algorithm status 1"), context.status1);
    fields.Put(At("Algorithm status 2"), context.status2);
    const Vector3d &rate = filter.GetStrapdown().GetRate(), &force = filter.GetStrapdown().GetForce();
    fields.Put3(At("Instant value gyro X"), rate + state.gyroBias);
    fields.Put3(At("Gyro X"), rate);
    fields.Put3(At("Acc X"), force);
    return fields.Take();
}

std::vector<std::uint8_t> MakeStatePacket(CInsFilter& filter) {
    const SFilterState& state = filter.Get();
    const Eigen::Index size = state.covariance.rows();
    std::vector<double> vector(static_cast<std::size_t>(size), 0.0), matrix;
    for (Eigen::Index i = 0; i < 3; ++i) {
        vector[static_cast<std::size_t>(stateGyroBias + i)] = state.gyroBias[i];
        vector[static_cast<std::size_t>(stateAccelBias + i)] = state.accelBias[i];
    }
    for (Eigen::Index i = kStates; i < size; ++i)
        vector[static_cast<std::size_t>(i)] = state.sensors[i - kStates];
    for (Eigen::Index row = 0; row < size; ++row)
        for (Eigen::Index column = row; column < size; ++column)
            matrix.push_back(state.covariance(row, column));

    std::vector<std::uint8_t> bytes;
    const auto append = [&bytes](const void* from, std::size_t count) {
        const auto* first = static_cast<const std::uint8_t*>(from);
        bytes.insert(bytes.end(), first, first + count);
    };
    const std::int64_t date = TicksOf(state.navigation.time);
    append(&date, sizeof date);
    for (const std::vector<double>* values : {&vector, &matrix}) {
        const auto count = static_cast<std::uint32_t>(values->size());
        append(&count, sizeof count);
        append(values->data(), values->size() * sizeof(double));
    }
    return bytes;
}

} // namespace Morvex
