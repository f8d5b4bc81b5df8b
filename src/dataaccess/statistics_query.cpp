#include "dataaccess/statistics_query.h"

#include "foundation/bytes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

// Packets between two results of a running walk: some milliseconds.
constexpr std::size_t kPublishEvery = 1 << 16;

// The finite values of a run; their count.
template <class Element>
std::size_t LoadValues(std::span<const std::uint8_t* const> payloads, std::uint32_t offset, double* values) {
    std::size_t count = 0;
    for (const std::uint8_t* payload : payloads) {
        const auto value = static_cast<double>(Outils::Load<Element>(payload + offset));
        values[count] = value;
        // The difference is NaN for what is not finite.
        if constexpr (std::is_floating_point_v<Element>)
            count += value - value == 0;
        else
            ++count;
    }
    return count;
}

// Without a call to the library; halves to the even number, what is above 2^51 as it is.
double RoundToWhole(double value) {
    constexpr double kRounder = 0x1.8p52;
    return (value + kRounder) - kRounder;
}

double TakeShortWay(double difference, double turn) {
    return difference - turn * std::round(difference / turn);
}

// Within [0, turn).
double Wrap(double angle, double turn) {
    const double wrapped = angle - turn * std::floor(angle / turn);
    return wrapped < turn ? wrapped : 0;
}

// As the recording writes angles: from zero on, or around zero.
double WrapLike(double angle, double turn, double least) {
    return least < 0 ? TakeShortWay(angle, turn) : Wrap(angle, turn);
}

} // namespace

bool CFieldAccumulator::Prepare(const SPacketLayout& layout, const SStatisticsField& field) {
    static constexpr std::array<Load, 8> loads = {LoadValues<std::uint8_t>,  LoadValues<std::uint16_t>,
                                                  LoadValues<std::uint32_t>, LoadValues<std::int8_t>,
                                                  LoadValues<std::int16_t>,  LoadValues<std::int32_t>,
                                                  LoadValues<float>,         LoadValues<double>};
    if (field.field >= layout.fields.size() || !(field.turn >= 0)) return false;
    const SFieldLayout& row = layout.fields[field.field];
    const auto type = static_cast<std::size_t>(row.type);
    if (row.count != 1 || type >= loads.size()) return false;
    *this = {};
    m_load = loads[type];
    m_offset = layout.offsets[field.field];
    m_turn = field.turn;
    m_block.resize(kBlock + kRun);
    return true;
}

void CFieldAccumulator::Add(std::span<const std::uint8_t* const> payloads) {
    while (!payloads.empty()) {
        const auto run = payloads.first(std::min(payloads.size(), kRun));
        payloads = payloads.subspan(run.size());
        const std::size_t count = m_load(run, m_offset, m_block.data() + m_held);
        m_ignored += run.size() - count;
        m_held += count;
        if (m_held >= kBlock) AddBlock();
    }
}

// Four lanes each, so that no addition waits for the one before it.
void CFieldAccumulator::AddBlock() {
    const std::size_t held = std::exchange(m_held, 0);
    if (held == 0) return;
    if (m_count == 0) m_first = m_block[0];
    const double last = m_block[held - 1];
    if (m_turn > 0) UnrollAngles(held);
    m_last = last;

    const double base = m_block[0];
    if (m_count == 0) m_minimum = m_maximum = base;
    std::array<double, 4> sum{}, squares{}, low, high;
    low.fill(m_minimum);
    high.fill(m_maximum);
    // The filling adds nothing to sums of differences from the base.
    std::size_t padded = held;
    while (padded % 4) m_block[padded++] = base;
    for (std::size_t i = 0; i < padded; i += 4)
        for (std::size_t lane = 0; lane < 4; ++lane) {
            const double value = m_block[i + lane], difference = value - base;
            sum[lane] += difference;
            squares[lane] += difference * difference;
            low[lane] = value < low[lane] ? value : low[lane];
            high[lane] = value > high[lane] ? value : high[lane];
        }
    m_minimum = *std::min_element(low.begin(), low.end());
    m_maximum = *std::max_element(high.begin(), high.end());

    const auto count = static_cast<double>(held), former = static_cast<double>(m_count);
    const double shift = ((sum[0] + sum[1]) + (sum[2] + sum[3])) / count;
    const double total = (squares[0] + squares[1]) + (squares[2] + squares[3]);
    const double difference = base + shift - m_mean;
    m_squares += std::max(0.0, total - shift * shift * count) +
                 (m_count ? difference * difference * former * count / (former + count) : 0);
    m_mean = m_count ? m_mean + difference * count / (former + count) : base + shift;
    m_count += held;
}

// Replaces the angles of the block by the way they go, without the leaps at a full turn.
void CFieldAccumulator::UnrollAngles(std::size_t held) {
    const std::span block(m_block.data(), held);
    AddDirections(block, m_turn, m_directions);
    if (m_count == 0) m_last = m_least = m_greatest = block[0];
    std::array<double, 4> low, high;
    low.fill(m_least);
    high.fill(m_greatest);
    for (std::size_t i = 0; i < held; ++i) {
        const std::size_t lane = i % 4;
        low[lane] = block[i] < low[lane] ? block[i] : low[lane];
        high[lane] = block[i] > high[lane] ? block[i] : high[lane];
    }
    m_least = *std::min_element(low.begin(), low.end());
    m_greatest = *std::max_element(high.begin(), high.end());
    CountTurns(held);
}

// Whole turns are counted apart, so that no rounding adds up. A block without a leap needs no count.
void CFieldAccumulator::CountTurns(std::size_t held) {
    std::array<double, kBlock + kRun> turns; // from the value before
    const double perTurn = 1 / m_turn;
    turns[0] = RoundToWhole((m_block[0] - m_last) * perTurn);
    for (std::size_t i = 1; i < held; ++i) turns[i] = RoundToWhole((m_block[i] - m_block[i - 1]) * perTurn);
    const bool leaps =
        std::any_of(turns.begin(), turns.begin() + held, [](double count) { return count != 0; });
    if (!leaps && m_turns == 0) return;
    for (std::size_t i = 0; i < held; ++i) {
        m_turns -= turns[i];
        m_block[i] += m_turns * m_turn;
    }
}

SFieldStatistics CFieldAccumulator::GetResult() {
    AddBlock();
    SFieldStatistics result;
    result.count = m_count;
    result.ignored = m_ignored;
    if (m_count == 0) return result;
    const auto count = static_cast<double>(m_count);
    result.first = m_first;
    result.last = m_last;
    result.minimum = m_minimum;
    result.maximum = m_maximum;
    result.mean = m_mean;
    result.rms = std::sqrt(m_mean * m_mean + m_squares / count);
    if (m_count > 1) result.deviation = std::sqrt(m_squares / (count - 1));
    if (m_turn > 0) TurnIntoAngles(result);
    return result;
}

void CFieldAccumulator::TurnIntoAngles(SFieldStatistics& result) const {
    const auto count = static_cast<double>(m_count);
    const double way = m_maximum - m_minimum, radians = 2 * std::numbers::pi / m_turn;
    result.rms = std::sqrt(m_directions.squares / count);
    if (way >= m_turn / 2) {
        const double length = std::hypot(m_directions.sine, m_directions.cosine) / count;
        result.mean = std::atan2(m_directions.sine, m_directions.cosine) / radians;
        result.deviation = std::sqrt(-2 * std::log(std::min(length, 1.0))) / radians;
    }
    result.mean = WrapLike(result.mean, m_turn, m_least);
    const bool isWhole = way >= m_turn;
    result.minimum = isWhole ? m_least : WrapLike(m_minimum, m_turn, m_least);
    result.maximum = isWhole ? m_greatest : WrapLike(m_maximum, m_turn, m_least);
}

SStatistics CTrvStatisticsQuery::GetStatistics() const {
    const std::lock_guard lock(m_mutex);
    return m_statistics;
}

bool CTrvStatisticsQuery::Begin(const SPacketLayout& layout) {
    m_accumulators.assign(m_fields.size(), {});
    m_unpublished = 0;
    for (std::size_t i = 0; i < m_fields.size(); ++i)
        if (!m_accumulators[i].Prepare(layout, m_fields[i])) return false;
    return true;
}

bool CTrvStatisticsQuery::Take(Payloads payloads) {
    for (CFieldAccumulator& accumulator : m_accumulators) accumulator.Add(payloads);
    m_unpublished += payloads.size();
    if (m_unpublished >= kPublishEvery) Publish(false);
    return true;
}

bool CTrvStatisticsQuery::Finish() {
    Publish(true);
    return true;
}

void CTrvStatisticsQuery::Publish(bool complete) {
    m_unpublished = 0;
    SStatistics statistics;
    statistics.complete = complete;
    for (CFieldAccumulator& accumulator : m_accumulators)
        statistics.fields.push_back(accumulator.GetResult());
    const std::lock_guard lock(m_mutex);
    m_statistics = std::move(statistics);
}

} // namespace Application_Tarvel
