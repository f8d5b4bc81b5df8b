#include "dataaccess/directions.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <numbers>

// The sine and cosine of the standard library cost more than all else that a walk does with a packet. These
// polynomials have no branch and go over four angles at once; machines with wide vectors have a second form.
#if defined(__x86_64__) && defined(__GNUC__)
#define VARNE_HAS_AVX2_FORM
#endif

namespace Application_Tarvel {

namespace {

constexpr std::size_t kLanes = 4;
typedef double Lanes __attribute__((vector_size(kLanes * sizeof(double))));

// Adding and subtracting it rounds a number below 2^51 to the nearest whole one.
constexpr double kRounder = 0x1.8p52;

// The terms of both series up to a quarter of a right angle on either side, where the first one that is left
// out is below 1e-12.
constexpr double kSine[] = {-1.0 / 6,     1.0 / 120,       -1.0 / 5040,
                            1.0 / 362880, -1.0 / 39916800, 1.0 / 6227020800};
constexpr double kCosine[] = {-1.0 / 2,       1.0 / 24,        -1.0 / 720,          1.0 / 40320,
                              -1.0 / 3628800, 1.0 / 479001600, -1.0 / 87178291200.0};

template <std::size_t Count>
[[gnu::always_inline]] inline void Evaluate(const double (&terms)[Count], const Lanes& x, Lanes& result) {
    result = x * terms[Count - 1];
    for (std::size_t i = Count - 1; i-- > 0;) result = (result + terms[i]) * x;
    result += 1.0;
}

struct SLaneSums {
    Lanes sine{}, cosine{}, squares{};
};

// Inlined into both forms, and compiled there with the instructions of each.
[[gnu::always_inline]] inline void AddLanes(const double* angles, double turn, double perTurn,
                                            SLaneSums& sums) {
    constexpr double kHalf = 0.5;
    const Lanes half = Lanes{} + kHalf;
    Lanes angle;
    std::memcpy(&angle, angles, sizeof angle);
    const Lanes turns = angle * perTurn;
    const Lanes whole = (turns + kRounder) - kRounder;
    Lanes part = turns - whole; // of a turn
    part = part > half ? half : part;
    part = part < -half ? -half : part;
    const Lanes nearZero = angle - whole * turn;

    // Of a quarter of the angle; then the angle is doubled twice.
    const Lanes quarter = part * (std::numbers::pi / 2), square = quarter * quarter;
    Lanes sine, cosine;
    Evaluate(kSine, square, sine);
    Evaluate(kCosine, square, cosine);
    sine *= quarter;
    for (int i = 0; i < 2; ++i) {
        const Lanes doubled = 2.0 * sine * cosine;
        cosine = 1.0 - 2.0 * sine * sine;
        sine = doubled;
    }
    sums.sine += sine;
    sums.cosine += cosine;
    sums.squares += nearZero * nearZero;
}

double Sum(const Lanes& lanes) { return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]); }

[[gnu::always_inline]] inline void AddAll(std::span<const double> angles, double turn, SDirectionSums& sums) {
    const double perTurn = 1 / turn;
    SLaneSums lanes;
    std::size_t i = 0;
    for (; i + kLanes <= angles.size(); i += kLanes) AddLanes(angles.data() + i, turn, perTurn, lanes);
    const std::size_t rest = angles.size() - i;
    if (rest > 0) {
        // Zeros fill the last four, and each of them adds one to the cosines.
        std::array<double, kLanes> filled{};
        for (std::size_t k = 0; k < rest; ++k) filled[k] = angles[i + k];
        AddLanes(filled.data(), turn, perTurn, lanes);
        sums.cosine -= static_cast<double>(kLanes - rest);
    }
    sums.sine += Sum(lanes.sine);
    sums.cosine += Sum(lanes.cosine);
    sums.squares += Sum(lanes.squares);
}

#ifdef VARNE_HAS_AVX2_FORM
[[gnu::target("avx2,fma")]] void AddByAvx2(std::span<const double> angles, double turn,
                                           SDirectionSums& sums) {
    AddAll(angles, turn, sums);
}
#endif

} // namespace

void AddDirections(std::span<const double> angles, double turn, SDirectionSums& sums) {
#ifdef VARNE_HAS_AVX2_FORM
    static const bool isWide = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    if (isWide) return AddByAvx2(angles, turn, sums);
#endif
    AddAll(angles, turn, sums);
}

} // namespace Application_Tarvel
