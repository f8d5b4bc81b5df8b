#include "document/file_state.h"

#include "document/text_ids.h"
#include "xpf/file.h"

#include <sys/stat.h>

namespace Application_Tarvel {

SFileIdentity IdentifyFile(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return {};
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

int FindFileFault(const std::filesystem::path& path, Persistance_Xpf::EFileKind kind) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    switch (status.type()) {
    case std::filesystem::file_type::not_found: return textFileVanished;
    case std::filesystem::file_type::directory: return textFileIsFolder;
    case std::filesystem::file_type::none: return textFileNotReadable;
    case std::filesystem::file_type::regular: break;
    default: return textFileIsNoFile;
    }
    bool outdated = false;
    if (Persistance_Xpf::OpenXpfFile(path, kind, outdated) || outdated) return 0;
    return Persistance_Xpf::CXpfFile().Open(path) ? textFileNoHeader : textFileNotReadable;
}

} // namespace Application_Tarvel
