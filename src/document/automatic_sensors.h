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
