// The differences between two results: a truth, or another run of the same recording.
#pragma once

#include "batch/table.h"
#include "xpf/channel.h"
#include "xpf/packet.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Batch {

// What a result says at one date: degrees, metres, metres per second, and standard deviations of these.
struct SSolution {
    // The numbers that are interpolated and compared, in the order of the reader's table.
    enum EValue : std::size_t {
        latitude,
        longitude,
        altitude,
        speedNorth,
        speedEast,
        speedUp,
        heading,
        roll,
        pitch,
        heave,
        valueCount
    };
    // Standard deviations; the covariance of north and east in square metres.
    enum EDeviation : std::size_t {
        ofNorth,
        ofEast,
        ofUp,
        ofNorthEast,
        ofSpeedNorth,
        ofSpeedEast,
        ofSpeedUp,
        ofHeading,
        ofRoll,
        ofPitch,
        deviationCount
    };
    double time = 0.0; // s
    std::array<double, valueCount> values{};
    std::array<double, deviationCount> deviations{};
};

// Reads the standard channel of a result.
class CSolutionReader {
  public:
    // `channel` must outlive the reader. `shift`: seconds added to its dates.
    CSolutionReader(Persistance_Xpf::CXpfChannel& channel, double shift);
    // The next solution; empty at the end.
    std::optional<SSolution> Next();

  private:
    Persistance_Xpf::CXpfChannel& m_channel;
    std::unique_ptr<Persistance_Xpf::CXpfPacket> m_packet;
    double m_shift;
};

// The solution at a date between two; angles go the short way. REQUIRES: a.time <= time <= b.time.
SSolution InterpolateSolution(const SSolution& a, const SSolution& b, double time);

// A kind of difference, with its name, its unit, and how it follows from a result and the truth.
struct SDifference {
    std::string_view name;
    std::string_view unit;
    double (*compute)(const SSolution& result, const SSolution& truth);
    double (*deviation)(const SSolution& result, const SSolution& truth); // null: none is stated
};
std::span<const SDifference> GetDifferences();

// Statistics of one kind of difference.
class CDifferenceStatistics {
  public:
    // `deviation`: as stated by the result; 0 when it states none. A difference that is no number is ignored.
    void Add(double time, double difference, double deviation);
    // One row: name, unit, count, mean, standard deviation, root mean square, largest and its date, last, the
    // shares within one, two and three stated deviations in percent, and the mean square in stated
    // deviations.
    void Write(CTable& table, const SDifference& row) const;
    std::uint64_t GetCount() const { return m_count; }

  private:
    std::uint64_t m_count = 0;
    std::uint64_t m_stated = 0; // differences with a stated deviation
    std::array<std::uint64_t, 3> m_within{};
    double m_sum = 0.0, m_squares = 0.0, m_normalised = 0.0;
    double m_largest = 0.0, m_largestTime = 0.0, m_last = 0.0;
};

} // namespace Batch
