// An absolute date and time as text, UTC.
#pragma once

#include "config/enumerations.h"
#include "foundation/date_time.h"
#include "foundation/object.h"

#include <string>
#include <string_view>

namespace Outils_Valeurs {

using Outils_Configuration::EDateNotation;
using Outils_Objets::CArchive;
using Outils_Temps::CDateTime;

class CDateTimeAdaptor : public Outils_Objets::TRuntimeClass<CDateTimeAdaptor, Outils_Objets::CObjetMetier> {
  public:
    static constexpr std::string_view kClassName = "CDateTimeAdaptor";

    EDateNotation notation = EDateNotation::dayMonthYear;
    bool showTime = true;       // calendar notations: the time of day follows the date
    std::int32_t precision = 3; // decimals of the seconds; below zero counts as 6, above 7 as 7
    char16_t dateSeparator = u'/';
    char16_t hourSeparator = u':';
    char16_t decimalSeparator = u'.';
    char16_t timeSeparator =
        u' '; // between date and time; belongs to a use, not to the settings: not archived

    // False for a date that is invalid or beyond the calendar: `text` then says so.
    // The calendar notations round to `precision`, and a second that rounds to 60 carries over up to the
    // year. The notations in seconds write `precision` decimals after a point; compact drops the fraction.
    bool ValueToText(const CDateTime& value, std::string& text) const;
    // Reads what ValueToText writes, blanks around it allowed; the fraction may be missing or longer than
    // `precision`, and is kept to 100 ns. Two digits of a compact year mean 1969 to 2068. Seconds of the day
    // or week count from the day or the Sunday of `value`, if that is valid, else from Sunday 1980-01-06.
    // False for any other text, and `value` stays.
    bool TextToValue(std::string_view text, CDateTime& value) const;

    void Serialize(CArchive& archive) override;
};

} // namespace Outils_Valeurs
