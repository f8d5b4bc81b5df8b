#include "values/numeric_value_adaptor.h"

#include "foundation/numbers.h"
#include "foundation/serialize.h"
#include "values/characters.h"

#include <algorithm>
#include <cmath>

namespace Outils_Valeurs {

namespace {

// No number is longer, and no archive makes a text longer.
constexpr std::int32_t kMaximumWidth = 400;

void Replace(std::string& text, char16_t from, char16_t to) {
    const std::string old = CharacterToText(from);
    const std::string replacement = CharacterToText(to);
    for (std::size_t at = 0; (at = text.find(old, at)) != std::string::npos; at += replacement.size())
        text.replace(at, old.size(), replacement);
}

} // namespace

bool CNumericValueAdaptor::ValueToText(double value, std::string& text) const {
    text = FormatDecimal(value, precision);
    if (showPlusSign && text.front() != '-') text.insert(0, 1, '+');
    const auto wanted = static_cast<std::size_t>(std::clamp(width, 0, kMaximumWidth));
    if (text.size() < wanted) {
        const bool sign = text.front() == '-' || text.front() == '+';
        if (std::isfinite(value))
            text.insert(sign ? 1 : 0, wanted - text.size(), '0');
        else
            text.insert(0, wanted - text.size(), ' ');
    }
    if (decimalSeparator != internalSeparator) Replace(text, internalSeparator, decimalSeparator);
    return true;
}

bool CNumericValueAdaptor::TextToValue(std::string_view text, double& value, std::string_view* rest) const {
    std::string copy(text);
    std::size_t replacedAt = std::string::npos;
    std::size_t grown = 0; // bytes by which the separator is longer in `text` than in the copy
    if (decimalSeparator != internalSeparator) {
        const std::string shown = CharacterToText(decimalSeparator);
        const std::string internal = CharacterToText(internalSeparator);
        replacedAt = copy.find(shown);
        if (replacedAt != std::string::npos) {
            copy.replace(replacedAt, shown.size(), internal);
            grown = shown.size() - internal.size();
        }
    }
    const auto number = Outils_Texte::ParseDoublePrefix(copy);
    if (!number || !std::isfinite(number->value)) return false;
    std::size_t used = number->used;
    if (replacedAt < used) used += grown; // wraps around for a shorter separator, as the sum does
    if (rest)
        *rest = text.substr(used);
    else if (used != text.size())
        return false;
    value = number->value;
    return true;
}

void CNumericValueAdaptor::Serialize(CArchive& archive) {
    Outils_Objets::CSchema schema(archive, 2, 2);
    CObjetMetier::Serialize(archive);
    schema.Field(precision);
    schema.Field(decimalSeparator);
    schema.Field(internalSeparator);
    schema.Field(showPlusSign);
    schema.Field(width);
}

} // namespace Outils_Valeurs
