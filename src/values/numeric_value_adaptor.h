// A number as text and back: the root of the adaptors through which every number passes that a person sees or
// types.
//
// An adaptor is settings and nothing else. Reading operations are const and may run on any thread while
// nobody changes the settings; those change on the main thread only. No result depends on the process locale.
// Text is UTF-8, a separator is one UTF-16 unit.
#pragma once

#include "foundation/object.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Outils_Valeurs {

using Outils_Objets::CArchive;

class CNumericValueAdaptor
    : public Outils_Objets::TRuntimeClass<CNumericValueAdaptor, Outils_Objets::CObjetMetier> {
  public:
    static constexpr std::string_view kClassName = "CNumericValueAdaptor";

    std::int32_t precision = 3; // decimals; below zero counts as 6, above 40 as 40
    char16_t decimalSeparator = u'.';
    char16_t internalSeparator = u'.'; // what the conversion itself writes and reads
    bool showPlusSign = false;
    std::int32_t width = -1; // characters at least, filled with leading zeros; -1 for none

    // Replaces `text` by the value's. Always true: infinities and NaN have a text too.
    virtual bool ValueToText(double value, std::string& text) const;
    // The number at the start of `text`. With `rest`, that receives what follows the number; without it,
    // nothing may follow. False for no number, a zero that does not begin with the digit 0 (".0"), or a
    // number that is not finite: `value` and `rest` stay.
    virtual bool TextToValue(std::string_view text, double& value, std::string_view* rest = nullptr) const;

    void Serialize(CArchive& archive) override;
};

} // namespace Outils_Valeurs
