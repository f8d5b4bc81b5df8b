// What a change was: the views switch on it. One list for the whole system.
#pragma once

namespace Application_Tarvel {

enum EHint {
    hintRefresh = 0, // general refresh after New and Open
    hintDataFileAdded = 1,
    hintDataFileRemoved = 2,
    hintSensorAdded = 3,
    hintRejectionAdded = 4,
    hintRejectionChanged = 5,
    hintSimulationParametersChanged = 6,
    hintNelixConfigurationChanged = 7,
    hintDataFileTimeOffsetChanged = 8,
    hintSensorTimeOffsetChanged = 9,
    hintSensorSynchronizedOutputChanged = 10,
    hintSensorChannelChanged = 11,
    hintSensorChanged = 12,
    hintSensorRemoved = 13,
    hintRejectionRemoved = 14,
    hintZuptAdded = 15,
    hintOutputRateAdded = 16,
    hintAltitudeModeAdded = 17,
    hintZuptChanged = 18,
    hintOutputRateChanged = 19,
    hintAltitudeModeChanged = 20,
    hintZuptRemoved = 21,
    hintOutputRateRemoved = 22,
    hintAltitudeModeRemoved = 23,
    hintRunStarted = 24,
    hintRunEnded = 25,
    hintOutputFileNameChanged = 26, // at a save
    hintChannelFound = 27,          // object: the data file
    hintGraphAdded = 28,
    hintCurveAdded = 29,
    hintGraphRemoved = 30, // curve or graph removed; object: the graph
    hintDataLayersRebuilt = 31,
    hintInstantMeasureAdded = 32,
    hintInstantEnumAdded = 33,
    hintInstantMeasureRemoved = 34,
    hintInstantEnumRemoved = 35,
    hintDvlStdDevChanged = 36,
    hintGpsStdDevChanged = 37,
    hintUsblStdDevChanged = 38,
    hintDepthStdDevChanged = 39,
    hintLblStdDevChanged = 40,
    hintEMLogStdDevChanged = 41,
    hintOdometerStdDevChanged = 42,
    hintDataFileContentChanged = 43,
    hintCurveRemoved = 44,
    hintCurveChanged = 45,
    hintFilteringAdded = 46,
    hintFilteringChanged = 47,
    hintFilteringRemoved = 48
};

} // namespace Application_Tarvel
