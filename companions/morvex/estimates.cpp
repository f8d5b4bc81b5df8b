#include "morvex/estimates.h"

#include "foundation/numbers.h"
#include "foundation/texts.h"

#include <algorithm>
#include <cmath>

namespace Morvex {
namespace {

using Outils_Texte::EText;
using Outils_Texte::FormatFixed;
using Outils_Texte::FormatText;

// How a group is shown: its numbers times `factor`, each in a place of the text.
struct SEstimateRow {
    EGroup group;
    EAiding kind; // EAiding::count: the first GPS, or the first USBL
    EText text;
    double factor;
    int decimals;
};
constexpr double kDegrees = 1.0 / kRadiansPerDegree;
constexpr SEstimateRow kEstimates[] = {
    {EGroup::gpsArm, EAiding::count, EText::estimateArm, 1.0, 2},
    {EGroup::usblOrigin, EAiding::count, EText::estimateOrigin, 1.0, 1},
    {EGroup::dvlScale, EAiding::dvlBottom, EText::estimateScale, 100.0, 2},
    {EGroup::dvlTurn, EAiding::dvlBottom, EText::estimateTurn, kDegrees, 2},
    {EGroup::current, EAiding::dvlWater, EText::estimateCurrent, 1.0, 2},
    {EGroup::emLogScale, EAiding::emLog, EText::estimateScale, 100.0, 2},
    {EGroup::depthBias, EAiding::depth, EText::estimateBias, 1.0, 2},
    {EGroup::soundScale, EAiding::range, EText::estimateScale, 100.0, 3},
    {EGroup::odometerScale, EAiding::odometer, EText::estimateScale, 100.0, 2},
    {EGroup::odometerTurn, EAiding::odometer, EText::estimateBoresight, kDegrees, 2},
};

// The current as a speed and the direction that it flows to.
Vector3d AsCurrent(const Vector3d& level) {
    double direction = std::atan2(-level.y(), level.x()) * kDegrees;
    if (direction < 0.0) direction += 360.0;
    return {level.head<2>().norm(), direction, 0.0};
}

} // namespace

std::vector<SEstimateText> DescribeEstimates(CInsFilter& filter, const SRunPlan& plan) {
    std::vector<SEstimateText> texts;
    const auto usbl = std::ranges::find(plan.gps, true, &SGpsPlan::isUsbl);
    const StateVector variances = filter.Get().covariance.diagonal();
    for (const SEstimateRow& row : kEstimates) {
        if (filter.GetLayout().Find(row.group) < 0) continue;
        const auto sensor = std::ranges::find(plan.aidings, row.kind, &SAidingPlan::kind);
        const bool isPosition = row.kind == EAiding::count, isArm = row.group == EGroup::gpsArm;
        if (!isPosition && sensor == plan.aidings.end()) continue;
        const SChannelPlan& source = !isPosition ? sensor->source
                                     : isArm     ? plan.gps.front().source
                                                 : usbl->source;
        const int size = filter.GetLayout().GetRow(row.group).size;
        Vector3d values = Vector3d::Zero();
        std::string deviations;
        for (int i = 0; i < size; ++i) {
            values[i] = row.factor * filter.GetSensor(row.group, i);
            const double variance = variances[filter.GetLayout().Find(row.group) + i];
            if (i > 0) deviations += ", ";
            deviations += FormatFixed(row.factor * std::sqrt(std::max(0.0, variance)), row.decimals);
        }
        if (isArm) values += plan.gps.front().leverArm;
        if (row.group == EGroup::current) values = AsCurrent(values);
        std::string text = FormatText(row.text, {FormatFixed(values.x(), row.decimals),
                                                 FormatFixed(values.y(), row.decimals),
                                                 FormatFixed(values.z(), row.decimals)});
        // A current is shown as speed and direction: the deviations north and west say nothing of these.
        if (row.group != EGroup::current) text = FormatText(EText::estimateDeviation, {text, deviations});
        texts.push_back({source.channel, std::move(text)});
    }
    return texts;
}

} // namespace Morvex
