#include "config/config_file.h"

namespace Outils_Configuration {

namespace {

// The section at a path of names joined by slashes, made with all above it where it is missing.
CXmlConfigSection& ObtainSection(CXmlConfigFile& file, std::string_view path) {
    const auto obtain = [](auto& holder, std::string_view name) -> CXmlConfigSection& {
        CXmlConfigSection* present = holder.FindSection(name);
        return present ? *present : holder.AddSection(std::string(name));
    };
    std::size_t slash = path.find('/');
    CXmlConfigSection* section = &obtain(file, path.substr(0, slash));
    while (slash != std::string_view::npos) {
        path.remove_prefix(slash + 1);
        slash = path.find('/');
        section = &obtain(*section, path.substr(0, slash));
    }
    return *section;
}

} // namespace

CTrvCnfConfigFile::CTrvCnfConfigFile() {
    m_values.reserve(std::size(kSchema));
    for (const SSchemaRow& row : kSchema) {
        CXmlConfigSection& section = ObtainSection(*this, row.section);
        const std::string key(row.key);
        const std::string defaultText(row.defaultText);
        if (const auto words = WordsOf(row.kind); !words.empty())
            m_values.push_back(&section.AddValue<CXmlConfigEnumeration>(key, defaultText, row.form, words));
        else
            m_values.push_back(&section.AddValue(key, defaultText, row.form));
    }
    Bind();
}

// The constructor made an enumeration of every key that has words, and only such keys come here.
int CTrvCnfConfigFile::GetNumber(SKey key) const {
    return static_cast<const CXmlConfigEnumeration&>(GetValue(key)).Get();
}

void CTrvCnfConfigFile::SetNumber(SKey key, int number) {
    static_cast<CXmlConfigEnumeration&>(GetValue(key)).Set(number);
}

} // namespace Outils_Configuration
