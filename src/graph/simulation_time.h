// A simulation time as text: elapsed, or as a UTC date. UI thread.
#pragma once

#include "config/enumerations.h"
#include "values/date_time_adaptor.h"
#include "values/date_time_span_adaptor.h"

#include <optional>
#include <string>

namespace Presentation_Tarvel_Graphics {

using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;

// A plain value. The adaptors are copies, so that an axis may ask for more decimals than the settings.
struct SSimulationTimeText {
    Outils_Configuration::ESimulationTimeMode mode = Outils_Configuration::ESimulationTimeMode::elapsedTime;
    std::optional<CDateTime> utcReference; // the UTC date of simulation time zero
    Outils_Valeurs::CDateTimeAdaptor dateTime;
    Outils_Valeurs::CDateTimeSpanAdaptor span;

    // UTC is asked for and known.
    bool ShowsUtc() const {
        return mode == Outils_Configuration::ESimulationTimeMode::utcTime && utcReference.has_value();
    }
    // "UTC" or "elapsed time".
    std::string GetScaleName() const;
    std::string Format(CDateTimeSpan time) const;
    // Takes as many decimals as separate two times that are `tick` apart, and those of
    // the settings at least, which were in force at the first call.
    void FitPrecision(CDateTimeSpan tick);

  private:
    struct SDecimals {
        std::int32_t dateTime, span, total;
    };
    std::optional<SDecimals> m_settings;
};

} // namespace Presentation_Tarvel_Graphics
