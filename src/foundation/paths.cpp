#include "foundation/paths.h"

#include "foundation/text.h"

#include <algorithm>
#include <sys/stat.h>

namespace Outils_Fichiers {

namespace fs = std::filesystem;

namespace {

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

// The volume on which a file of this path lies or would lie.
std::optional<dev_t> VolumeOf(fs::path folder) {
    struct stat status;
    while (::stat(folder.c_str(), &status) != 0) {
        if (!folder.has_relative_path()) return std::nullopt;
        folder = folder.parent_path();
    }
    return status.st_dev;
}

// Without dots, and without the separator that marks a folder.
fs::path Normal(const fs::path& path) {
    fs::path normal = path.lexically_normal();
    return normal.has_filename() || !normal.has_relative_path() ? normal : normal.parent_path();
}

} // namespace

std::optional<std::string> RelativePathTo(const fs::path& from, const fs::path& to) {
    if (!from.is_absolute() || !to.is_absolute()) return std::nullopt;
    const fs::path folder = Normal(from);
    const fs::path file = Normal(to);
    const auto fromVolume = VolumeOf(folder);
    if (!fromVolume || fromVolume != VolumeOf(file.parent_path())) return std::nullopt;

    auto [inFolder, inFile] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
    std::string relative = inFolder == folder.end() ? "." : "..";
    if (inFolder != folder.end())
        while (++inFolder != folder.end()) relative += "\\..";
    for (; inFile != file.end(); ++inFile) {
        const std::string part = ToText(*inFile);
        // Read back, it would be taken for two parts.
        if (part.find('\\') != std::string::npos) return std::nullopt;
        relative += '\\' + part;
    }
    return relative;
}

bool IsRelativePath(std::string_view text) {
    if (text.empty()) return true;
    const bool letter = (text[0] >= 'a' && text[0] <= 'z') || (text[0] >= 'A' && text[0] <= 'Z');
    return !IsSeparator(text[0]) && !(letter && text.size() > 1 && text[1] == ':');
}

fs::path Combine(const fs::path& folder, std::string_view relative) {
    std::string text(relative);
    std::replace(text.begin(), text.end(), '\\', '/');
    return Normal(folder / FromText(text));
}

fs::path ToAbsolute(const fs::path& path) {
    std::error_code error;
    fs::path absolute = fs::absolute(path, error);
    return error ? path : absolute;
}

std::string ToText(const fs::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

fs::path FromText(std::string_view text) { return fs::path(std::u8string(text.begin(), text.end())); }

bool CanBeStored(const fs::path& path) {
    const std::string text = ToText(path);
    return Outils_Texte::Utf16ToUtf8(Outils_Texte::Utf8ToUtf16(text)) == text;
}

bool SamePath(const fs::path& a, const fs::path& b) {
    return Outils_Texte::EqualsNoCase(ToText(Normal(a)), ToText(Normal(b)));
}

fs::path WithExtension(fs::path path, std::string_view extension) {
    return path.replace_extension(FromText(extension));
}

} // namespace Outils_Fichiers
