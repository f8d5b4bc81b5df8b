#include "morvex/smoother.h"

#include <Eigen/Cholesky>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace Morvex {
namespace {

// A symmetric matrix as its upper triangle by rows.
template <class Matrix>
double* PutTriangle(double* to, const Matrix& matrix, Eigen::Index size) {
    for (Eigen::Index row = 0; row < size; ++row)
        for (Eigen::Index column = row; column < size; ++column) *to++ = matrix(row, column);
    return to;
}

template <class Matrix>
const double* GetTriangle(const double* from, Matrix& matrix, Eigen::Index size) {
    for (Eigen::Index row = 0; row < size; ++row)
        for (Eigen::Index column = row; column < size; ++column)
            matrix(row, column) = matrix(column, row) = *from++;
    return from;
}

// P^-1 B for a covariance P of states of very different sizes.
StateMatrix SolveScaled(const StateMatrix& p, const StateMatrix& b) {
    StateVector scale(p.rows());
    for (Eigen::Index i = 0; i < p.rows(); ++i) scale[i] = p(i, i) > 0.0 ? 1.0 / std::sqrt(p(i, i)) : 0.0;
    StateMatrix scaled = scale.asDiagonal() * p * scale.asDiagonal();
    // A state that is certain stays as it is.
    for (Eigen::Index i = 0; i < p.rows(); ++i) scaled(i, i) = 1.0 + 1e-12;
    const StateMatrix right = scale.asDiagonal() * b;
    return scale.asDiagonal() * StateMatrix(Eigen::LDLT<StateMatrix>(scaled).solve(right));
}

} // namespace

std::size_t CSmoother::GetRecordDoubles() const {
    const auto n = static_cast<std::size_t>(m_size);
    return 2 + kStates * kStates + (n - kStates) + n * (n + 1) + n;
}

bool CSmoother::Open(const std::filesystem::path& folder, int size) {
    m_size = size;
    m_record.resize(GetRecordDoubles());
    m_at = -1;
    return m_epochs.Open(folder, m_record.size() * sizeof(double)) &&
           m_smoothed.Open(folder, sizeof(SSmoothed));
}

bool CSmoother::Add(const SEpoch& epoch) {
    double* to = m_record.data();
    *to++ = epoch.time;
    *to++ = epoch.begins ? 1.0 : 0.0;
    Eigen::Map<CoreMatrix> core(to);
    core = epoch.transition.topLeftCorner<kStates, kStates>();
    to += kStates * kStates;
    for (int i = kStates; i < m_size; ++i) *to++ = epoch.transition(i, i);
    to = PutTriangle(to, epoch.before, m_size);
    to = PutTriangle(to, epoch.after, m_size);
    std::copy_n(epoch.correction.data(), m_size, to);
    return m_epochs.Append(m_record.data());
}

bool CSmoother::Load(std::int64_t index, SEpoch& epoch) {
    const std::uint8_t* bytes = m_epochs.Read(index);
    if (!bytes) return false;
    std::memcpy(m_record.data(), bytes, m_record.size() * sizeof(double));
    const double* from = m_record.data();
    epoch.time = *from++;
    epoch.begins = *from++ != 0.0;
    epoch.transition = StateMatrix::Identity(m_size, m_size);
    epoch.transition.topLeftCorner<kStates, kStates>() = Eigen::Map<const CoreMatrix>(from);
    from += kStates * kStates;
    for (int i = kStates; i < m_size; ++i) epoch.transition(i, i) = *from++;
    epoch.before.resize(m_size, m_size);
    epoch.after.resize(m_size, m_size);
    from = GetTriangle(from, epoch.before, m_size);
    from = GetTriangle(from, epoch.after, m_size);
    epoch.correction = Eigen::Map<const Eigen::VectorXd>(from, m_size);
    return true;
}

bool CSmoother::Run(const std::function<bool(double)>& goOn) {
    const std::int64_t count = m_epochs.GetCount();
    SEpoch epoch, later;
    StateVector error, laterBefore; // of the epoch after its observations, and of the later one before them
    StateMatrix covariance;
    bool fresh = true;
    for (std::int64_t i = count - 1; i >= 0; --i) {
        if (i % 256 == 0 && !goOn(static_cast<double>(count - i) / static_cast<double>(count))) return false;
        if (!Load(i, epoch)) return false;
        if (fresh) {
            error = StateVector::Zero(m_size);
            covariance = epoch.after;
        } else {
            const StateMatrix gain = SolveScaled(later.before, later.transition * epoch.after).transpose();
            error = gain * laterBefore;
            covariance = (epoch.after + gain * (covariance - later.before) * gain.transpose()).eval();
            covariance = (0.5 * (covariance + covariance.transpose())).eval();
        }
        laterBefore = error + epoch.correction;
        SSmoothed smoothed;
        smoothed.time = epoch.time;
        smoothed.begins = epoch.begins ? 1.0 : 0.0;
        std::copy_n(error.data(), 9, smoothed.after);
        std::copy_n(laterBefore.data(), 9, smoothed.before);
        PutTriangle(smoothed.covariance, covariance, 9);
        if (!m_smoothed.Append(&smoothed)) return false;
        fresh = epoch.begins;
        std::swap(later, epoch);
    }
    return true;
}

bool CSmoother::Find(std::int64_t index, SSmoothed& smoothed) {
    const std::uint8_t* bytes = m_smoothed.Read(m_smoothed.GetCount() - 1 - index);
    if (bytes) std::memcpy(&smoothed, bytes, sizeof smoothed);
    return bytes != nullptr;
}

bool CSmoother::GetErrors(double time, NavigationErrors& errors, NavigationCovariance& covariance) {
    constexpr double kSame = 1e-7; // s
    const std::int64_t count = m_smoothed.GetCount();
    if (count == 0) return false;
    if (m_at < 0) {
        m_at = 0;
        m_hasNext = count > 1;
        if (!Find(0, m_here) || (m_hasNext && !Find(1, m_next))) return false;
    }
    while (m_hasNext && m_next.time <= time + kSame) {
        m_here = m_next;
        ++m_at;
        m_hasNext = m_at + 1 < count;
        if (m_hasNext && !Find(m_at + 1, m_next)) return false;
    }
    errors = Eigen::Map<const NavigationErrors>(m_here.after);
    GetTriangle(m_here.covariance, covariance, 9);
    if (!m_hasNext || m_next.begins != 0.0 || !(m_next.time > m_here.time)) return true;
    const double share = std::clamp((time - m_here.time) / (m_next.time - m_here.time), 0.0, 1.0);
    NavigationCovariance next;
    GetTriangle(m_next.covariance, next, 9);
    errors += share * (Eigen::Map<const NavigationErrors>(m_next.before) - errors);
    covariance += share * (next - covariance);
    return true;
}

} // namespace Morvex
