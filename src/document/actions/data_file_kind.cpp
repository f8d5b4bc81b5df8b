#include "document/actions/data_file_kind.h"

#include "xpf/file.h"

namespace Application_Tarvel {

using namespace Persistance_Xpf;

SDataFileKind ClassifyDataFile(const std::filesystem::path& path) {
    CXpfFile file;
    if (!file.Open(path)) return {EDataFileKind::unreadable};
    bool outdated = false;
    if (OpenXpfFile(path, EFileKind::tarin, outdated)) return {EDataFileKind::packets};
    return {outdated ? EDataFileKind::outdatedPackets : EDataFileKind::unknown};
}

} // namespace Application_Tarvel
