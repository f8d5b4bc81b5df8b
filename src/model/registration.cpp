#include "model/registration.h"

#include "model/project.h"
#include "model/simulation_time_adaptor.h"

namespace Metier_Tarvel {

void RegisterModelClasses(Outils_Objets::CClassRegistry& registry) {
    using namespace Metier_Positioning;
    using namespace Metier_Tarvel_DataModel;
    using namespace Metier_Tarvel_Graphics;
    using namespace Metier_Tarvel_InstantValues;

    registry.Register<Outils_Objets::CObjetMetier, CTrvObject, CPosition, CLeverArm, CMisalignment>();
    registry.Register<CTrvProject, CTrvSimulationParameters, CTrvDataFile, CTrvDataFileChannel,
                      CTrvCurrentModeling, CTrvSpeedBias, CTrvNelixConfiguration, CTrvNelixType,
                      CTrvSimulationTimeAdaptor>();
    registry
        .Register<CTrvPeriod, CTrvAltitudeMode, CTrvZupt, CTrvOutputRate, CTrvHorizontalFilteringInstruction,
                  CTrvRejectionGroup, CTrvRejectionInstruction, CTrvGpsStdDevThreshold>();
    registry.Register<CTrvDvlStdDevInstruction, CTrvGpsStdDevInstruction, CTrvUsblStdDevInstruction,
                      CTrvDepthStdDevInstruction, CTrvEMLogStdDevInstruction, CTrvLblStdDevInstruction,
                      CTrvOdometerStdDevInstruction>();
    registry
        .Register<CTrvSensorGps, CTrvSensorDvl, CTrvSensorEMLog, CTrvSensorDepth, CTrvSensorUsbl,
                  CTrvSensorLbl, CTrvSensorOdometer, CTrvSensorEventMarker, CTrvSensorPlatformOrientation>();
    registry.Register<CTrvDataModel, CTrvDataLayer, CTrvFieldDef, CTrvMeasureDef, CTrvEnumDef,
                      CTrvEnumDefLiteral>();
    registry.Register<CTrv1DSettings, CTrv1DGraph, CTrv1DGraphEnum, CTrv1DGraphMeasure, CTrv1DCurve>();
    registry.Register<CTrvInstantValuesSettings, CTrvInstantValuesEnum, CTrvInstantValuesMeasure>();
}

} // namespace Metier_Tarvel
