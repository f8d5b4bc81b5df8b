// XML files of this program: read within bounds, written as ISO-8859-1 in one step.
#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace Outils_Configuration {

// The document of a file of at most `limit` bytes, with all that can be written again: comments, instructions
// and blank text included. Null for a file that is missing, not readable, larger, not well formed, or has a
// document type: no file of this program has one, and the entities that it could define are not for us.
std::unique_ptr<pugi::xml_document> LoadXmlDocument(const std::filesystem::path& path, std::size_t limit);

// Writes the document, indented, as ISO-8859-1; a character beyond it becomes a character reference. The
// declaration is the caller's. False on any failure, also for a document that would take more than `limit`
// bytes or could not be loaded again; the old file is whole then.
bool SaveXmlDocument(const pugi::xml_document& document, const std::filesystem::path& path,
                     std::size_t limit);

// The first child element of this name; null if there is none. Instructions have names too, and are none.
pugi::xml_node FindElement(pugi::xml_node parent, const char* name);

// Text or character data.
bool IsTextNode(pugi::xml_node node);
// All of the element's own text: a comment cuts it in two.
std::string GetElementText(pugi::xml_node element);

} // namespace Outils_Configuration
