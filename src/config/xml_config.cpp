#include "config/xml_config.h"

#include "config/xml_document.h"
#include "foundation/numbers.h"
#include "foundation/text.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <optional>

namespace Outils_Configuration {

namespace {

using Outils_Texte::EqualsNoCase;

std::optional<bool> ParseBool(const std::string& text) {
    constexpr std::array<std::string_view, 4> yes = {"true", "yes", "vrai", "oui"};
    constexpr std::array<std::string_view, 4> no = {"false", "no", "faux", "non"};
    for (const std::string_view word : yes)
        if (EqualsNoCase(text, word)) return true;
    for (const std::string_view word : no)
        if (EqualsNoCase(text, word)) return false;
    return std::nullopt;
}

} // namespace

template <class Parse, class T>
T CXmlConfigValue::Read(Parse parse, T last) const {
    if (const auto value = parse(GetString())) return *value;
    if (const auto value = parse(m_default)) return *value;
    return last;
}

std::string CXmlConfigValue::GetString() const {
    if (m_attribute) return m_attribute.value();
    return m_element ? GetElementText(m_element) : m_default;
}

void CXmlConfigValue::SetString(const std::string& text) {
    if (m_attribute) {
        m_attribute.set_value(text.c_str());
        return;
    }
    // An empty text has no node, as after a load.
    bool keep = !text.empty();
    for (pugi::xml_node child = m_element.first_child(); child;) {
        const pugi::xml_node next = child.next_sibling();
        if (IsTextNode(child) && !std::exchange(keep, false)) m_element.remove_child(child);
        child = next;
    }
    if (!text.empty()) m_element.text().set(text.c_str());
}

std::int32_t CXmlConfigValue::GetInt() const {
    return Read([](const std::string& text) { return Outils_Texte::ParseInt(text); }, std::int32_t{0});
}

void CXmlConfigValue::SetInt(std::int32_t value) { SetString(std::to_string(value)); }

std::uint32_t CXmlConfigValue::GetUInt() const {
    return Read([](const std::string& text) { return Outils_Texte::ParseUInt(text); }, std::uint32_t{0});
}

void CXmlConfigValue::SetUInt(std::uint32_t value) { SetString(std::to_string(value)); }

double CXmlConfigValue::GetDouble() const {
    // No setting means an infinity, and nobody who computes with one expects it.
    const auto parse = [](const std::string& text) {
        const auto number = Outils_Texte::ParseDouble(text);
        return number && std::isfinite(*number) ? number : std::nullopt;
    };
    return Read(parse, 0.0);
}

void CXmlConfigValue::SetDouble(double value) { SetString(Outils_Texte::FormatFixed(value, 6)); }

bool CXmlConfigValue::GetBool() const { return Read(ParseBool, false); }

void CXmlConfigValue::SetBool(bool value) { SetString(value ? "true" : "false"); }

char16_t CXmlConfigValue::GetChar() const {
    const std::u16string text = Outils_Texte::Utf8ToUtf16(GetString());
    if (m_default.empty()) return text.size() == 1 ? text.front() : u'?';
    // Half of a character outside the basic plane is no character.
    if (text.empty() || (text.front() & 0xF800) == 0xD800)
        return Outils_Texte::Utf8ToUtf16(m_default).front();
    return text.front();
}

void CXmlConfigValue::SetChar(char16_t value) {
    SetString(Outils_Texte::Utf16ToUtf8(std::u16string_view(&value, 1)));
}

std::uint32_t CXmlConfigValue::GetColor() const {
    return Read([](const std::string& text) { return Outils_Texte::ParseUInt(text, 16); },
                std::uint32_t{0xFF000000});
}

void CXmlConfigValue::SetColor(std::uint32_t argb) {
    char text[9];
    std::snprintf(text, sizeof text, "%08x", argb);
    SetString(text);
}

void CXmlConfigValue::Bind(pugi::xml_node section) {
    if (m_form == EForm::attribute) {
        m_attribute = section.attribute(m_key.c_str());
        if (m_attribute) return;
        m_attribute = section.append_attribute(m_key.c_str());
        m_attribute.set_value(m_default.c_str());
        return;
    }
    m_element = FindElement(section, m_key.c_str());
    if (m_element) return;
    m_element = section.append_child(m_key.c_str());
    SetString(m_default);
}

int CXmlConfigEnumeration::Get() const {
    for (const std::string& text : {GetString(), GetDefault()})
        for (std::size_t number = 0; number < m_words.size(); ++number)
            if (EqualsNoCase(text, m_words[number])) return static_cast<int>(number);
    return 0;
}

void CXmlConfigEnumeration::Set(int number) {
    const bool known = number >= 0 && static_cast<std::size_t>(number) < m_words.size();
    SetString(std::string(m_words[known ? static_cast<std::size_t>(number) : 0]));
}

CXmlConfigSection& CXmlConfigSection::AddSection(std::string name) {
    return *m_sections.emplace_back(std::make_unique<CXmlConfigSection>(std::move(name)));
}

CXmlConfigSection* CXmlConfigSection::FindSection(std::string_view name) const {
    for (const auto& section : m_sections)
        if (section->GetName() == name) return section.get();
    return nullptr;
}

void CXmlConfigSection::Bind(pugi::xml_node parent) {
    pugi::xml_node element = FindElement(parent, m_name.c_str());
    if (!element) element = parent.append_child(m_name.c_str());
    // The line break of a section that was empty would spoil the indentation of what is added.
    const pugi::xml_node only = element.first_child();
    if (only.type() == pugi::node_pcdata && !only.next_sibling() &&
        std::string_view(only.value()).find_first_not_of(" \t\r\n") == std::string_view::npos)
        element.remove_child(only);
    for (const auto& section : m_sections) section->Bind(element);
    for (const auto& value : m_values) value->Bind(element);
}

} // namespace Outils_Configuration
