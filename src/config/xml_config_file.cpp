#include "config/xml_config_file.h"

#include "config/xml_document.h"

namespace Outils_Configuration {

namespace {

// The document says how it is written, whatever the file said from which it came.
void SetDeclaration(pugi::xml_document& document) {
    for (pugi::xml_node node = document.first_child(); node;) {
        const pugi::xml_node next = node.next_sibling();
        if (node.type() == pugi::node_declaration) document.remove_child(node);
        node = next;
    }
    pugi::xml_node declaration = document.prepend_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "ISO-8859-1";
    declaration.append_attribute("standalone") = "yes";
}

} // namespace

CXmlConfigFile::CXmlConfigFile() : m_document(std::make_unique<pugi::xml_document>()) {
    SetDeclaration(*m_document);
    m_document->append_child("configuration");
}

bool CXmlConfigFile::Load(const std::filesystem::path& path) {
    auto document = LoadXmlDocument(path, kMaximumSize);
    if (!document) return false;
    SetDeclaration(*document);
    m_document = std::move(document);
    Bind();
    return true;
}

bool CXmlConfigFile::Save(const std::filesystem::path& path) const {
    return SaveXmlDocument(*m_document, path, kMaximumSize);
}

CXmlConfigSection& CXmlConfigFile::AddSection(std::string name) {
    return *m_sections.emplace_back(std::make_unique<CXmlConfigSection>(std::move(name)));
}

CXmlConfigSection* CXmlConfigFile::FindSection(std::string_view name) const {
    for (const auto& section : m_sections)
        if (section->GetName() == name) return section.get();
    return nullptr;
}

void CXmlConfigFile::Bind() {
    for (const auto& section : m_sections) section->Bind(m_document->document_element());
}

} // namespace Outils_Configuration
