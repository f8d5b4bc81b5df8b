// A latitude or longitude in degrees: as degrees, degrees and minutes, degrees, minutes and seconds, or in
// the form of NMEA sentences.
#pragma once

#include "config/enumerations.h"
#include "values/numeric_value_adaptor.h"

namespace Outils_Valeurs {

using Outils_Configuration::EAngleNotation;

class CLatitudeLongitudeAdaptor
    : public Outils_Objets::TRuntimeClass<CLatitudeLongitudeAdaptor, CNumericValueAdaptor> {
  public:
    static constexpr std::string_view kClassName = "CLatitudeLongitudeAdaptor";

    explicit CLatitudeLongitudeAdaptor(bool latitude = true) : isLatitude(latitude) {}

    bool isLatitude; // two digits of degrees, N and S; else three digits, E and W
    EAngleNotation notation = EAngleNotation::degreesMinutes;
    bool useMathematicalSign = false; // "-" in front in place of a hemisphere letter
    bool hideSeparators = true;       // no closing separator, and a blank before the hemisphere
    char16_t degreesSeparator = u'°';
    char16_t minutesSeparator = u'\'';
    char16_t secondsSeparator = u'"';

    // From degrees, north and east positive. Minutes and seconds that round to 60 carry over.
    bool ValueToText(double value, std::string& text) const override;
    // To degrees. Takes what ValueToText writes in the present notation, NMEA text that ends with its comma,
    // and one to three numbers (degrees, minutes, seconds) parted by blanks and the usual signs. The sign is
    // the first character, or a hemisphere letter at either end. False, and nothing changes, for a hemisphere
    // of the other axis, minutes or seconds of 60 or more, or any other text. `rest`, if given, becomes
    // empty.
    bool TextToValue(std::string_view text, double& value, std::string_view* rest = nullptr) const override;

    void Serialize(CArchive& archive) override;
};

} // namespace Outils_Valeurs
