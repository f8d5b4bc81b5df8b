#include "document/actions/data_file_kind.h"

#include "xpf/file.h"

#include <string_view>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

constexpr std::string_view kPacketFileMark = "XPF";

} // namespace

SDataFileKind ClassifyDataFile(const std::filesystem::path& path) {
    CXpfFile file;
    if (!file.Open(path)) return {EDataFileKind::unreadable};
    // Reading the header as such does not look at the mark: any text would pass for an old packet file.
    char mark[kPacketFileMark.size()] = {};
    if (file.Read(mark, sizeof mark) != sizeof mark || std::string_view(mark, sizeof mark) != kPacketFileMark)
        return {EDataFileKind::unknown};
    bool outdated = false;
    OpenXpfFile(path, EFileKind::tarin, outdated);
    // One that is damaged otherwise is left to who opens it.
    return {outdated ? EDataFileKind::outdatedPackets : EDataFileKind::packets};
}

} // namespace Application_Tarvel
