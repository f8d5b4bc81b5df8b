// The best estimate of each moment from the whole recording, by a pass backwards over the filter's epochs.
//
// Rauch, Tung and Striebel, Maximum likelihood estimates of linear dynamic systems, AIAA Journal 3 (1965),
// for a closed loop: what is smoothed is the error of the navigation as the filter left it. The epochs wait
// in a temporary file, so that memory does not depend on the length of the recording.
#pragma once

#include "morvex/ins_filter.h"
#include "morvex/spool.h"

#include <filesystem>
#include <functional>

namespace Morvex {

// Errors and covariance of position, velocity and attitude, in the order of EState.
using NavigationErrors = Eigen::Matrix<double, 9, 1>;
using NavigationCovariance = Eigen::Matrix<double, 9, 9>;

// One date of the filter: before and after what was observed then.
struct SEpoch {
    double time = 0.0;
    bool begins = false;    // the first of a segment: nothing leads to it
    StateMatrix transition; // of the errors, from the epoch before
    StateMatrix before;     // covariance
    StateMatrix after;
    StateVector correction; // that the observations made
};

class CSmoother {
  public:
    // `size`: states of the filter. False when no temporary file can be made in `folder`.
    bool Open(const std::filesystem::path& folder, int size);
    // Ascending times. False when the disk does not take it.
    bool Add(const SEpoch& epoch);
    // The pass backwards; asks `goOn` with the share that is done, 0 to 1. False when it was ended by it or
    // by the disk.
    bool Run(const std::function<bool(double)>& goOn);

    // The error of the filter's navigation at a time, and its covariance; after Run, ascending times. Between
    // two epochs the error is interpolated. False when the disk fails.
    bool GetErrors(double time, NavigationErrors& errors, NavigationCovariance& covariance);

  private:
    struct SSmoothed {
        double time;
        double begins;
        double after[9], before[9]; // errors of the navigation after and before the epoch's observations
        double covariance[45];      // upper triangle by rows
    };
    std::size_t GetRecordDoubles() const;
    bool Load(std::int64_t index, SEpoch& epoch);
    bool Find(std::int64_t index, SSmoothed& smoothed);

    int m_size = 0;
    CSpool m_epochs;
    CSpool m_smoothed; // the last epoch first
    std::vector<double> m_record;
    std::int64_t m_at = -1; // epoch that GetErrors stands at
    SSmoothed m_here{}, m_next{};
    bool m_hasNext = false;
};

} // namespace Morvex
