#include "document/actions/rows.h"

#include <algorithm>
#include <iterator>

namespace Application_Tarvel {

namespace {

using namespace Edits;

constexpr const SEditRow* kRows[] = {
    &kAddDataFile,
    &kMoveDataFiles,
    &kRemoveDataFile,
    &kChangeDataFileTimeOffset,
    &kAddSensorGps,
    &kAddSensorDvl,
    &kAddSensorEMLog,
    &kAddSensorDepth,
    &kAddSensorUsbl,
    &kAddSensorLbl,
    &kAddSensorOdometer,
    &kAddSensorEventMarker,
    &kAddSensorPlatformOrientation,
    &kRemoveSensor,
    &kChangeSensorTimeOffset,
    &kChangeSensorSynchronizedOutput,
    &kChangeSensorDataFileChannel,
    &kChangeSensorGps,
    &kChangeSensorDvl,
    &kChangeSensorEMLog,
    &kChangeSensorDepth,
    &kChangeSensorUsbl,
    &kChangeSensorLbl,
    &kChangeSensorOdometer,
    &kChangeSensorEventMarker,
    &kChangeSensorPlatformOrientation,
    &kChangeSimulationParameters,
    &kChangeNelixConfiguration,
    &kAddZupt,
    &kChangeZupt,
    &kRemoveZupt,
    &kAddOutputRate,
    &kChangeOutputRate,
    &kRemoveOutputRate,
    &kAddAltitudeMode,
    &kChangeAltitudeMode,
    &kRemoveAltitudeMode,
    &kAddRejectionInstruction,
    &kChangeRejectionInstruction,
    &kRemoveRejectionInstruction,
    &kAddHorizontalFilteringInstruction,
    &kChangeHorizontalFilteringInstruction,
    &kRemoveHorizontalFilteringInstruction,
    &kChangeDvlStdDevInstruction,
    &kChangeGpsStdDevInstruction,
    &kChangeGpsStdDevThreshold,
    &kChangeUsblStdDevInstruction,
    &kChangeDepthStdDevInstruction,
    &kChangeLblStdDevInstruction,
    &kChangeEMLogStdDevInstruction,
    &kChangeOdometerStdDevInstruction,
    &kAdd1DGraphMeasure,
    &kAdd1DGraphEnum,
    &kRemove1DGraph,
    &kAdd1DCurve,
    &kChange1DCurve,
    &kRemove1DCurve,
    &kAddInstantValuesMeasure,
    &kAddInstantValuesEnum,
    &kRemoveInstantValuesMeasure,
    &kRemoveInstantValuesEnum,
    &kMoveInstantValue,
};

} // namespace

std::span<const SEditRow* const> GetEditRows() { return kRows; }

const SEditRow* FindEdit(const CObject& target, const void* address) {
    const auto found = std::ranges::find_if(kRows, [&](const SEditRow* row) {
        return row->covers && target.IsKindOf(row->targetClass()) && row->covers(target, address);
    });
    return found == std::end(kRows) ? nullptr : *found;
}

} // namespace Application_Tarvel
