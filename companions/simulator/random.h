// Random numbers that are the same for the same seed with every compiler and library.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace Simulation {

// xoshiro256++ (D. Blackman and S. Vigna, "Scrambled linear pseudorandom number generators", 2021), its state
// filled by splitmix64 as its authors advise. Streams of one seed are independent of each other.
class CRandom {
  public:
    CRandom(std::uint64_t seed, std::uint64_t stream) {
        std::uint64_t x = seed * 0xD1342543DE82EF95u + (stream + 1) * 0x9E3779B97F4A7C15u;
        for (std::uint64_t& word : m_state) {
            x += 0x9E3779B97F4A7C15u;
            std::uint64_t z = x;
            z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
            z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
            word = z ^ (z >> 31);
        }
    }

    std::uint64_t Next() {
        const std::uint64_t result = std::rotl(m_state[0] + m_state[3], 23) + m_state[0];
        const std::uint64_t t = m_state[1] << 17;
        m_state[2] ^= m_state[0];
        m_state[3] ^= m_state[1];
        m_state[1] ^= m_state[2];
        m_state[0] ^= m_state[3];
        m_state[2] ^= t;
        m_state[3] = std::rotl(m_state[3], 45);
        return result;
    }

    // 0 to below 1.
    double Uniform() { return static_cast<double>(Next() >> 11) * 0x1p-53; }
    double Uniform(double from, double to) { return from + (to - from) * Uniform(); }

    // Standard normal, by the polar method of Marsaglia and Bray (1964), which gives two at a time.
    double Normal() {
        if (m_hasSpare) {
            m_hasSpare = false;
            return m_spare;
        }
        double u, v, s;
        do {
            u = Uniform(-1, 1);
            v = Uniform(-1, 1);
            s = u * u + v * v;
        } while (s >= 1 || s == 0);
        const double f = std::sqrt(-2 * std::log(s) / s);
        m_spare = v * f;
        m_hasSpare = true;
        return u * f;
    }

  private:
    std::uint64_t m_state[4];
    double m_spare = 0;
    bool m_hasSpare = false;
};

// First-order Gauss-Markov process: wanders about 0 with a standard deviation and forgets within a time.
class CWander {
  public:
    CWander() = default;
    CWander(double deviation, double time) : m_deviation(deviation), m_time(time) {}
    double Get() const { return m_value; }
    // Moves on by `step` seconds.
    double Step(double step, CRandom& random) {
        const double keep = std::exp(-step / m_time);
        return m_value = keep * m_value + m_deviation * std::sqrt(1 - keep * keep) * random.Normal();
    }
    // Starts anywhere, as if it had run for long.
    void Start(CRandom& random) { m_value = m_deviation * random.Normal(); }

  private:
    double m_deviation = 0, m_time = 1, m_value = 0;
};

} // namespace Simulation
