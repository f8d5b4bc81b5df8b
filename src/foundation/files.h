// Whole files, read within bounds and saved without ever leaving a half-written one.
#pragma once

#include "foundation/byte_stream.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Outils_Fichiers {

// The bytes of a regular file; empty when it cannot be read, is not a regular file, or holds more than
// `limit`.
std::optional<std::vector<std::uint8_t>> ReadWholeFile(const std::filesystem::path& path,
                                                       std::uint64_t limit);

// The first bytes of a regular file, at most `limit`; empty when it cannot be read or is not a regular file.
std::optional<std::vector<std::uint8_t>> ReadFileHead(const std::filesystem::path& path, std::size_t limit);

// Replaces the file's content as one step: writes beside it, flushes to the disk, renames. A link is
// followed, the mode of an existing file is kept. False on any failure, and the old file is whole.
bool SaveAtomically(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

// Whether files can be made in the folder, as far as its rights show.
bool CanWriteInto(const std::filesystem::path& folder);

// Writes in place, creating or truncating; for files that nobody else knows yet. False on any failure.
bool WriteWholeFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

// The file of the running executable; empty when the platform does not give it.
std::filesystem::path GetExecutablePath();

// Makes an empty file of a new unique name in the folder for temporary files. Empty on failure.
std::optional<std::filesystem::path> CreateTemporaryFile(std::string_view prefix);

} // namespace Outils_Fichiers
