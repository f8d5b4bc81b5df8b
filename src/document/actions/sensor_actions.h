// The edits of sensors that are more than values: a new one, another channel.
#pragma once

#include "document/actions/action.h"
#include "model/sensors.h"

namespace Application_Tarvel {

using Metier_Tarvel::CTrvDataFileChannel;
using Metier_Tarvel::CTrvSensor;
using Metier_Tarvel::ESensorKind;

// A sensor on the main input file's first channel of the kind. A further GPS starts with the lever arm of the
// first one.
class CTrvActAddSensor : public CTrvTableAction {
  public:
    CTrvActAddSensor(CTrvDocument& document, ESensorKind kind);

  private:
    bool Perform(CTrvProject& project) override;

    ESensorKind m_kind;
};

template <ESensorKind Kind>
class TActAddSensor final : public CTrvActAddSensor {
  public:
    explicit TActAddSensor(CTrvDocument& document) : CTrvActAddSensor(document, Kind) {}
};
using CTrvActAddSensorGps = TActAddSensor<ESensorKind::gps>;
using CTrvActAddSensorDvl = TActAddSensor<ESensorKind::dvl>;
using CTrvActAddSensorEMLog = TActAddSensor<ESensorKind::emLog>;
using CTrvActAddSensorDepth = TActAddSensor<ESensorKind::depth>;
using CTrvActAddSensorUsbl = TActAddSensor<ESensorKind::usbl>;
using CTrvActAddSensorLbl = TActAddSensor<ESensorKind::lbl>;
using CTrvActAddSensorOdometer = TActAddSensor<ESensorKind::odometer>;
using CTrvActAddSensorEventMarker = TActAddSensor<ESensorKind::eventMarker>;
using CTrvActAddSensorPlatformOrientation = TActAddSensor<ESensorKind::platformOrientation>;

// Gives a sensor the channel, of any file of the project. When nobody needs the former file any more, asks
// whether it shall go too.
class CTrvActChangeSensorDataFileChannel final : public CTrvTableAction {
  public:
    CTrvActChangeSensorDataFileChannel(CTrvDocument& document, CTrvSensor& sensor,
                                       CTrvDataFileChannel& channel)
        : CTrvTableAction(document, EAction::changeSensorDataFileChannel),
          m_sensor(sensor),
          m_channel(channel) {}

  private:
    bool Perform(CTrvProject& project) override;

    CTrvSensor& m_sensor;
    CTrvDataFileChannel& m_channel;
};

} // namespace Application_Tarvel
