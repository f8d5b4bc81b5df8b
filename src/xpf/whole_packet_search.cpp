#include "xpf/whole_packet_search.h"

#include <string_view>
#include <vector>

namespace Persistance_Xpf {
namespace {

// Reads only the frame: the sizes of chance places would have megabytes read for each.
bool IsWholePacket(CXpfFile& file, std::int64_t place, std::int64_t fileSize) {
    SPacketHeader header;
    SPacketTrailer trailer;
    return file.Seek(place) && file.Read(&header, sizeof header) == sizeof header && header.Check() &&
           place + header.size <= fileSize && file.Seek(place + header.size - kPacketTrailerSize) &&
           file.Read(&trailer, sizeof trailer) == sizeof trailer && trailer.Matches(header);
}

} // namespace

bool FindWholePacket(CXpfFile& file, std::int64_t from, const std::function<bool()>& goOn) {
    std::vector<char> bytes(1 << 16);
    const std::int64_t size = file.GetFileSize();
    for (;;) {
        if ((goOn && !goOn()) || !file.Seek(from)) return false;
        const std::size_t count = file.Read(bytes.data(), bytes.size());
        if (count < kPacketOverhead) return false;
        const std::string_view view(bytes.data(), count);
        for (std::size_t i = view.find("$$"); i != view.npos; i = view.find("$$", i + 1)) {
            const std::int64_t place = from + static_cast<std::int64_t>(i);
            if (IsWholePacket(file, place, size)) return file.Seek(place);
        }
        from += static_cast<std::int64_t>(count) - 1;
    }
}

} // namespace Persistance_Xpf
