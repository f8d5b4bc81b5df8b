#include "morvex/aiding.h"

#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Morvex {
namespace {

using namespace Persistance_Xpf;

// Velocity of the sensor's point in vessel axes, against the earth or against the water, and its derivative.
struct SVesselSpeed {
    Vector3d value;
    Eigen::Matrix<double, 3, kMostStates> h;
};
SVesselSpeed GetVesselSpeed(const SAiding& aiding, const CInsFilter& filter, const SAidingContext& context,
                            bool throughWater) {
    const SNavigation& navigation = filter.GetNavigation();
    const Matrix3d toVessel = navigation.attitude.toRotationMatrix().transpose();
    const int current = throughWater ? filter.GetLayout().Find(EGroup::current) : -1;
    Vector3d level = navigation.velocity;
    if (current >= 0)
        level -= Vector3d(filter.GetSensor(EGroup::current, 0), filter.GetSensor(EGroup::current, 1), 0.0);
    const Vector3d& arm = aiding.plan->leverArm;
    SVesselSpeed speed;
    speed.value = toVessel * level + context.rate.cross(arm);
    speed.h.setZero();
    speed.h.block<3, 3>(0, stateVelocity) = toVessel;
    speed.h.block<3, 3>(0, stateAttitude) = toVessel * SkewOf(level);
    speed.h.block<3, 3>(0, stateGyroBias) = SkewOf(arm);
    if (current >= 0) speed.h.block<3, 2>(0, current) = -toVessel.leftCols<2>();
    return speed;
}

// The speed in the sensor's own axes, with its scale and its misalignment where the filter estimates them.
void TurnIntoSensor(const SAiding& aiding, const CInsFilter& filter, const SVesselSpeed& speed,
                    EGroup scaleGroup, EGroup turnGroup, Vector3d& value,
                    Eigen::Matrix<double, 3, kMostStates>& h) {
    const int scaleState = filter.GetLayout().Find(scaleGroup);
    const int turnState = filter.GetLayout().Find(turnGroup);
    const int turns = filter.GetLayout().GetRow(turnGroup).size;
    // A boresight of two states turns about port and up only: a log that measures along needs no roll.
    Vector3d turn = Vector3d::Zero();
    for (int i = 0; turnState >= 0 && i < turns; ++i) turn[3 - turns + i] = filter.GetSensor(turnGroup, i);
    const double scale = (1.0 + aiding.plan->scale) * (1.0 + filter.GetSensor(scaleGroup));
    const Matrix3d toSensor = aiding.plan->sensorToVessel.transpose();
    const Vector3d turned = speed.value - turn.cross(speed.value);
    const Matrix3d change = scale * toSensor * (Matrix3d::Identity() - SkewOf(turn));
    value = scale * (toSensor * turned) + aiding.plan->bias;
    h = change * speed.h;
    if (scaleState >= 0) h.col(scaleState) = (1.0 + aiding.plan->scale) * (toSensor * turned);
    if (turnState >= 0)
        h.middleCols(turnState, turns) = (scale * toSensor * SkewOf(speed.value)).rightCols(turns);
}

SObservation ObserveDvl(const SAiding& aiding, const CInsFilter& filter, const SAidingContext& context) {
    SObservation observation(3);
    Vector3d predicted;
    TurnIntoSensor(aiding, filter, GetVesselSpeed(aiding, filter, context, aiding.kind == EAiding::dvlWater),
                   EGroup::dvlScale, EGroup::dvlTurn, predicted, observation.h);
    observation.innovation = aiding.value - predicted;
    observation.noise = aiding.deviation.cwiseAbs2().asDiagonal();
    return observation;
}

SObservation ObserveEmLog(const SAiding& aiding, const CInsFilter& filter, const SAidingContext& context) {
    SObservation observation(1);
    const SVesselSpeed speed = GetVesselSpeed(aiding, filter, context, true);
    const double scale = 1.0 + filter.GetSensor(EGroup::emLogScale);
    observation.innovation[0] = aiding.value[0] - scale * speed.value.x();
    observation.h.row(0) = scale * speed.h.row(0);
    observation.h(0, filter.GetLayout().Find(EGroup::emLogScale)) = speed.value.x();
    observation.noise(0, 0) = aiding.deviation[0] * aiding.deviation[0];
    return observation;
}

// Distance along the road as a mean speed; sideways and upwards a wheel does not move.
SObservation ObserveOdometer(const SAiding& aiding, const CInsFilter& filter, const SAidingContext& context) {
    SObservation observation(3);
    Vector3d predicted;
    TurnIntoSensor(aiding, filter, GetVesselSpeed(aiding, filter, context, false), EGroup::odometerScale,
                   EGroup::odometerTurn, predicted, observation.h);
    observation.innovation = aiding.value - predicted;
    observation.noise = aiding.deviation.cwiseAbs2().asDiagonal();
    return observation;
}

// Sideways and upwards of a vehicle on wheels.
SObservation ObserveLand(const SAiding& aiding, const CInsFilter& filter, const SAidingContext& context) {
    SObservation observation(2);
    Vector3d predicted;
    Eigen::Matrix<double, 3, kMostStates> h;
    TurnIntoSensor(aiding, filter, GetVesselSpeed(aiding, filter, context, false), EGroup::odometerScale,
                   EGroup::odometerTurn, predicted, h);
    observation.innovation.head<2>() = -predicted.tail<2>();
    observation.h.topRows<2>() = h.bottomRows<2>();
    const Eigen::Vector2d deviation = GetLandDeviation(predicted.x(), context.rate);
    observation.noise(0, 0) = deviation.x() * deviation.x();
    observation.noise(1, 1) = deviation.y() * deviation.y();
    return observation;
}

SObservation ObserveDepth(const SAiding& aiding, const CInsFilter& filter, const SAidingContext& context) {
    SObservation observation(1);
    const SNavigation& navigation = filter.GetNavigation();
    const Vector3d arm = navigation.attitude * aiding.plan->leverArm;
    const double predicted =
        context.geoidHeight - navigation.position[2] - arm.z() + filter.GetSensor(EGroup::depthBias);
    observation.innovation[0] = aiding.value[0] - predicted;
    observation.h(0, statePosition + 2) = -1.0;
    observation.h.block<1, 3>(0, stateAttitude) = SkewOf(arm).row(2);
    observation.h(0, filter.GetLayout().Find(EGroup::depthBias)) = 1.0;
    observation.noise(0, 0) = aiding.deviation[0] * aiding.deviation[0];
    return observation;
}

SObservation ObserveRange(const SAiding& aiding, const CInsFilter& filter, const SAidingContext& context) {
    SObservation observation(1);
    const SNavigation& navigation = filter.GetNavigation();
    const Vector3d arm = navigation.attitude * aiding.plan->leverArm;
    Vector3d place = aiding.place;
    place[2] += context.geoidHeight;
    const Vector3d way = MetresBetween(navigation.position, place) - arm;
    const double range = std::max(way.norm(), 1.0);
    const Vector3d along = way / range;
    const double scale = 1.0 + filter.GetSensor(EGroup::soundScale);
    observation.innovation[0] = aiding.value[0] - scale * range;
    observation.h.block<1, 3>(0, statePosition) = -scale * along.transpose();
    observation.h.block<1, 3>(0, stateAttitude) = scale * along.transpose() * SkewOf(arm);
    observation.h(0, filter.GetLayout().Find(EGroup::soundScale)) = range;
    observation.noise(0, 0) = aiding.deviation[0] * aiding.deviation[0];
    return observation;
}

// A unit for vehicles on wheels is mounted by eye.
constexpr double kLandTurn = 0.1; // rad

constexpr std::uint32_t kNoField = ~0u;

// How a kind's packets are laid out, what they bring, and how they are observed.
struct SAidingRow {
    EAiding kind;
    const SPacketLayout* layout;                     // null: there are none
    std::array<std::uint32_t, 3> values, deviations; // offsets of 32-bit floats
    double otherwise;                                // standard deviation of packets that state none
    std::array<EGroup, 3> groups;                    // EGroup::count: none
    SObservation (*observe)(const SAiding&, const CInsFilter&, const SAidingContext&);
};

constexpr std::array<std::uint32_t, 3> Offsets(const SPacketLayout& layout, std::string_view x,
                                               std::string_view y = {}, std::string_view z = {}) {
    const auto at = [&](std::string_view name) { return name.empty() ? kNoField : layout.OffsetOf(name); };
    return {at(x), at(y), at(z)};
}

constexpr std::array<std::uint32_t, 3> kDvlValues = Offsets(kDvlLayout, "Speed X", "Speed Y", "Speed Z"),
                                       kDvlDeviations = Offsets(kDvlLayout, "Std. dev. speed X",
                                                                "Std. dev. speed Y", "Std. dev. speed Z");

// In the order of EAiding.
constexpr SAidingRow kRows[] = {
    {EAiding::dvlBottom,
     &kDvlLayout,
     kDvlValues,
     kDvlDeviations,
     0.02,
     {EGroup::dvlScale, EGroup::dvlTurn, EGroup::count},
     ObserveDvl},
    {EAiding::dvlWater,
     &kDvlLayout,
     kDvlValues,
     kDvlDeviations,
     0.05,
     {EGroup::dvlScale, EGroup::dvlTurn, EGroup::current},
     ObserveDvl},
    {EAiding::emLog,
     &kEMLogLayout,
     Offsets(kEMLogLayout, "Speed"),
     Offsets(kEMLogLayout, "Std. dev. speed"),
     0.1,
     {EGroup::emLogScale, EGroup::current, EGroup::count},
     ObserveEmLog},
    {EAiding::depth,
     &kDepthLayout,
     Offsets(kDepthLayout, "Depth"),
     Offsets(kDepthLayout, "Std. dev. depth"),
     0.2,
     {EGroup::depthBias, EGroup::count, EGroup::count},
     ObserveDepth},
    {EAiding::range,
     &kLblLayout,
     Offsets(kLblLayout, "Range"),
     Offsets(kLblLayout, "Std. dev. range"),
     1.0,
     {EGroup::soundScale, EGroup::count, EGroup::count},
     ObserveRange},
    {EAiding::odometer,
     &kOdometerLayout,
     {kNoField, kNoField, kNoField},
     {kNoField, kNoField, kNoField},
     0.1,
     {EGroup::odometerScale, EGroup::odometerTurn, EGroup::count},
     ObserveOdometer},
    {EAiding::land,
     nullptr,
     {kNoField, kNoField, kNoField},
     {kNoField, kNoField, kNoField},
     0.1,
     {EGroup::odometerTurn, EGroup::count, EGroup::count},
     ObserveLand},
};

const SAidingRow& GetRow(EAiding kind) { return kRows[static_cast<std::size_t>(kind)]; }

} // namespace

SObservation ObserveAiding(const SAiding& aiding, const CInsFilter& filter, const SAidingContext& context) {
    SObservation observation = GetRow(aiding.kind).observe(aiding, filter, context);
    observation.use = aiding.use;
    return observation;
}

// Neither the rear axle nor the springs are known: the unit may be some metres from where the vehicle does
// not slide, tyres slip as the vehicle turns, and its body pitches.
Eigen::Vector2d GetLandDeviation(double speed, const Vector3d& rate) {
    constexpr double kStill = 0.1;      // m/s
    constexpr double kArm = 1.5;        // m
    constexpr double kSlip = 0.006;     // rad, by m/s² across the way
    constexpr double kPitching = 0.015; // rad
    const double along = std::abs(speed), turn = std::abs(rate.z()), pitch = std::abs(rate.y());
    return {kStill + kArm * turn + kSlip * along * along * turn, kStill + kArm * pitch + kPitching * along};
}

SAiding MakeLandAiding(const SAidingPlan& plan, double time) {
    SAiding aiding;
    aiding.time = time;
    aiding.kind = EAiding::land;
    aiding.deviation.setConstant(GetRow(EAiding::land).otherwise);
    aiding.plan = &plan;
    return aiding;
}

CStateLayout MakeStateLayout(const SRunPlan& plan) {
    CStateLayout layout;
    for (const SAidingPlan& aiding : plan.aidings)
        for (const EGroup group : GetRow(aiding.kind).groups) {
            if (group == EGroup::count) continue;
            if (group == EGroup::current)
                layout.Add(group, plan.currentDeviation, plan.currentTime);
            else
                layout.Add(group, aiding.kind == EAiding::land ? kLandTurn : 0.0);
        }
    if (!plan.gps.empty() && !plan.gps.front().isUsbl) {
        layout.Add(EGroup::gpsArm, plan.gpsArmDeviation);
        if (plan.gpsLagDeviation > 0.0) layout.Add(EGroup::gpsLag, plan.gpsLagDeviation);
    }
    if (std::ranges::any_of(plan.gps, [](const SGpsPlan& p) { return p.isUsbl; }))
        layout.Add(EGroup::usblBias);
    if (plan.hasRelativeFixes) layout.Add(EGroup::usblOrigin);
    return layout;
}

std::vector<const SAidingPlan*> CAidingReader::Open(const SRunPlan& plan) {
    std::vector<const SAidingPlan*> missing;
    m_plan = &plan;
    m_sources.clear();
    for (const SAidingPlan& aiding : plan.aidings) {
        if (!GetRow(aiding.kind).layout) continue;
        auto source = std::make_unique<SSource>();
        source->plan = &aiding;
        if (!source->stream.Open(aiding.source, *GetRow(aiding.kind).layout)) {
            if (!aiding.isOptional) missing.push_back(&aiding);
            continue;
        }
        Advance(*source);
        m_sources.push_back(std::move(source));
    }
    FindFirst();
    return missing;
}

void CAidingReader::Pop() {
    Advance(*m_sources[m_first]);
    FindFirst();
}

void CAidingReader::FindFirst() {
    m_first = m_sources.size();
    for (std::size_t i = 0; i < m_sources.size(); ++i)
        if (m_sources[i]->hasNext &&
            (m_first == m_sources.size() || m_sources[i]->next.time < m_sources[m_first]->next.time))
            m_first = i;
}

void CAidingReader::Advance(SSource& source) {
    const double last = source.hasNext ? source.next.time : -HUGE_VAL;
    CPayload payload;
    while (source.stream.Next(payload)) {
        SAiding aiding;
        if (Read(source, payload, aiding) && aiding.time >= last) {
            source.next = aiding;
            source.hasNext = true;
            return;
        }
    }
    source.hasNext = false;
}

bool CAidingReader::Read(SSource& source, const CPayload& payload, SAiding& aiding) const {
    const SAidingRow& row = GetRow(source.plan->kind);
    // Delay and rejection are the second and third field of all these packets.
    const double delay = payload.Get<float>(row.layout->offsets[1]);
    const double date = payload.GetSeconds() + source.stream.GetTimeOffset();
    aiding.time = date - (std::isfinite(delay) ? delay : 0.0);
    aiding.kind = row.kind;
    aiding.plan = source.plan;
    for (std::size_t i = 0; i < 3 && row.values[i] != kNoField; ++i) {
        const auto axis = static_cast<Eigen::Index>(i);
        aiding.value[axis] = payload.Get<float>(row.values[i]);
        aiding.deviation[axis] = GetUsableDeviation(payload.Get<float>(row.deviations[i]), row.otherwise);
    }
    if (row.kind == EAiding::odometer) {
        const double span = date - std::exchange(source.lastDate, date);
        if (!(span > 0.0 && span < 10.0)) return false;
        const double measure = payload.Get<double>(kOdometerLayout.OffsetOf("Measure"));
        const double stated = payload.Get<double>(kOdometerLayout.OffsetOf("Std. dev. measure"));
        aiding.value = Vector3d(measure / span, 0.0, 0.0);
        aiding.deviation =
            Vector3d(GetUsableDeviation(stated / span, row.otherwise), row.otherwise, row.otherwise);
        aiding.time -= 0.5 * span; // the mean speed is that of the middle
    }
    if (row.kind == EAiding::range) {
        const double latitude = payload.Get<double>(kLblLayout.OffsetOf("Latitude"));
        const double longitude = payload.Get<double>(kLblLayout.OffsetOf("Longitude"));
        const double altitude = payload.Get<float>(kLblLayout.OffsetOf("Altitude"));
        if (!(std::abs(latitude) <= 90.0 && std::abs(longitude) <= 360.0 && std::abs(altitude) < 1e5))
            return false;
        aiding.place = {latitude * kRadiansPerDegree, longitude * kRadiansPerDegree, altitude};
    }
    if (const Vector3d* user = FindInForce(source.plan->userDeviations, aiding.time))
        for (Eigen::Index i = 0; i < 3; ++i)
            aiding.deviation[i] = GetUsableDeviation((*user)[i], aiding.deviation[i]);
    aiding.use = CombineUse(payload.Get<std::uint8_t>(row.layout->offsets[2]),
                            FindInForce(source.plan->rejections, aiding.time));
    return aiding.use != EUse::never && aiding.value.allFinite() && aiding.value.norm() < 1e5 &&
           std::abs(aiding.time) < 1e9;
}

} // namespace Morvex
