#include "morvex/gap_bridge.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Morvex {
namespace {

constexpr double kMemory = 60.0;       // s of motion that are remembered
constexpr double kDivided = 3.0;       // s: a longer hole is one sample, for the way through it is not known
constexpr double kWindow = 0.25;       // of the hole: length over which the rates beside it are taken
constexpr double kLongestWindow = 0.5; // s
constexpr int kTrials = 40;
constexpr double kSwing = 1.5;     // s in which a swing goes from its middle to its end
constexpr double kSmallest = 1e-9; // of a deviation, rad and m/s

double GetWindow(double gap) { return std::min(kWindow * gap, kLongestWindow); }

} // namespace

double CGapBridge::GetLookAhead(double gap) { return 2.0 * GetWindow(gap) + 0.1 * gap; }

void CGapBridge::Learn(const SImuSample& sample) {
    Vector6d sum = m_points.empty() ? Vector6d(Vector6d::Zero()) : m_points.back().sum;
    if (m_points.empty()) m_points.push_back({sample.time - sample.span, sum});
    sum.head<3>() += sample.angle;
    sum.tail<3>() += sample.velocity;
    m_points.push_back({sample.time, sum});
    while (m_points.front().time < sample.time - kMemory) m_points.pop_front();
}

CGapBridge::Vector6d CGapBridge::GetRate(std::ptrdiff_t from, std::ptrdiff_t to) const {
    const SPoint &a = m_points[static_cast<std::size_t>(from)], &b = m_points[static_cast<std::size_t>(to)];
    return (b.sum - a.sum) / (b.time - a.time);
}

CGapBridge::Vector6d CGapBridge::SBridge::GetSum(double from, double to) const {
    const double span = to - from;
    return span * (constant + 0.5 * (from + to) * slope + (from * from + from * to + to * to) / 3.0 * bend);
}

// `rates`: means over two windows before the hole and two after it, in the order of time.
CGapBridge::SBridge CGapBridge::Make(EMethod method, double gap, double window,
                                     const std::array<Vector6d, 4>& rates) const {
    SBridge bridge;
    if (method == mean) {
        bridge.constant = GetMeanRate();
        return bridge;
    }
    const Vector6d near = 0.5 * (rates[1] + rates[2]), far = 0.5 * (rates[0] + rates[3]);
    bridge.constant = near;
    bridge.slope = (rates[2] - rates[1]) / (gap + window);
    if (method == line) return bridge;
    // The even part of a cubic whose means over the four windows are the rates.
    const double x = 0.5 * (gap + window), y = 0.5 * (gap + 3.0 * window);
    const double spread = window * window / 12.0;
    bridge.bend = (far - near) / (y * y - x * x);
    bridge.constant = near - (x * x + spread) * bridge.bend;
    return bridge;
}

CGapBridge::STrial CGapBridge::Try(int samples, int window) const {
    STrial trial;
    for (Vector6d& squares : trial.squares) squares.setZero();
    const auto count = static_cast<std::ptrdiff_t>(m_points.size());
    const std::ptrdiff_t first = 2 * window, last = count - 1 - samples - 2 * window;
    if (last < first + 8) return trial;
    const std::ptrdiff_t step = std::max<std::ptrdiff_t>((last - first) / kTrials, 1);
    int trials = 0;
    for (std::ptrdiff_t begin = first; begin <= last; begin += step, ++trials) {
        const std::ptrdiff_t end = begin + samples;
        const auto& a = m_points[static_cast<std::size_t>(begin)];
        const auto& b = m_points[static_cast<std::size_t>(end)];
        const std::array rates{GetRate(begin - 2 * window, begin - window), GetRate(begin - window, begin),
                               GetRate(end, end + window), GetRate(end + window, end + 2 * window)};
        const double gap = b.time - a.time;
        for (int method = 0; method < methodCount; ++method) {
            const SBridge bridge = Make(static_cast<EMethod>(method), gap, gap * window / samples, rates);
            trial.squares[method] += (b.sum - a.sum - bridge.GetSum(-0.5 * gap, 0.5 * gap)).cwiseAbs2();
        }
    }
    for (Vector6d& squares : trial.squares) squares /= trials;
    trial.isGood = true;
    return trial;
}

void CGapBridge::Fill(const SImuSample& sample, std::span<const SImuSample> after, double nominal,
                      std::vector<SImuSample>& filled) {
    SImuSample own = sample;
    own.span -= sample.gap;
    own.gap = 0.0;
    own.lost = 0.0;
    const double gap = sample.gap;
    const double begin = sample.time - own.span - gap; // of the hole
    const int samples = std::max(static_cast<int>(std::lround(gap / nominal)), 1);
    const auto held = static_cast<int>(m_points.size()) - 1;
    int window = std::max(static_cast<int>(std::lround(GetWindow(gap) / nominal)), 1);
    window = std::max(std::min({window, held / 2, (static_cast<int>(after.size()) + 1) / 2}), 1);

    // The rates beside the hole; where samples are too few, the nearest is repeated.
    const auto rateAfter = [&](int from, int to) {
        Vector6d sum = Vector6d::Zero();
        double span = 0.0;
        for (int i = from; i < to && i <= static_cast<int>(after.size()); ++i) {
            const SImuSample& s = i == 0 ? own : after[static_cast<std::size_t>(i - 1)];
            sum.head<3>() += s.angle;
            sum.tail<3>() += s.velocity;
            span += s.span;
        }
        return std::pair(sum, span);
    };
    const auto [sumNear, spanNear] = rateAfter(0, window);
    const auto [sumFar, spanFar] = rateAfter(window, 2 * window);
    std::array<Vector6d, 4> rates;
    rates[2] = sumNear / spanNear;
    rates[3] = spanFar > 0.0 ? Vector6d(sumFar / spanFar) : rates[2];
    rates[1] = held >= window ? GetRate(held - window, held) : rates[2];
    rates[0] = held >= 2 * window ? GetRate(held - 2 * window, held - window) : rates[1];

    // A hole that is long for the memory is judged by a shorter one, and grows with the square of its length:
    // a mean motion is as wrong as the motion of the vehicle is unknown.
    const int tried = std::min(samples, std::max(held / 2 - 4 * window, 1));
    STrial trial = Try(tried, window);
    if (!trial.isGood) {
        const Vector6d off = gap * (rates[2] - rates[1]);
        for (Vector6d& squares : trial.squares) squares = off.cwiseAbs2();
        trial.squares[mean] *= 4.0;
    }
    const double longer = static_cast<double>(samples) / tried;
    // Rotation and velocity each take the method that errs least.
    SBridge bridge;
    Vector6d deviation;
    for (const int first : {0, 3}) {
        int best = polynomial;
        for (int method = 0; method < methodCount; ++method)
            if (trial.squares[method].segment<3>(first).sum() < trial.squares[best].segment<3>(first).sum())
                best = method;
        const SBridge one = Make(static_cast<EMethod>(best), gap, window * nominal, rates);
        bridge.constant.segment<3>(first) = one.constant.segment<3>(first);
        bridge.slope.segment<3>(first) = one.slope.segment<3>(first);
        bridge.bend.segment<3>(first) = one.bend.segment<3>(first);
        deviation.segment<3>(first) = longer * trial.squares[best].segment<3>(first).cwiseSqrt();
    }
    // A longer hole never counts as better known than a shorter one, as it would be when it is as long as a
    // wave: half of it is tried as well, and half of that.
    for (int shorter = tried / 2; trial.isGood && shorter > 0; shorter /= 2) {
        const STrial other = Try(shorter, std::max(std::min(window, shorter / 4), 1));
        for (const int first : {0, 3}) {
            auto ours = deviation.segment<3>(first);
            const auto* best = std::ranges::min_element(other.squares, {}, [first](const Vector6d& squares) {
                return squares.segment<3>(first).sum();
            });
            ours = ours.cwiseMax(best->segment<3>(first).cwiseSqrt()).eval();
        }
    }
    deviation.array() += kSmallest;

    if (gap <= kDivided) {
        const double share = 1.0 / samples, root = std::sqrt(share);
        for (int i = 0; i < samples; ++i) {
            const Vector6d sum = bridge.GetSum((i * share - 0.5) * gap, ((i + 1) * share - 0.5) * gap);
            SImuSample piece{begin + (i + 1) * share * gap, share * gap, sum.head<3>(), sum.tail<3>()};
            piece.gap = piece.span;
            piece.gapTurn = root * deviation.head<3>();
            piece.gapSpeed = root * deviation.tail<3>();
            if (i == 0) piece.lost = gap;
            Learn(piece);
            filled.push_back(piece);
        }
        Learn(own);
        filled.push_back(own);
        return;
    }
    SImuSample whole = sample;
    const Vector6d sum = bridge.GetSum(-0.5 * gap, 0.5 * gap);
    whole.angle += sum.head<3>();
    whole.velocity += sum.tail<3>();
    whole.lost = gap;
    whole.gapTurn = deviation.head<3>();
    // The attitude at the begin of the hole is held through it, and gravity with it.
    Vector3d variance = Vector3d::Zero();
    const Vector6d usual = GetMeanRate();
    for (std::size_t i = 1; i < m_points.size(); ++i) {
        const auto at = static_cast<std::ptrdiff_t>(i);
        variance += (GetRate(at - 1, at) - usual).head<3>().cwiseAbs2();
    }
    const double swing = std::sqrt(variance.sum() / std::max<double>(held, 1.0)) * std::min(gap, kSwing);
    whole.gapSpeed = deviation.tail<3>();
    whole.gapSpeed.array() += usual.tail<3>().norm() * swing * gap;
    // The remembered samples have no holes.
    m_points.clear();
    Learn(own);
    filled.push_back(whole);
}

} // namespace Morvex
