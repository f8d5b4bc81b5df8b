// The results on their way to the file: they wait for their heave, and under "Backward" for the pass
// backwards.
#pragma once

#include "morvex/heave_filter.h"
#include "morvex/result_writer.h"
#include "morvex/smoother.h"
#include "morvex/spool.h"

#include <deque>
#include <filesystem>
#include <functional>

namespace Morvex {

// Memory stays at the results of a minute. One thread.
class CResultQueue {
  public:
    // Both must outlive the queue.
    CResultQueue(const SRunPlan& plan, CResultWriter& writer);
    // Results wait for the smoother in a temporary file. False when there can be none in `folder`.
    bool OpenSpool(const std::filesystem::path& folder);

    // Follows the motion that heave is made of.
    void AddMotion(const CStrapdown& strapdown);
    // Takes a result; ascending times. False when the disk does not take what leaves the queue.
    bool Add(const SNavigation& navigation, const NavigationCovariance& covariance,
             const SResultContext& context);
    // Lets everything go that waits for heave: the motion ends or jumps here.
    bool Flush();

    // Writes the results that wait, corrected by the smoother's errors. `goOn` is asked with the share that
    // is done. False when it or the disk ended the work.
    bool WriteSmoothed(CSmoother& smoother, const std::function<bool(double)>& goOn);

  private:
    struct SWaiting {
        SNavigation navigation;
        NavigationCovariance covariance;
        SResultContext context;
    };
    bool Release(SWaiting& waiting);

    const SRunPlan& m_plan;
    CResultWriter& m_writer;
    CHeaveFilter m_heave;
    std::deque<SWaiting> m_waiting;
    CSpool m_spool;
    bool m_isSpooled = false;
};

} // namespace Morvex
