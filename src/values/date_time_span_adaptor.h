// A length of time as text: "1 02:03:04.500", or its total in one unit.
#pragma once

#include "config/enumerations.h"
#include "foundation/date_time.h"
#include "values/physical_value_adaptor.h"

namespace Outils_Valeurs {

using Outils_Configuration::ESpanNotation;
using Outils_Temps::CDateTimeSpan;

class CDateTimeSpanAdaptor
    : public Outils_Objets::TRuntimeClass<CDateTimeSpanAdaptor, Outils_Objets::CObjetMetier> {
  public:
    static constexpr std::string_view kClassName = "CDateTimeSpanAdaptor";

    // The units of the total are in the table from the start.
    CDateTimeSpanAdaptor();

    ESpanNotation notation = ESpanNotation::dayHourMinuteSecond;
    std::int32_t precision = 3; // decimals of the seconds; below zero counts as 6, above 7 as 7
    char16_t hourSeparator = u':';
    char16_t decimalSeparator = u'.';
    CPhysicalValueAdaptor total; // seconds; its own precision and separator

    // False for an invalid span: `text` then says so. A negative span is a "-" and its magnitude.
    bool ValueToText(CDateTimeSpan value, std::string& text) const;
    // Reads what ValueToText writes in the present notation, with "-" or "+" in front; hours beyond 23 are
    // taken when no days are given. False for any other text, and `value` stays.
    bool TextToValue(std::string_view text, CDateTimeSpan& value) const;

    void Serialize(CArchive& archive) override;
};

} // namespace Outils_Valeurs
