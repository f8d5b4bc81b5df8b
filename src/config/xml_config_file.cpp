#include "config/xml_config.h"

#include "foundation/files.h"
#include "foundation/text.h"

#include <optional>

namespace Outils_Configuration {

namespace {

// Everything is kept that can be written again. A blank alone can be a value, as of a separator. What stands
// outside the root element is kept too, to be found and refused.
constexpr unsigned int kParsing = pugi::parse_full | pugi::parse_ws_pcdata_single | pugi::parse_fragment;

// One root element and no text beside it. A document type is refused: settings have none, and the entities
// that it could define would be lost.
bool IsWellFormed(const pugi::xml_document& document) {
    int elements = 0;
    for (const pugi::xml_node node : document.children()) {
        switch (node.type()) {
        case pugi::node_element: ++elements; break;
        case pugi::node_declaration:
        case pugi::node_pi:
        case pugi::node_comment: break;
        default: return false;
        }
    }
    return elements == 1;
}

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

// Thrown out of the library's printing, which has no other way to be stopped.
struct STooLarge {};

class CBoundedWriter : public pugi::xml_writer {
  public:
    void write(const void* data, std::size_t size) override {
        if (m_text.size() + size > CXmlConfigFile::kMaximumSize) throw STooLarge{};
        m_text.append(static_cast<const char*>(data), size);
    }
    std::string Take() { return std::move(m_text); }

  private:
    std::string m_text;
};

std::optional<std::string> Print(const pugi::xml_document& document, unsigned int format) {
    CBoundedWriter writer;
    try {
        document.save(writer, "\t", format, pugi::encoding_utf8);
    } catch (const STooLarge&) {
        return std::nullopt;
    }
    return writer.Take();
}

// Characters that the encoding lacks become references; half a surrogate pair, which XML cannot hold, becomes
// the replacement character.
std::string ToLatin1(const std::string& utf8) {
    const std::u16string units = Outils_Texte::Utf8ToUtf16(utf8);
    std::string bytes;
    bytes.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        std::uint32_t point = units[i];
        if (point < 0x100) {
            bytes += static_cast<char>(static_cast<unsigned char>(point));
            continue;
        }
        if ((point & 0xF800) == 0xD800) {
            const bool pair = point < 0xDC00 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00;
            point = pair ? 0x10000 + ((point & 0x3FF) << 10) + (units[++i] & 0x3FFu) : 0xFFFDu;
        }
        bytes += "&#" + std::to_string(point) + ";";
    }
    return bytes;
}

} // namespace

CXmlConfigFile::CXmlConfigFile() : m_document(std::make_unique<pugi::xml_document>()) {
    SetDeclaration(*m_document);
    m_document->append_child("configuration");
}

bool CXmlConfigFile::Load(const std::filesystem::path& path) {
    const auto bytes = Outils_Fichiers::ReadWholeFile(path, kMaximumSize);
    if (!bytes) return false;
    auto document = std::make_unique<pugi::xml_document>();
    if (!document->load_buffer(bytes->data(), bytes->size(), kParsing) || !IsWellFormed(*document))
        return false;
    SetDeclaration(*document);
    m_document = std::move(document);
    Bind();
    return true;
}

bool CXmlConfigFile::Save(const std::filesystem::path& path) const {
    // Deep nesting makes indentation grow with the square of the depth; such a document is written as it is.
    auto text = Print(*m_document, pugi::format_indent);
    if (!text) text = Print(*m_document, pugi::format_raw);
    if (!text) return false;
    const std::string bytes = ToLatin1(*text);
    // What could not be loaded again must not replace a good file.
    pugi::xml_document check;
    if (bytes.size() > kMaximumSize || !check.load_buffer(bytes.data(), bytes.size(), kParsing)) return false;
    return Outils_Fichiers::SaveAtomically(
        path, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
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
