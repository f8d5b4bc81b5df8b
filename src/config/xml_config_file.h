// A settings file: an XML document and the tree of sections bound to it. Main thread only.
#pragma once

#include "config/xml_config.h"

#include <pugixml.hpp>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Outils_Configuration {

// The document and the top-level sections. A file derived from it adds its sections in its constructor and
// ends that with Bind().
class CXmlConfigFile {
  public:
    // A larger file is taken for damaged and not loaded, and a document that has grown beyond it is not
    // saved.
    static constexpr std::size_t kMaximumSize = 4 << 20; // bytes

    // An empty document with the root element "configuration".
    CXmlConfigFile();
    virtual ~CXmlConfigFile() = default;
    CXmlConfigFile(const CXmlConfigFile&) = delete;
    CXmlConfigFile& operator=(const CXmlConfigFile&) = delete;

    // Replaces the document by the file's and binds all values to it. False for a file that is missing, not
    // readable, too large, not well formed, or has a document type: the present document stays.
    [[nodiscard]] bool Load(const std::filesystem::path& path);
    // Writes the document, indented, as ISO-8859-1; a character beyond it becomes a character reference.
    // False on any failure, and the old file is whole.
    [[nodiscard]] bool Save(const std::filesystem::path& path) const;

    CXmlConfigSection& AddSection(std::string name);
    CXmlConfigSection* FindSection(std::string_view name) const;

  protected:
    void Bind();

  private:
    std::unique_ptr<pugi::xml_document> m_document;
    std::vector<std::unique_ptr<CXmlConfigSection>> m_sections;
};

} // namespace Outils_Configuration
