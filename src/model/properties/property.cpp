#include "model/properties/property.h"

#include "foundation/numbers.h"
#include "foundation/text.h"
#include "foundation/texts.h"
#include "model/properties/classes.h"
#include "model/simulation_parameters.h"
#include "model/simulation_time_adaptor.h"
#include "model/words.h"
#include "values/adaptors.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace Metier_Tarvel_Proprietes {

using namespace Metier_Tarvel;
using Outils_Texte::GetText;
using Outils_Valeurs::EQuantity;

namespace {

// No text longer than this is a value: a whole file pasted by mistake is refused unread.
constexpr std::size_t kLongestText = 1000;

const Outils_Valeurs::CNumericValueAdaptor& AdaptorOf(const SForm& form, const SPropertyContext& context) {
    const auto& adaptors = context.adaptors;
    switch (form.form) {
    case EPropertyForm::quantity: return adaptors.Get(static_cast<EQuantity>(form.detail));
    case EPropertyForm::latitude: return adaptors.GetGeographicPosition().latitude;
    case EPropertyForm::longitude: return adaptors.GetGeographicPosition().longitude;
    default: return adaptors.GetNumeric();
    }
}

std::string ShowInteger(const SForm& form, std::int64_t value) {
    if (form.form == EPropertyForm::color) {
        char text[10];
        std::snprintf(text, sizeof text, "#%08X", static_cast<unsigned>(value));
        return text;
    }
    const bool isWord = form.form == EPropertyForm::word;
    const auto list = static_cast<EWordList>(form.detail);
    if (!isWord || value < 0 || value >= GetWordList(list).count) return std::to_string(value);
    return std::string(GetWord(list, static_cast<std::int32_t>(value)));
}

std::string ShowNumber(const SForm& form, const SPropertyContext& context, double value) {
    std::string text;
    AdaptorOf(form, context).ValueToText(value, text);
    return form.unit == EText::none ? text : text.append(" ").append(GetText(form.unit));
}

// False for a value without a text; `text` then says so.
bool ShowTime(const SForm& form, const SPropertyContext& context, CDateTime value, std::string& text) {
    if (form.form == EPropertyForm::time) return context.time.ValueToText(value, context.parameters, text);
    return context.adaptors.GetDateTimeSpan().ValueToText(ToSpan(value), text);
}

std::string ShowValue(const SForm& form, const SPropertyContext& context, const CPropertyValue& value) {
    if (const auto* flag = std::get_if<bool>(&value))
        return std::string(GetText(*flag ? EText::yes : EText::no));
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return ShowInteger(form, *integer);
    if (const auto* number = std::get_if<double>(&value)) return ShowNumber(form, context, *number);
    if (const auto* text = std::get_if<std::string>(&value)) return Outils_Texte::ReplaceControls(*text);
    std::string text;
    ShowTime(form, context, std::get<CDateTime>(value), text);
    return text;
}

std::optional<std::int64_t> ParseWhole(std::string_view text, int base = 10) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<std::int64_t> ReadWord(EWordList list, std::string_view text) {
    for (std::int32_t i = 0; i < GetWordList(list).count; ++i)
        if (Outils_Texte::EqualsNoCase(GetWord(list, i), text)) return i;
    return std::nullopt;
}

std::optional<double> ReadNumberAsTyped(const SForm& form, const SPropertyContext& context,
                                        std::string_view text) {
    double value = 0.0;
    std::string_view rest;
    if (!AdaptorOf(form, context).TextToValue(text, value, &rest)) return std::nullopt;
    rest = Outils_Texte::TrimBlanks(rest);
    if (!rest.empty() && (form.unit == EText::none || rest != GetText(form.unit))) return std::nullopt;
    return value;
}

std::optional<double> ReadNumber(const SForm& form, const SPropertyContext& context, std::string_view text) {
    const auto value = ReadNumberAsTyped(form, context, text);
    if (value || std::ranges::count(text, ',') != 1) return value;
    std::string pointed(text);
    std::ranges::replace(pointed, ',', '.');
    return ReadNumberAsTyped(form, context, pointed);
}

std::optional<CDateTime> ReadTime(const SForm& form, const SPropertyContext& context, CDateTime present,
                                  std::string_view text) {
    CDateTime value = present; // a notation without a day takes the day of the present value
    if (form.form == EPropertyForm::time) {
        if (!context.time.TextToValue(text, context.parameters, value)) return std::nullopt;
    } else {
        Outils_Temps::CDateTimeSpan span;
        if (!context.adaptors.GetDateTimeSpan().TextToValue(text, span)) return std::nullopt;
        value = ToStoredTime(span);
    }
    std::string shown;
    if (!ShowTime(form, context, value, shown)) return std::nullopt;
    return value;
}

template <class Value>
std::optional<CPropertyValue> Wrap(const std::optional<Value>& value) {
    return value ? std::optional<CPropertyValue>(*value) : std::nullopt;
}

std::optional<CPropertyValue> ReadValue(const SForm& form, const SPropertyContext& context,
                                        const CPropertyValue& present, std::string_view text) {
    switch (form.form) {
    case EPropertyForm::quantity:
    case EPropertyForm::number:
    case EPropertyForm::latitude:
    case EPropertyForm::longitude: return Wrap(ReadNumber(form, context, text));
    case EPropertyForm::whole: return Wrap(ParseWhole(text));
    case EPropertyForm::word: return Wrap(ReadWord(static_cast<EWordList>(form.detail), text));
    case EPropertyForm::flag:
        if (Outils_Texte::EqualsNoCase(text, GetText(EText::yes))) return true;
        if (Outils_Texte::EqualsNoCase(text, GetText(EText::no))) return false;
        return std::nullopt;
    case EPropertyForm::text: return Outils_Texte::ReplaceControls(text);
    case EPropertyForm::color:
        if (text.size() != 9 || text.front() != '#') return std::nullopt;
        return Wrap(ParseWhole(text.substr(1), 16));
    case EPropertyForm::time:
    case EPropertyForm::offset: return Wrap(ReadTime(form, context, std::get<CDateTime>(present), text));
    case EPropertyForm::shown: break;
    }
    return std::nullopt;
}

EText RefusalOf(EPropertyForm form) {
    switch (form) {
    case EPropertyForm::latitude:
    case EPropertyForm::longitude: return EText::invalidAngle;
    case EPropertyForm::time:
    case EPropertyForm::offset: return EText::invalidTime;
    default: return EText::invalidValue;
    }
}

} // namespace

std::string ShowLine(const SPropertyContext& context, const CObject& object) {
    std::string line;
    for (const SProperty* row : FindPropertyClass(object)->rows) {
        if (!line.empty()) line += ", ";
        if (row->label != EText::none) line.append(GetText(row->label)).append(" ");
        line += Show(*row, context, object);
    }
    return line;
}

std::string Show(const SProperty& row, const SPropertyContext& context, const CObject& object) {
    if (row.show) return Outils_Texte::ReplaceControls(row.show(context, object));
    if (row.get) return ShowValue(row.form, context, row.get(object));
    if (!row.isInline || row.isList) return {};
    const CObject* child = GetChild(row, object, 0);
    return child ? ShowLine(context, *child) : std::string();
}

SReading Read(const SProperty& row, const SPropertyContext& context, const CObject& object,
              std::string_view text) {
    const SReading refused{std::nullopt, RefusalOf(row.form.form)};
    if (!row.set) return refused;
    const CPropertyValue present = row.get(object);
    if (text == ShowValue(row.form, context, present)) return {present};
    if (text.size() > kLongestText) return refused;
    auto value = ReadValue(row.form, context, present,
                           row.form.form == EPropertyForm::text ? text : Outils_Texte::TrimBlanks(text));
    if (!value || (row.canHold && !row.canHold(*value))) return refused;
    return {std::move(value)};
}

} // namespace Metier_Tarvel_Proprietes
