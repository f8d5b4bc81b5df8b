#include "document/file_look.h"

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

// Why a file without a fault of its kind is no data file; none if it is one, or can be made one.
EText FindHeaderFault(const std::filesystem::path& path, Persistance_Xpf::EOpening how) {
    using enum Persistance_Xpf::EOpening;
    if (how == opened || how == outdated) return EText::none;
    // The disk must give what the file has of a header.
    Persistance_Xpf::CXpfFile file;
    Persistance_Xpf::CXpfFile::HeaderBuffer header;
    if (!file.Open(path)) return EText::fileNotReadable;
    const std::int64_t size = file.GetFileSize();
    const auto head = static_cast<std::size_t>(std::min<std::int64_t>(header.size(), size));
    if (file.Read(header.data(), header.size()) < head) return EText::fileNotReadable;
    if (size == 0) return EText::fileEmpty;
    return how == damaged ? EText::fileHeaderDamaged : EText::fileForeign;
}

} // namespace

SFileLook LookInto(const std::filesystem::path& path, Persistance_Xpf::EFileKind kind,
                   const Outils::CEvent& cancel) {
    SFileLook look;
    look.fault = FindFault(path);
    if (look.fault != EText::none) return look;
    const auto how = Persistance_Xpf::OpenXpfFile(path, kind, &cancel).how;
    Metier_Tarvel_DataModel::ReadFileDescription(path, look.description);
    look.outdated = how == Persistance_Xpf::EOpening::outdated;
    look.fault = FindHeaderFault(path, how);
    return look;
}

} // namespace Application_Tarvel
