#include "model/simulation_time_adaptor.h"

#include "config/config_file.h"
#include "foundation/serialize.h"
#include "model/simulation_parameters.h"
#include "values/date_time_adaptor.h"
#include "values/date_time_span_adaptor.h"

namespace Metier_Tarvel {

void CTrvSimulationTimeAdaptor::Configure(const Outils_Configuration::CTrvCnfConfigFile& configuration) {
    using Outils_Configuration::Cnf;
    mode = static_cast<std::int32_t>(configuration.Get(Cnf<"adaptors/simulationTime/mode">));
}

bool CTrvSimulationTimeAdaptor::ValueToText(CDateTime value, const CTrvSimulationParameters& parameters,
                                            std::string& text) const {
    const CDateTimeSpan elapsed = ToSpan(value);
    if (mode == timeUtc && parameters.hasUtcReference)
        return dateTime->ValueToText(parameters.utcReference + elapsed, text);
    return elapsedTime->ValueToText(elapsed, text);
}

bool CTrvSimulationTimeAdaptor::TextToValue(std::string_view text, const CTrvSimulationParameters& parameters,
                                            CDateTime& value) const {
    CDateTimeSpan elapsed;
    if (!elapsedTime->TextToValue(text, elapsed)) {
        if (!parameters.hasUtcReference) return false;
        // A notation without a day counts from the day of the present value.
        CDateTime date = parameters.utcReference + ToSpan(value);
        if (!dateTime->TextToValue(text, date)) return false;
        elapsed = date - parameters.utcReference;
        if (!elapsed.IsValid()) return false;
    }
    value = ToStoredTime(elapsed);
    return true;
}

void CTrvSimulationTimeAdaptor::Serialize(CArchive& archive) {
    Outils_Objets::SerializeUnchanged<CTrvObject>(archive, *this, mode);
}

} // namespace Metier_Tarvel
