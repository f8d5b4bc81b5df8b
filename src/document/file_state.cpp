#include "document/file_state.h"

#include "foundation/texts.h"
#include "xpf/file.h"

#include <algorithm>

namespace Application_Tarvel {

using Outils_Texte::EText;

namespace {

EText FindFault(const std::filesystem::path& path) {
    std::error_code error;
    switch (std::filesystem::status(path, error).type()) {
    case std::filesystem::file_type::not_found: return EText::fileVanished;
    case std::filesystem::file_type::directory: return EText::fileIsFolder;
    case std::filesystem::file_type::none: return EText::fileNotReadable;
    case std::filesystem::file_type::regular: return EText::none;
    default: return EText::fileIsNoFile;
    }
}

// Whether the disk gives what the file has of a header.
bool CanReadHead(const std::filesystem::path& path) {
    Persistance_Xpf::CXpfFile file;
    Persistance_Xpf::CXpfFile::HeaderBuffer header;
    if (!file.Open(path)) return false;
    const auto size = std::min<std::int64_t>(header.size(), file.GetFileSize());
    return file.Read(header.data(), header.size()) >= static_cast<std::size_t>(size);
}

} // namespace

SFileLook LookInto(const std::filesystem::path& path, Persistance_Xpf::EFileKind kind,
                   const Outils::CEvent& cancel) {
    SFileLook look;
    look.fault = FindFault(path);
    if (look.fault != EText::none) return look;
    const auto how = Persistance_Xpf::OpenXpfFile(path, kind, &cancel).how;
    Metier_Tarvel_DataModel::ReadFileDescription(path, look.description);
    if (how == Persistance_Xpf::EOpening::opened) return look;
    look.outdated = how == Persistance_Xpf::EOpening::outdated;
    if (!look.outdated) look.fault = CanReadHead(path) ? EText::fileNoHeader : EText::fileNotReadable;
    return look;
}

} // namespace Application_Tarvel
