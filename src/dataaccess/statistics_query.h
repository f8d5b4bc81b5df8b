// Exact statistics of fields of one channel over a period: every packet counts, none is reduced.
#pragma once

#include "dataaccess/directions.h"
#include "dataaccess/period_query.h"

#include <functional>
#include <limits>
#include <mutex>
#include <vector>

namespace Application_Tarvel {

struct SStatisticsField {
    std::uint32_t field = 0; // a scalar that is no date
    // For an angle one full turn in the unit of the field, 0 for every other quantity.
    double turn = 0;
};

// NaN where there is no value. Everything in the unit of the field.
//
// Angles are followed the short way from packet to packet, through the full turn. Minimum and maximum are the
// ends of that way, and the minimum exceeds the maximum where the arc between them passes the zero of the
// circle; after a whole turn or more they are the plain least and greatest values. Up to half a turn, mean
// and deviation are taken along the way; from there on they are those of directions: the mean points along
// the sum of the unit vectors, the deviation is sqrt(-2 ln R), R the length of their mean (Mardia and Jupp,
// "Directional Statistics", 2000). The RMS is that of the angles within half a turn of zero. Results lie
// within half a turn of zero where the recording has negative angles, and from zero to a turn otherwise.
struct SFieldStatistics {
    static constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

    std::uint64_t count = 0;   // packets whose value is a finite number; only these take part
    std::uint64_t ignored = 0; // packets with an infinite value or none
    double minimum = kNone;
    double maximum = kNone;
    double mean = kNone;
    double deviation = kNone; // with divisor count - 1, none for a single packet
    double rms = kNone;
    double first = kNone;
    double last = kNone;
};

struct SStatistics {
    std::vector<SFieldStatistics> fields; // in the order asked for; empty before the walk
    bool complete = false;                // the walk has come to its end, see also IsCut
};

// Accumulates one field. Values come in blocks: mean and squares of a block are taken around its first value,
// and the blocks are joined by the pairwise update of Chan, Golub and LeVeque ("Algorithms for Computing the
// Sample Variance", The American Statistician, 1983). It is as stable as Welford's recurrence and needs no
// division per value.
class CFieldAccumulator {
  public:
    // Of this field of packets of `layout`. False for a field that is no scalar, or a date.
    bool Prepare(const Persistance_Xpf::SPacketLayout& layout, const SStatisticsField& field);
    void Add(std::span<const std::uint8_t* const> payloads);
    SFieldStatistics GetResult();

  private:
    static constexpr std::size_t kBlock = 256;
    static constexpr std::size_t kRun = 64;
    using Load = std::size_t (*)(std::span<const std::uint8_t* const>, std::uint32_t offset, double* values);

    void AddBlock();
    void UnrollAngles(std::size_t held);
    void CountTurns(std::size_t held);
    void TurnIntoAngles(SFieldStatistics& result) const;

    Load m_load = nullptr;
    std::uint32_t m_offset = 0;
    double m_turn = 0;
    std::vector<double> m_block; // kBlock values and the room for one more run
    std::size_t m_held = 0;      // values in the block
    std::uint64_t m_count = 0;   // values that have left it
    std::uint64_t m_ignored = 0;
    double m_minimum = 0, m_maximum = 0, m_first = 0, m_last = 0;
    double m_mean = 0, m_squares = 0; // of the differences from the mean
    // Angles only; least and greatest as recorded.
    double m_least = 0, m_greatest = 0, m_turns = 0;
    SDirectionSums m_directions;
};

class CTrvStatisticsQuery final : public TPeriodQuery<CTrvStatisticsQuery> {
  public:
    // `onDone` may be empty.
    CTrvStatisticsQuery(SChannelAddress address, SClosedPeriod period, std::vector<SStatisticsField> fields,
                        Callback onDone)
        : TPeriodQuery(std::move(address), period, std::move(onDone)), m_fields(std::move(fields)) {}

    // What is known by now, also while the walk runs. Any thread.
    SStatistics GetStatistics() const;

  protected:
    bool Begin(const Persistance_Xpf::SPacketLayout& layout) override;
    bool Take(Payloads payloads) override;
    bool Finish() override;

  private:
    void Publish(bool complete);

    std::vector<SStatisticsField> m_fields;
    std::vector<CFieldAccumulator> m_accumulators; // loader thread
    std::size_t m_unpublished = 0;                 // packets
    mutable std::mutex m_mutex;                    // guards what follows
    SStatistics m_statistics;
};

} // namespace Application_Tarvel
