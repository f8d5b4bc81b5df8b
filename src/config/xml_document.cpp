#include "config/xml_document.h"

#include "foundation/files.h"
#include "foundation/text.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace Outils_Configuration {

namespace {

// A blank alone can be a value, as of a separator. Content outside the root element is kept too, to be
// found and refused.
constexpr unsigned int kParsing = pugi::parse_full | pugi::parse_ws_pcdata_single | pugi::parse_fragment;

// One root element, no text beside it and no document type.
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

// Character data with characters beyond Latin-1.
class CUnwritableData : public pugi::xml_tree_walker {
  public:
    bool for_each(pugi::xml_node& node) override {
        // The lead bytes of those characters are the only bytes from C4 up.
        const std::string_view text = node.value();
        if (node.type() == pugi::node_cdata && std::any_of(text.begin(), text.end(), [](char c) {
                return static_cast<unsigned char>(c) >= 0xC4;
            }))
            m_found.push_back(node);
        return true;
    }
    // A character reference means nothing inside character data, so it becomes ordinary text.
    void Open() const {
        for (const pugi::xml_node& node : m_found) {
            pugi::xml_node parent = node.parent();
            parent.insert_child_before(pugi::node_pcdata, node).set_value(node.value());
            parent.remove_child(node);
        }
    }

  private:
    std::vector<pugi::xml_node> m_found;
};

// Thrown out of the library's printing, which has no other way to be stopped.
struct STooLarge {};

class CBoundedWriter : public pugi::xml_writer {
  public:
    explicit CBoundedWriter(std::size_t limit) : m_limit(limit) {}

    void write(const void* data, std::size_t size) override {
        if (m_text.size() + size > m_limit) throw STooLarge{};
        m_text.append(static_cast<const char*>(data), size);
    }
    std::string Take() { return std::move(m_text); }

  private:
    std::size_t m_limit;
    std::string m_text;
};

std::optional<std::string> Print(const pugi::xml_document& document, unsigned int format, std::size_t limit) {
    CBoundedWriter writer(limit);
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

std::unique_ptr<pugi::xml_document> LoadXmlDocument(const std::filesystem::path& path, std::size_t limit) {
    const auto bytes = Outils_Fichiers::ReadWholeFile(path, limit);
    if (!bytes) return nullptr;
    auto document = std::make_unique<pugi::xml_document>();
    if (!document->load_buffer(bytes->data(), bytes->size(), kParsing) || !IsWellFormed(*document))
        return nullptr;
    return document;
}

bool SaveXmlDocument(const pugi::xml_document& document, const std::filesystem::path& path,
                     std::size_t limit) {
    pugi::xml_document written;
    written.reset(document);
    CUnwritableData unwritable;
    written.traverse(unwritable);
    unwritable.Open();
    // Deep nesting makes indentation grow with the square of the depth; such a document is written as it is.
    auto text = Print(written, pugi::format_indent, limit);
    if (!text) text = Print(written, pugi::format_raw, limit);
    if (!text) return false;
    const std::string bytes = ToLatin1(*text);
    // What could not be loaded again must not replace a good file.
    pugi::xml_document check;
    if (bytes.size() > limit || !check.load_buffer(bytes.data(), bytes.size(), kParsing)) return false;
    return Outils_Fichiers::SaveAtomically(
        path, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

pugi::xml_node FindElement(pugi::xml_node parent, const char* name) {
    for (const pugi::xml_node child : parent.children(name))
        if (child.type() == pugi::node_element) return child;
    return {};
}

bool IsTextNode(pugi::xml_node node) {
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

std::string GetElementText(pugi::xml_node element) {
    std::string text;
    for (const pugi::xml_node child : element.children())
        if (IsTextNode(child)) text += child.value();
    return text;
}

} // namespace Outils_Configuration
