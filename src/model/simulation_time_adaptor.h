// A simulation time as text, elapsed or as a UTC date.
#pragma once

#include "model/forward.h"
#include "model/words.h"

#include <string>
#include <string_view>

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}
namespace Outils_Valeurs {
class CDateTimeAdaptor;
class CDateTimeSpanAdaptor;
} // namespace Outils_Valeurs

namespace Metier_Tarvel {

// Delegates to two adaptors that it does not own; they must outlive it, and be set before any conversion.
class CTrvSimulationTimeAdaptor : public TRuntimeClass<CTrvSimulationTimeAdaptor, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvSimulationTimeAdaptor";

    std::int32_t mode = timeElapsed; // EWordList::timeMode
    const Outils_Valeurs::CDateTimeSpanAdaptor* elapsedTime = nullptr;
    const Outils_Valeurs::CDateTimeAdaptor* dateTime = nullptr;

    CTrvSimulationTimeAdaptor() = default;
    CTrvSimulationTimeAdaptor(const Outils_Valeurs::CDateTimeSpanAdaptor& elapsed,
                              const Outils_Valeurs::CDateTimeAdaptor& date)
        : elapsedTime(&elapsed), dateTime(&date) {}

    // Takes the mode of the settings.
    void Configure(const Outils_Configuration::CTrvCnfConfigFile& configuration);

    // A date in mode UTC when the parameters have a UTC reference, else elapsed time. False for a value that
    // has no text; `text` then says so.
    bool ValueToText(CDateTime value, const CTrvSimulationParameters& parameters, std::string& text) const;
    // Whatever reads as elapsed time is elapsed time, in either mode; a date is taken when there is a UTC
    // reference. False for any other text, and `value` stays.
    bool TextToValue(std::string_view text, const CTrvSimulationParameters& parameters,
                     CDateTime& value) const;

    void Serialize(CArchive& archive) override;
};

} // namespace Metier_Tarvel
