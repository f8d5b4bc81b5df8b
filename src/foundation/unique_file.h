// New files beside others, on their way to a name. Any thread.
#pragma once

#include "foundation/descriptor.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

namespace Outils_Fichiers {

// Creates a file of a new name in `folder`, for writing; `path` receives the name, and stays as it is on
// failure. The name does not grow with that of another file, which may have the longest that the file system
// takes.
CDescriptor CreateUnique(const std::filesystem::path& folder, std::string_view prefix, unsigned mode,
                         std::filesystem::path& path);

// Creates a file that goes with its last descriptor, so that a program that is killed leaves nothing. For
// reading and writing. Closed where the file system or the platform has no such files.
CDescriptor CreateNameless(const std::filesystem::path& folder);
// A path by which this process opens what the descriptor has open, a nameless file too.
std::filesystem::path GetLink(const CDescriptor& file);
// Gives a nameless file a new name in `folder`; `path` receives it. Some file systems refuse.
bool LinkUnique(const CDescriptor& file, const std::filesystem::path& folder, std::string_view prefix,
                std::filesystem::path& path);

// False when not all of it could be written.
bool WriteAll(const CDescriptor& file, std::span<const std::uint8_t> bytes);

} // namespace Outils_Fichiers
