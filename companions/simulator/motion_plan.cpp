// The habits of the vehicles, and the mission that they make.
#include "simulator/earth.h"
#include "simulator/motion.h"
#include "simulator/random.h"

#include <algorithm>

namespace Simulation {

namespace {

// Amplitude in degrees or metres, cycle in seconds of time or length in metres of distance run.
struct SWaveRow {
    double amplitude;
    double cycle;
    double length;
};

struct SHabit {
    double speed;               // metres per second on a leg
    double speedSpread;         // share by which legs differ
    double speedInTurns;        // share of the speed
    double changeTime;          // seconds to reach the speed from rest
    double legFrom, legTo;      // seconds
    double turn;                // degrees
    double turnTime;            // seconds
    bool turnsAtWill;           // to a random side; else to alternate sides, as survey lines are run
    int legsToStop;             // legs between stops; 0: never stops
    double stopFrom, stopTo;    // seconds
    double depth, depthSpread;  // metres below the start that legs are run at
    double diveTime;            // seconds for the first dive, half of it for later changes
    double pitchPerClimb;       // radians per metre per second
    double rollPerAcceleration; // radians per metre per second squared
    std::array<SWaveRow, 3> heave, roll, pitch, yaw;
};

constexpr SHabit kShip = {.speed = 5,
                          .speedSpread = 0.1,
                          .speedInTurns = 0.8,
                          .changeTime = 40,
                          .legFrom = 240,
                          .legTo = 420,
                          .turn = 180,
                          .turnTime = 100,
                          .turnsAtWill = false,
                          .legsToStop = 4,
                          .stopFrom = 60,
                          .stopTo = 120,
                          .depth = 0,
                          .depthSpread = 0,
                          .diveTime = 0,
                          .pitchPerClimb = 0,
                          .rollPerAcceleration = -0.1,
                          .heave = {{{0.5, 8.1, 0}, {0.2, 6.3, 0}, {0.08, 11.7, 0}}},
                          .roll = {{{3.5, 9.3, 0}, {1.2, 7.1, 0}, {0.3, 4.7, 0}}},
                          .pitch = {{{1.4, 6.7, 0}, {0.5, 8.9, 0}, {0.15, 4.1, 0}}},
                          .yaw = {{{0.8, 13.1, 0}, {0.3, 9.7, 0}, {0, 1, 0}}}};

constexpr SHabit kAuv = {.speed = 2,
                         .speedSpread = 0.05,
                         .speedInTurns = 1,
                         .changeTime = 20,
                         .legFrom = 150,
                         .legTo = 300,
                         .turn = 180,
                         .turnTime = 60,
                         .turnsAtWill = false,
                         .legsToStop = 0,
                         .stopFrom = 0,
                         .stopTo = 0,
                         .depth = 60,
                         .depthSpread = 15,
                         .diveTime = 180,
                         .pitchPerClimb = 0.45,
                         .rollPerAcceleration = 0,
                         .heave = {{{0.03, 12.3, 0}, {0.01, 8.7, 0}, {0, 1, 0}}},
                         .roll = {{{0.5, 5.3, 0}, {0.2, 3.1, 0}, {0, 1, 0}}},
                         .pitch = {{{0.4, 7.9, 0}, {0.15, 4.3, 0}, {0, 1, 0}}},
                         .yaw = {{{0.5, 10.1, 0}, {0.2, 6.1, 0}, {0, 1, 0}}}};

constexpr SHabit kCar = {.speed = 12,
                         .speedSpread = 0.35,
                         .speedInTurns = 0.4,
                         .changeTime = 9,
                         .legFrom = 15,
                         .legTo = 50,
                         .turn = 90,
                         .turnTime = 6,
                         .turnsAtWill = true,
                         .legsToStop = 4,
                         .stopFrom = 12,
                         .stopTo = 30,
                         .depth = 0,
                         .depthSpread = 0,
                         .diveTime = 0,
                         .pitchPerClimb = 0,
                         .rollPerAcceleration = -0.012,
                         .heave = {{{4, 0, 900}, {0.8, 0, 210}, {0.012, 0, 14}}},
                         .roll = {{{1, 0, 130}, {0.3, 0, 23}, {0.12, 0, 9}}},
                         .pitch = {{{0.25, 0, 19}, {0.1, 0, 8}, {0, 0, 1}}},
                         .yaw = {{{0.3, 0, 180}, {0, 0, 1}, {0, 0, 1}}}};

// A small aircraft that banks into its turns.
constexpr SHabit kUav = {.speed = 18,
                         .speedSpread = 0.15,
                         .speedInTurns = 0.9,
                         .changeTime = 12,
                         .legFrom = 15,
                         .legTo = 50,
                         .turn = 90,
                         .turnTime = 8,
                         .turnsAtWill = true,
                         .legsToStop = 0,
                         .stopFrom = 0,
                         .stopTo = 0,
                         .depth = -80,
                         .depthSpread = 25,
                         .diveTime = 40,
                         .pitchPerClimb = 0.05,
                         .rollPerAcceleration = 0.1,
                         .heave = {{{0.3, 5.3, 0}, {0.1, 2.9, 0}, {0, 1, 0}}},
                         .roll = {{{2, 2.7, 0}, {0.6, 1.3, 0}, {0, 1, 0}}},
                         .pitch = {{{1.2, 3.1, 0}, {0.4, 1.1, 0}, {0, 1, 0}}},
                         .yaw = {{{1, 4.3, 0}, {0.3, 1.9, 0}, {0, 1, 0}}}};

const SHabit& GetHabit(EVehicle vehicle) {
    constexpr const SHabit* kHabits[] = {&kShip, &kAuv, &kCar, &kUav}; // in the order of EVehicle
    return *kHabits[static_cast<std::size_t>(vehicle)];
}

std::vector<SWave> MakeWaves(const std::array<SWaveRow, 3>& rows, double factor, CRandom& random) {
    std::vector<SWave> waves;
    for (const SWaveRow& row : rows) {
        const double phase = random.Uniform(0, 2 * kPi);
        if (row.amplitude == 0) continue;
        waves.push_back({row.amplitude * factor, row.cycle > 0 ? 2 * kPi / row.cycle : 0,
                         row.length > 0 ? 2 * kPi / row.length : 0, phase});
    }
    return waves;
}

// A road's slope pitches the vehicle on it: the derivative of the height by the distance.
void AddSlope(const std::vector<SWave>& heights, std::vector<SWave>& pitch) {
    for (const SWave& wave : heights)
        if (wave.wavenumber > 0)
            pitch.push_back({wave.amplitude * wave.wavenumber, 0, wave.wavenumber, wave.phase + kPi / 2});
}

// Legs, turns and stops, until `duration` is over.
class CRoute {
  public:
    CRoute(SMotionPlan& plan, const SHabit& habit, CRandom& random, double start)
        : m_plan(plan), m_habit(habit), m_random(random), m_time(start), m_climbEnd(start) {}

    void Run(double duration) {
        for (int leg = 1; m_time < duration; ++leg) {
            SetSpeed(m_habit.speed * (1 + m_habit.speedSpread * m_random.Uniform(-1, 1)));
            Dive(leg);
            m_time += m_random.Uniform(m_habit.legFrom, m_habit.legTo);
            if (m_habit.legsToStop > 0 && leg % m_habit.legsToStop == 0) {
                SetSpeed(0);
                m_time += m_random.Uniform(m_habit.stopFrom, m_habit.stopTo);
                SetSpeed(m_habit.speed * m_habit.speedInTurns);
            }
            Turn(leg);
        }
    }

  private:
    void SetSpeed(double speed) {
        const double change = std::abs(speed - m_plan.speed.GetLast());
        const double time = std::max(4.0, m_habit.changeTime * change / m_habit.speed);
        m_plan.speed.ChangeTo(speed, m_time, time);
        m_time += time;
    }

    void Turn(int leg) {
        if (m_plan.speed.GetLast() > m_habit.speed * m_habit.speedInTurns)
            SetSpeed(m_habit.speed * m_habit.speedInTurns);
        const bool toPort = m_habit.turnsAtWill ? m_random.Uniform() < 0.5 : leg % 2 == 0;
        const double angle = m_habit.turn * kRadiansPerDegree * (toPort ? -1 : 1);
        m_plan.course.ChangeTo(m_plan.course.GetLast() + angle, m_time, m_habit.turnTime);
        m_time += m_habit.turnTime;
    }

    void Dive(int leg) {
        if (m_habit.depth == 0 || m_time < m_climbEnd) return;
        const double depth = m_habit.depth + m_habit.depthSpread * m_random.Uniform(-1, 1);
        const double time = leg == 1 ? m_habit.diveTime : m_habit.diveTime / 2;
        m_plan.climb.ChangeTo(-depth, m_time, time);
        m_climbEnd = m_time + time;
    }

    SMotionPlan& m_plan;
    const SHabit& m_habit;
    CRandom& m_random;
    double m_time;
    double m_climbEnd;
};

} // namespace

SMotionPlan MakeMotionPlan(const SMissionOptions& options, double duration) {
    constexpr std::uint64_t kStream = 100; // beyond those of the channels
    constexpr double kReleaseTime = 20;
    const SHabit& habit = GetHabit(options.vehicle);
    const bool onRoad = options.vehicle == EVehicle::car;
    CRandom random(options.seed, kStream);

    SMotionPlan plan;
    plan.altitude = options.altitude;
    plan.course = CProfile(options.heading * kRadiansPerDegree);
    plan.release.ChangeTo(1, options.alignmentDuration, kReleaseTime);
    // What shakes a car comes from the road and ends with its speed.
    plan.motionAtRest = onRoad ? 1 : options.alignmentMotion;
    plan.heave = MakeWaves(habit.heave, options.seaState, random);
    plan.roll = MakeWaves(habit.roll, options.seaState * kRadiansPerDegree, random);
    plan.pitch = MakeWaves(habit.pitch, options.seaState * kRadiansPerDegree, random);
    plan.yaw = MakeWaves(habit.yaw, options.seaState * kRadiansPerDegree, random);
    AddSlope(plan.heave, plan.pitch);
    plan.pitchPerClimb = habit.pitchPerClimb;
    plan.rollPerAcceleration = habit.rollPerAcceleration;
    if (options.vehicle == EVehicle::ship || options.vehicle == EVehicle::auv) {
        plan.current = {options.current.x(), -options.current.y(), 0};
        plan.currentField = options.currentField;
    }
    // The yaw of the road is there from the start: the heading that was asked for is the one at rest.
    if (onRoad)
        for (const SWave& wave : plan.yaw)
            plan.course = CProfile(plan.course.GetLast() - wave.amplitude * std::sin(wave.phase));

    CRoute(plan, habit, random, options.alignmentDuration + kReleaseTime / 2).Run(duration);
    return plan;
}

} // namespace Simulation
