#include "exchange/parameter_file_exchange.h"

#include "foundation/numbers.h"
#include "foundation/text.h"
#include "values/date_time_adaptor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace Persistance_Parametres {

using Metier_Tarvel::ToSpan;
using Metier_Tarvel::ToStoredTime;
using Outils_Temps::CDateTimeSpan;
using pugi::xml_node;

namespace {

constexpr const char* kLeverArm[] = {"xv1", "xv2", "xv3"};
constexpr const char* kMisalignment[] = {"heading", "roll", "pitch"};
constexpr const char* kVector[] = {"x", "y", "z"};

// Of an element's text, line breaks and indentation are no part.
std::string_view Trim(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

double ToNumber(std::string_view text) {
    const auto value = Outils_Texte::ParseDouble(Trim(text));
    if (!value || !std::isfinite(*value)) CParameterExchange::Fail();
    return *value;
}

std::int32_t ToInteger(std::string_view text) {
    const auto value = Outils_Texte::ParseInt(Trim(text));
    // The conversion clips; a number beyond the type is none of ours.
    if (!value || static_cast<double>(*value) != ToNumber(text)) CParameterExchange::Fail();
    return *value;
}

bool ToBool(std::string_view text) {
    constexpr std::array<std::string_view, 4> yes = {"yes", "true", "on", "1"};
    constexpr std::array<std::string_view, 4> no = {"no", "false", "off", "0"};
    text = Trim(text);
    if (std::find(yes.begin(), yes.end(), text) != yes.end()) return true;
    if (std::find(no.begin(), no.end(), text) == no.end()) CParameterExchange::Fail();
    return false;
}

std::string ToText(double value, ENumberText form = ENumberText::shortest) {
    if (!std::isfinite(value)) CParameterExchange::Fail();
    switch (form) {
    case ENumberText::fixed4: return Outils_Texte::FormatFixed(value, 4);
    case ENumberText::fixed12: return Outils_Texte::FormatFixed(value, 12);
    case ENumberText::general: {
        char text[32];
        constexpr int significantDigits = 6;
        const auto result =
            std::to_chars(text, text + sizeof text, value, std::chars_format::general, significantDigits);
        return std::string(text, result.ptr);
    }
    default: return Outils_Texte::FormatShortest(value);
    }
}

// A text that would come back as another one must not be written: bytes that are no UTF-8, or halves of
// characters and control characters, which have no place in XML.
const std::string& CheckText(const std::string& text) {
    const std::u16string units = Outils_Texte::Utf8ToUtf16(text);
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i] < u' ' && units[i] != u'\t' && units[i] != u'\n' && units[i] != u'\r')
            CParameterExchange::Fail();
        if ((units[i] & 0xF800) != 0xD800) continue;
        if (units[i] >= 0xDC00 || i + 1 == units.size() || (units[i + 1] & 0xFC00) != 0xDC00)
            CParameterExchange::Fail();
        ++i;
    }
    if (Outils_Texte::Utf16ToUtf8(units) != text) CParameterExchange::Fail();
    return text;
}

// The nearest number, which has the shortest text: a sum of seconds and fraction may miss it by the last bit.
double ToSeconds(CDateTime time) {
    return static_cast<double>(ToSpan(time).GetTicks()) / static_cast<double>(Outils_Temps::kTicksPerSecond);
}

Outils_Valeurs::CDateTimeAdaptor MakeDates() {
    Outils_Valeurs::CDateTimeAdaptor dates;
    dates.notation = Outils_Configuration::EDateNotation::yearMonthDay;
    dates.dateSeparator = u'-';
    dates.timeSeparator = u'T';
    dates.precision = 7;
    return dates;
}

} // namespace

xml_node CParameterExchange::Element(xml_node parent, const char* name) const {
    const xml_node element =
        IsLoading() ? Outils_Configuration::FindElement(parent, name) : parent.append_child(name);
    if (!element) Fail();
    return element;
}

xml_node CParameterExchange::OptionalElement(xml_node parent, const char* name, bool wanted) const {
    if (IsLoading()) return Outils_Configuration::FindElement(parent, name);
    return wanted ? Element(parent, name) : xml_node();
}

void CParameterExchange::PutAttribute(xml_node element, const char* name, const std::string& text) const {
    if (!element.append_attribute(name).set_value(text.c_str())) Fail();
}

void CParameterExchange::Attribute(xml_node element, const char* name, std::string& value) const {
    if (!IsLoading()) {
        PutAttribute(element, name, CheckText(value));
        return;
    }
    const pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute) Fail();
    value = attribute.value();
}

void CParameterExchange::Attribute(xml_node element, const char* name, double& value) const {
    std::string text = IsLoading() ? std::string() : ToText(value);
    Attribute(element, name, text);
    if (IsLoading()) value = ToNumber(text);
}

void CParameterExchange::Attribute(xml_node element, const char* name, std::int32_t& value) const {
    std::string text = std::to_string(value);
    Attribute(element, name, text);
    if (IsLoading()) value = ToInteger(text);
}

void CParameterExchange::Attribute(xml_node element, const char* name, bool& value) const {
    std::string text = value ? "true" : "false";
    Attribute(element, name, text);
    if (IsLoading()) value = ToBool(text);
}

void CParameterExchange::Text(xml_node parent, const char* name, double& value, ENumberText form) const {
    const xml_node element = Element(parent, name);
    if (IsLoading())
        value = ToNumber(Outils_Configuration::GetElementText(element));
    else if (!element.text().set(ToText(value, form).c_str()))
        Fail();
}

void CParameterExchange::Text(xml_node parent, const char* name, std::int32_t& value) const {
    const xml_node element = Element(parent, name);
    if (IsLoading())
        value = ToInteger(Outils_Configuration::GetElementText(element));
    else if (!element.text().set(std::to_string(value).c_str()))
        Fail();
}

void CParameterExchange::Attributes(xml_node element, std::span<const char* const> names,
                                    std::initializer_list<double*> values) const {
    auto name = names.begin();
    for (double* value : values) Attribute(element, *name++, *value);
}

void CParameterExchange::Attributes(xml_node element, Metier_Tarvel::CLeverArm& leverArm) const {
    Attributes(element, kLeverArm, {&leverArm.xv1, &leverArm.xv2, &leverArm.xv3});
}

void CParameterExchange::Attributes(xml_node element, Metier_Tarvel::CMisalignment& misalignment) const {
    Attributes(element, kMisalignment, {&misalignment.heading, &misalignment.roll, &misalignment.pitch});
}

void CParameterExchange::Attributes(xml_node element, Metier_Tarvel::CTrvSpeedBias& bias) const {
    Attributes(element, kVector, {&bias.x, &bias.y, &bias.z});
}

void CParameterExchange::Seconds(xml_node element, const char* name, CDateTime& time) const {
    double seconds = ToSeconds(time);
    OptionalAttribute(element, name, seconds, time != CDateTime());
    if (!IsLoading() || !element.attribute(name)) return;
    const CDateTimeSpan span = CDateTimeSpan::FromSeconds(seconds);
    if (!span.IsValid()) Fail();
    time = ToStoredTime(span);
}

void CParameterExchange::Period(xml_node element, CDateTime& begin, CDateTime& end) const {
    Time(element, "from", begin);
    Time(element, "to", end);
}

void CParameterExchange::Time(xml_node element, const char* name, CDateTime& time) const {
    std::string text;
    if (!IsLoading()) {
        if (!m_parameters.hasUtcReference)
            text = ToText(ToSeconds(time));
        else if (!MakeDates().ValueToText(m_parameters.utcReference + ToSpan(time), text))
            Fail();
        PutAttribute(element, name, text);
        return;
    }
    Attribute(element, name, text);
    CDateTimeSpan span = CDateTimeSpan::Invalid();
    if (const auto seconds = Outils_Texte::ParseDouble(Trim(text)))
        span.SetFromSeconds(*seconds);
    else if (CDateTime date; m_parameters.hasUtcReference && MakeDates().TextToValue(Trim(text), date))
        span = date - m_parameters.utcReference;
    if (!span.IsValid()) Fail();
    time = ToStoredTime(span);
}

void CParameterExchange::Channel(xml_node element, const char* name, CTrvDataFileChannel*& channel) const {
    if (!IsLoading()) {
        const auto file = std::find_if(m_files.begin(), m_files.end(), [&](const auto& entry) {
            return channel && entry.second == channel->file;
        });
        if (file == m_files.end()) Fail();
        std::string text = file->first + "." + channel->name;
        Attribute(element, name, text);
        return;
    }
    std::string text;
    Attribute(element, name, text);
    // Channel names may hold further points.
    const std::size_t point = text.find('.');
    const auto file = std::find_if(m_files.begin(), m_files.end(), [&](const auto& entry) {
        return entry.first == std::string_view(text).substr(0, point);
    });
    if (point == std::string::npos || file == m_files.end()) Fail();
    channel = file->second->FindChannel(std::string_view(text).substr(point + 1));
    if (!channel) Fail();
}

} // namespace Persistance_Parametres
