// Settings that live in an XML document: a tree of named, defaulted values, each bound to its node.
//
// Values are not copied out of the document. A read parses the node's text at that moment, a write changes
// that text, and saving the file is saving the document: keys, sections and comments that the tree does not
// know survive. All of it belongs to the main thread; a background thread is given copies of what it needs.
#pragma once

#include <pugixml.hpp>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Outils_Configuration {

// How a value is written: as the text of a child element, or as an attribute of the section's element.
enum class EForm { element, attribute };

// One setting. Getters give the value of the present text, or the value of the default text when the present
// one does not parse; the text stays in the document.
class CXmlConfigValue {
  public:
    CXmlConfigValue(std::string key, std::string defaultText, EForm form)
        : m_key(std::move(key)), m_default(std::move(defaultText)), m_form(form) {}
    virtual ~CXmlConfigValue() = default;
    CXmlConfigValue(const CXmlConfigValue&) = delete;
    CXmlConfigValue& operator=(const CXmlConfigValue&) = delete;

    const std::string& GetDefault() const { return m_default; }
    EForm GetForm() const { return m_form; }

    // The raw text, UTF-8.
    std::string GetString() const;
    void SetString(const std::string& text);
    // Numbers by the rules of foundation/numbers.h; 0 when the default does not parse either.
    std::int32_t GetInt() const;
    void SetInt(std::int32_t value);
    std::uint32_t GetUInt() const;
    void SetUInt(std::uint32_t value);
    // Finite: "inf", "nan" and what no double holds do not parse.
    double GetDouble() const;
    // Six decimals.
    void SetDouble(double value);
    float GetFloat() const { return static_cast<float>(GetDouble()); }
    // "true", "yes", "vrai", "oui" and "false", "no", "faux", "non", in any case; written as "true" or
    // "false".
    bool GetBool() const;
    void SetBool(bool value);
    // The first character of the text; of the default if the text is empty; "?" for a text that is not one
    // character long under an empty default. One UTF-16 unit.
    char16_t GetChar() const;
    void SetChar(char16_t value);
    // Alpha, red, green and blue from the highest byte down; eight hexadecimal digits, opaque black when
    // nothing parses.
    std::uint32_t GetColor() const;
    void SetColor(std::uint32_t argb);

    // Ties the value to its node under the section's element; a missing node is made, with the default text.
    void Bind(pugi::xml_node section);

  private:
    // What `parse` makes of the text, else of the default, else `last`.
    template <class Parse, class T>
    T Read(Parse parse, T last) const;

    std::string m_key;
    std::string m_default;
    EForm m_form;
    pugi::xml_node m_element; // null until bound, and for an attribute
    pugi::xml_attribute m_attribute;
};

// A setting that holds one word of a table and is read and written by the word's number.
class CXmlConfigEnumeration : public CXmlConfigValue {
  public:
    // `words` must outlive the value and hold at least one word.
    CXmlConfigEnumeration(std::string key, std::string defaultText, EForm form,
                          std::span<const std::string_view> words)
        : CXmlConfigValue(std::move(key), std::move(defaultText), form), m_words(words) {}

    // The number of the first word that equals the text in any case, else of the default text, else 0.
    int Get() const;
    // Writes the word of the number; a number without a word counts as 0.
    void Set(int number);

  private:
    std::span<const std::string_view> m_words;
};

// A named element that holds sections and values. It owns both.
class CXmlConfigSection {
  public:
    explicit CXmlConfigSection(std::string name) : m_name(std::move(name)) {}
    CXmlConfigSection(const CXmlConfigSection&) = delete;
    CXmlConfigSection& operator=(const CXmlConfigSection&) = delete;

    const std::string& GetName() const { return m_name; }

    // What is added takes effect at the next Bind.
    CXmlConfigSection& AddSection(std::string name);
    template <class T = CXmlConfigValue, class... Arguments>
    T& AddValue(Arguments&&... arguments) {
        auto value = std::make_unique<T>(std::forward<Arguments>(arguments)...);
        T& reference = *value;
        m_values.push_back(std::move(value));
        return reference;
    }
    // Null for a name that was not added.
    CXmlConfigSection* FindSection(std::string_view name) const;

    // Finds or makes the section's element under `parent`, then binds the sections and the values in it.
    void Bind(pugi::xml_node parent);

  private:
    std::string m_name;
    std::vector<std::unique_ptr<CXmlConfigSection>> m_sections;
    std::vector<std::unique_ptr<CXmlConfigValue>> m_values;
};

} // namespace Outils_Configuration
