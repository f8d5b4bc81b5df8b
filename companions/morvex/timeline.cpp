#include "morvex/timeline.h"

#include <algorithm>

namespace Morvex {

SStretch SStretch::Reversed() const {
    SStretch reversed;
    reversed.samples.assign(samples.rbegin(), samples.rend());
    for (SImuSample& sample : reversed.samples) {
        sample.time = -(sample.time - sample.span);
        sample.angle = -sample.angle;
    }
    reversed.fixes.assign(fixes.rbegin(), fixes.rend());
    for (SPositionFix& fix : reversed.fixes) fix.time = -fix.time;
    return reversed;
}

} // namespace Morvex
