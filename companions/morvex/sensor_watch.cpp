#include "morvex/sensor_watch.h"

#include <cmath>
#include <utility>

namespace Morvex {
namespace {

// Three axes with noise do not repeat; a single speed that is rounded may, on a straight way.
constexpr int kRepeatsOfThree = 8, kRepeatsOfOne = 40;
constexpr double kRepeatSpan = 3.0; // s

constexpr double kMovingLog = 0.5;   // m/s
constexpr int kDirections = 40;      // packets
constexpr double kSteadiness = 0.95; // of the mean direction, 1 when all agree
constexpr double kTurned = 10.0 * kRadiansPerDegree;

constexpr double kLastingContradiction = 60.0; // s

} // namespace

bool CSensorWatch::IsJammed(const SAiding& aiding) {
    SState& state = Get(aiding.kind);
    const bool isThree = aiding.kind == EAiding::dvlBottom || aiding.kind == EAiding::dvlWater;
    // A vehicle at rest measures nothing again and again, and a range comes from several beacons.
    const bool repeats = aiding.value == state.last && !aiding.value.isZero();
    if (aiding.kind == EAiding::depth || aiding.kind == EAiding::range || !repeats) {
        state.last = aiding.value;
        state.same = aiding.time;
        state.repeats = 0;
        state.jamTaken = false;
        return false;
    }
    ++state.repeats;
    return state.repeats >= (isThree ? kRepeatsOfThree : kRepeatsOfOne) &&
           aiding.time - state.same >= kRepeatSpan;
}

std::optional<double> CSensorWatch::TakeJam(EAiding kind) {
    SState& state = Get(kind);
    if (std::exchange(state.jamTaken, true)) return std::nullopt;
    return state.same;
}

void CSensorWatch::AddDirection(EAiding kind, const Vector3d& measured, const Vector3d& expected) {
    SState& state = Get(kind);
    const double weight = measured.head<2>().norm() * expected.head<2>().norm();
    if (state.directions >= kDirections || expected.head<2>().norm() < kMovingLog) return;
    state.cosine += expected.head<2>().dot(measured.head<2>());
    state.sine += expected.x() * measured.y() - expected.y() * measured.x();
    state.weight += weight;
    ++state.directions;
}

std::optional<double> CSensorWatch::TakeTurn(EAiding kind) {
    SState& state = Get(kind);
    if (state.turnTaken || state.directions < kDirections) return std::nullopt;
    state.turnTaken = true;
    const double steadiness = std::hypot(state.cosine, state.sine) / state.weight;
    const double turn = -std::atan2(state.sine, state.cosine);
    if (steadiness < kSteadiness || std::abs(turn) < kTurned) return std::nullopt;
    return turn;
}

std::optional<double> CSensorWatch::TakeContradiction(EAiding kind, double time, EFixResult result) {
    SState& state = Get(kind);
    if (result != EFixResult::rejected) {
        state.rejectedSince = -1.0;
        state.contradictionTaken = false;
        return std::nullopt;
    }
    if (state.rejectedSince < 0.0) state.rejectedSince = time;
    if (state.contradictionTaken || time - state.rejectedSince < kLastingContradiction) return std::nullopt;
    state.contradictionTaken = true;
    return state.rejectedSince;
}

} // namespace Morvex
