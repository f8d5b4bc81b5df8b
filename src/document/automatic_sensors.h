// The sensors that need no choice of the user: a new project gets them as the analysis meets their channels.
#pragma once

#include "foundation/text_id.h"
#include "model/simulation_parameters.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>

namespace Application_Tarvel {

// Gives a sensor its channel, and an event marker the identifier of its event.
void ConnectSensor(Metier_Tarvel::CTrvSensor& sensor, Metier_Tarvel::CTrvDataFileChannel& channel);

// A sensor on the main input file's first channel of the kind, with the lever arm of the first other GPS if
// it is one; null when the project takes no more of its kind, or its recording has none.
Metier_Tarvel::CTrvSensor* MakeSensor(Metier_Tarvel::CTrvSimulationParameters& parameters,
                                      Metier_Tarvel::ESensorKind kind);

// A sensor on a channel of an external file, and the line that says so, or why there is none. Nothing for a
// channel of no kind of sensor, for one that has a sensor, and for one more channel of a kind of which the
// project takes only one.
struct SChannelSensor {
    Metier_Tarvel::CTrvSensor* sensor = nullptr;
    std::string line;
};
SChannelSensor AddSensorOn(Metier_Tarvel::CTrvSimulationParameters& parameters,
                           Metier_Tarvel::CTrvDataFile& file, std::uint16_t channel);

class CAutomaticSensors {
  public:
    // The sensor made for the channel, and the text that says so; null for none.
    struct SAdded {
        Metier_Tarvel::CTrvSensor* sensor = nullptr;
        Outils_Texte::EText message = Outils_Texte::kNoText;
    };
    // Adds an event marker or a mount when the channel is for one and no sensor uses it. Once for each
    // channel: what the user then removes stays away.
    SAdded Add(Metier_Tarvel::CTrvSimulationParameters& parameters, Metier_Tarvel::CTrvDataFile& file,
               std::uint16_t channel);

  private:
    std::set<std::string> m_addedKeys;
};

} // namespace Application_Tarvel
