// Relative paths as project and batch files hold them: in the form of the original platform
// (".\data\x.tarin"), so that a project folder can be carried between systems. Reading takes both separators.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Outils_Fichiers {

// The path from the folder `from` to the file `to`, with backslashes and a leading "." or "..". Empty when
// there is none: one of them is not absolute, or they lie on different volumes. Does not follow links, and
// the file need not exist.
std::optional<std::string> RelativePathTo(const std::filesystem::path& from, const std::filesystem::path& to);

// True unless the text starts with a separator or a drive letter and colon.
bool IsRelativePath(std::string_view text);

// `relative` (either separator) below `folder`, with "." and ".." worked out.
std::filesystem::path Combine(const std::filesystem::path& folder, std::string_view relative);

// Against the present folder; the path itself when that folder does not exist.
std::filesystem::path ToAbsolute(const std::filesystem::path& path);

// UTF-8 text of a path and back.
std::string ToText(const std::filesystem::path& path);
std::filesystem::path FromText(std::string_view text);

// Whether archives bring the path back as it is: its name is UTF-8 text.
bool CanBeStored(const std::filesystem::path& path);

// Without regard to case.
bool SamePath(const std::filesystem::path& a, const std::filesystem::path& b);

// The path with its extension replaced ("/a/b.tarprj", ".tarout" give "/a/b.tarout").
std::filesystem::path WithExtension(std::filesystem::path path, std::string_view extension);

} // namespace Outils_Fichiers
