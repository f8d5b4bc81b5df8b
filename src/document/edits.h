// The document's factory of user actions: one method for each edit. Tree items, views and commands change the
// model through these alone. UI thread.
//
//     document.GetEdits().ChangeZupt(zupt, {mode, begin, end});
//     auto values = SDvlValues::Of(dvl);
//     values.scaleFactor = 0.01;
//     document.GetEdits().ChangeSensorDvl(dvl, values);
//
// Each is true when the edit was made: the document is then modified and the views have been told. Without a
// project it does nothing and says nothing; a refusal was told by a message box, and all is as it was.
#pragma once

#include "document/actions/actions.h"
#include "document/document.h"

#include <memory>
#include <utility>

namespace Application_Tarvel {

namespace Edits {
using namespace Metier_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_Graphics;
using namespace Metier_Tarvel_InstantValues;
} // namespace Edits

class CTrvDocumentEdits {
  public:
    // `document` must outlive the object.
    explicit CTrvDocumentEdits(CTrvDocument& document) : m_document(document) {}

    // --- Data files

    // Asks the user for the file.
    bool AddDataFile() { return Run<CTrvActAddDataFile>(); }
    bool RemoveDataFile(CTrvDataFile& file) { return Run<CTrvActRemoveDataFile>(file); }
    bool ChangeDataFileTimeOffset(CTrvDataFile& file, CDateTimeSpan offset) {
        return Run<CTrvActChangeDataFileTimeOffset>(file, STimeOffsetValues{offset});
    }

    // --- Sensors

    bool AddSensor(ESensorKind kind) { return Run<CTrvActAddSensor>(kind); }
    bool RemoveSensor(const CTrvSensor& sensor) { return Run<CTrvActRemoveSensor>(sensor); }
    bool ChangeSensorTimeOffset(CTrvSensor& sensor, CDateTimeSpan offset) {
        return Run<CTrvActChangeSensorTimeOffset>(sensor, STimeOffsetValues{offset});
    }
    bool ChangeSensorSynchronizedOutput(CTrvSensor& sensor, bool synchronizedOutput) {
        return Run<CTrvActChangeSensorSynchronizedOutput>(sensor,
                                                          SSynchronizedOutputValues{synchronizedOutput});
    }
    // The channel must be of a file of the project.
    bool ChangeSensorDataFileChannel(CTrvSensor& sensor, CTrvDataFileChannel& channel) {
        return Run<CTrvActChangeSensorDataFileChannel>(sensor, channel);
    }
    bool ChangeSensorGps(Edits::CTrvSensorGps& sensor, const SGpsValues& values) {
        return Run<CTrvActChangeSensorGps>(sensor, values);
    }
    bool ChangeSensorDvl(Edits::CTrvSensorDvl& sensor, const SDvlValues& values) {
        return Run<CTrvActChangeSensorDvl>(sensor, values);
    }
    bool ChangeSensorEMLog(Edits::CTrvSensorEMLog& sensor, const SLeverArmValues& values) {
        return Run<CTrvActChangeSensorEMLog>(sensor, values);
    }
    bool ChangeSensorDepth(Edits::CTrvSensorDepth& sensor, const SLeverArmValues& values) {
        return Run<CTrvActChangeSensorDepth>(sensor, values);
    }
    bool ChangeSensorUsbl(Edits::CTrvSensorUsbl& sensor, const SUsblValues& values) {
        return Run<CTrvActChangeSensorUsbl>(sensor, values);
    }
    bool ChangeSensorLbl(Edits::CTrvSensorLbl& sensor, const SLeverArmValues& values) {
        return Run<CTrvActChangeSensorLbl>(sensor, values);
    }
    bool ChangeSensorOdometer(Edits::CTrvSensorOdometer& sensor, const SOdometerValues& values) {
        return Run<CTrvActChangeSensorOdometer>(sensor, values);
    }
    bool ChangeSensorEventMarker(Edits::CTrvSensorEventMarker& sensor, const SEventMarkerValues& values) {
        return Run<CTrvActChangeSensorEventMarker>(sensor, values);
    }
    bool ChangeSensorPlatformOrientation(Edits::CTrvSensorPlatformOrientation& sensor,
                                         const SPlatformOrientationValues& values) {
        return Run<CTrvActChangeSensorPlatformOrientation>(sensor, values);
    }

    // --- Simulation

    bool ChangeSimulationParameters(const SSimulationValues& values);
    // With a file: a configuration file of the INS, read over the values.
    bool ChangeNelixConfiguration(const SNelixValues& values, const std::filesystem::path& file = {}) {
        return Run<CTrvActChangeNelixConfiguration>(values, file);
    }

    bool AddZupt() { return Run<CTrvActAddZupt>(); }
    bool ChangeZupt(Edits::CTrvZupt& zupt, const SModePeriodValues& values) {
        return Run<CTrvActChangeZupt>(zupt, values);
    }
    bool RemoveZupt(const Edits::CTrvZupt& zupt) { return Run<CTrvActRemoveZupt>(zupt); }
    bool AddOutputRate() { return Run<CTrvActAddOutputRate>(); }
    bool ChangeOutputRate(Edits::CTrvOutputRate& rate, const SOutputRateValues& values) {
        return Run<CTrvActChangeOutputRate>(rate, values);
    }
    bool RemoveOutputRate(const Edits::CTrvOutputRate& rate) { return Run<CTrvActRemoveOutputRate>(rate); }
    bool AddAltitudeMode() { return Run<CTrvActAddAltitudeMode>(); }
    bool ChangeAltitudeMode(Edits::CTrvAltitudeMode& altitudeMode, const SModePeriodValues& values) {
        return Run<CTrvActChangeAltitudeMode>(altitudeMode, values);
    }
    bool RemoveAltitudeMode(const Edits::CTrvAltitudeMode& altitudeMode) {
        return Run<CTrvActRemoveAltitudeMode>(altitudeMode);
    }

    // --- Instructions of sensors

    bool AddRejectionInstruction(Edits::CTrvRejectionGroup& group) {
        return Run<CTrvActAddRejectionInstruction>(group);
    }
    bool ChangeRejectionInstruction(Edits::CTrvRejectionInstruction& instruction,
                                    const SModePeriodValues& values) {
        return Run<CTrvActChangeRejectionInstruction>(instruction, values);
    }
    bool RemoveRejectionInstruction(const Edits::CTrvRejectionInstruction& instruction) {
        return Run<CTrvActRemoveRejectionInstruction>(instruction);
    }
    bool AddHorizontalFilteringInstruction(Edits::CTrvSensorUsbl& sensor) {
        return Run<CTrvActAddHorizontalFilteringInstruction>(sensor);
    }
    bool ChangeHorizontalFilteringInstruction(Edits::CTrvHorizontalFilteringInstruction& instruction,
                                              const SFilteringValues& values) {
        return Run<CTrvActChangeHorizontalFilteringInstruction>(instruction, values);
    }
    bool RemoveHorizontalFilteringInstruction(const Edits::CTrvHorizontalFilteringInstruction& instruction) {
        return Run<CTrvActRemoveHorizontalFilteringInstruction>(instruction);
    }
    bool ChangeDvlStdDevInstruction(Edits::CTrvDvlStdDevInstruction& instruction,
                                    const SStdDevValues& values) {
        return Run<CTrvActChangeDvlStdDevInstruction>(instruction, values);
    }
    bool ChangeGpsStdDevInstruction(Edits::CTrvGpsStdDevInstruction& instruction,
                                    const SStdDevValues& values) {
        return Run<CTrvActChangeGpsStdDevInstruction>(instruction, values);
    }
    bool ChangeGpsStdDevThreshold(Edits::CTrvGpsStdDevThreshold& threshold,
                                  const SGpsThresholdValues& values) {
        return Run<CTrvActChangeGpsStdDevThreshold>(threshold, values);
    }
    bool ChangeUsblStdDevInstruction(Edits::CTrvUsblStdDevInstruction& instruction,
                                     const SStdDevValues& values) {
        return Run<CTrvActChangeUsblStdDevInstruction>(instruction, values);
    }
    bool ChangeDepthStdDevInstruction(Edits::CTrvDepthStdDevInstruction& instruction,
                                      const SStdDevValues& values) {
        return Run<CTrvActChangeDepthStdDevInstruction>(instruction, values);
    }
    bool ChangeLblStdDevInstruction(Edits::CTrvLblStdDevInstruction& instruction,
                                    const SStdDevValues& values) {
        return Run<CTrvActChangeLblStdDevInstruction>(instruction, values);
    }
    bool ChangeEMLogStdDevInstruction(Edits::CTrvEMLogStdDevInstruction& instruction,
                                      const SStdDevValues& values) {
        return Run<CTrvActChangeEMLogStdDevInstruction>(instruction, values);
    }
    bool ChangeOdometerStdDevInstruction(Edits::CTrvOdometerStdDevInstruction& instruction,
                                         const SStdDevValues& values) {
        return Run<CTrvActChangeOdometerStdDevInstruction>(instruction, values);
    }
    // By the kind of the instruction.
    bool ChangeStdDevInstruction(Edits::CTrvStdDevInstruction& instruction, const SStdDevValues& values);

    // --- Graphs and instant values

    bool Add1DGraphMeasure(const Edits::CTrvMeasureDef& measure) {
        return Run<CTrvActAdd1DGraphMeasure>(measure);
    }
    bool Add1DGraphEnum(const Edits::CTrvEnumDef& enumeration) {
        return Run<CTrvActAdd1DGraphEnum>(enumeration);
    }
    bool Remove1DGraph(const Edits::CTrv1DGraph& graph) { return Run<CTrvActRemove1DGraph>(graph); }
    bool Add1DCurve(Edits::CTrv1DGraphMeasure& graph, const Edits::CTrvMeasureDef& measure) {
        return Run<CTrvActAdd1DCurve>(graph, measure);
    }
    bool Change1DCurve(Edits::CTrv1DCurve& curve, const SCurveValues& values) {
        return Run<CTrvActChange1DCurve>(curve, values);
    }
    bool Remove1DCurve(const Edits::CTrv1DCurve& curve) { return Run<CTrvActRemove1DCurve>(curve); }
    bool AddInstantValuesMeasure(const Edits::CTrvMeasureDef& measure) {
        return Run<CTrvActAddInstantValuesMeasure>(measure);
    }
    bool AddInstantValuesEnum(const Edits::CTrvEnumDef& enumeration) {
        return Run<CTrvActAddInstantValuesEnum>(enumeration);
    }
    bool RemoveInstantValuesMeasure(const Edits::CTrvInstantValuesMeasure& item) {
        return Run<CTrvActRemoveInstantValuesMeasure>(item);
    }
    bool RemoveInstantValuesEnum(const Edits::CTrvInstantValuesEnum& item) {
        return Run<CTrvActRemoveInstantValuesEnum>(item);
    }

  private:
    template <class Action, class... Arguments>
    bool Run(Arguments&&... arguments) {
        if (!m_document.GetProject()) return false;
        return m_document.DoAction(
            std::make_unique<Action>(m_document, std::forward<Arguments>(arguments)...));
    }

    // Runs the first of the actions that is for objects of this class; false if there is none.
    template <class... Actions, class Object, class Values>
    bool RunByKind(Object& object, const Values& values) {
        bool done = false;
        const auto run = [&]<class Action>() {
            using CTarget = typename Action::CTarget;
            if (!object.IsKindOf(CTarget::Class())) return false;
            done = Run<Action>(static_cast<CTarget&>(object), values);
            return true;
        };
        (void)(run.template operator()<Actions>() || ...);
        return done;
    }

    CTrvDocument& m_document;
};

} // namespace Application_Tarvel
