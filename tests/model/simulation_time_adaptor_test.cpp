#include "model/simulation_parameters.h"
#include "model/simulation_time_adaptor.h"
#include "values/date_time_adaptor.h"
#include "values/date_time_span_adaptor.h"

#include <gtest/gtest.h>

using namespace Metier_Tarvel;

TEST(SimulationTimeAdaptor, ShowsElapsedTimeOrDate) {
    Outils_Valeurs::CDateTimeSpanAdaptor elapsed;
    Outils_Valeurs::CDateTimeAdaptor date;
    CTrvSimulationTimeAdaptor adaptor(elapsed, date);
    CTrvSimulationParameters parameters;
    const CDateTimeSpan span(90 * Outils_Temps::kTicksPerMinute);
    CDateTime reference;
    reference.SetDateTime(2020, 1, 31, 23, 0, 0, 0);
    std::string asSpan, asDate, text;
    elapsed.ValueToText(span, asSpan);
    date.ValueToText(reference + span, asDate);

    for (const auto& [mode, known, expected] :
         {std::tuple{timeElapsed, true, &asSpan}, {timeUtc, false, &asSpan}, {timeUtc, true, &asDate}}) {
        adaptor.mode = mode;
        parameters.hasUtcReference = known;
        parameters.utcReference = reference;
        ASSERT_TRUE(adaptor.ValueToText(ToStoredTime(span), parameters, text));
        EXPECT_EQ(text, *expected);
        for (const std::string& typed : {asSpan, asDate}) {
            CDateTime value(5);
            const bool readable = known || typed == asSpan;
            EXPECT_EQ(adaptor.TextToValue(typed, parameters, value), readable) << typed;
            EXPECT_EQ(value, readable ? ToStoredTime(span) : CDateTime(5)) << typed;
        }
    }
    CDateTime value(5);
    EXPECT_FALSE(adaptor.TextToValue("neither", parameters, value));
}
