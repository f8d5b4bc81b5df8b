#include "input.h"

#include "recording/recording_writer.h"
#include "xpf/packet_classes.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace Fuzz {

void Require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

CMemoryFile::CMemoryFile(Bytes bytes)
    : m_descriptor(::memfd_create("fuzz", MFD_CLOEXEC)),
      m_path("/proc/self/fd/" + std::to_string(m_descriptor)) {
    Set(bytes);
}

CMemoryFile::~CMemoryFile() { ::close(m_descriptor); }

void CMemoryFile::Set(Bytes bytes) {
    // Written from the start of an empty file: what a longer input left behind must not follow this one.
    Require(::ftruncate(m_descriptor, 0) == 0, "a memory file can be emptied");
    const ssize_t written = ::pwrite(m_descriptor, bytes.data(), bytes.size(), 0);
    Require(written == static_cast<ssize_t>(bytes.size()), "a memory file takes all bytes");
}

CScratchFolder::CScratchFolder() {
    std::string pattern = "/dev/shm/varne-fuzz-XXXXXX";
    Require(::mkdtemp(pattern.data()) != nullptr, "there is a memory file system");
    m_path = pattern;
}

CScratchFolder::~CScratchFolder() {
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
}

CMemoryFile& GetRecording() {
    static CMemoryFile file;
    static const bool written = [] {
        std::vector<std::string_view> names;
        for (const auto& channel : Persistance_Xpf::GetChannelLayouts())
            if (channel.kind == Persistance_Xpf::EFileKind::tarin) names.push_back(channel.name);
        Enregistrement::CRecordingWriter writer;
        bool complete = writer.Create(file.GetPath(), names);
        for (const std::string_view name : names) {
            const auto* row =
                Persistance_Xpf::FindPacketClass(Persistance_Xpf::FindChannelLayout(name)->packetType);
            complete = complete && row && writer.Write(name, *row->createPacket());
        }
        return complete && writer.Close();
    }();
    Require(written, "a recording can be written");
    return file;
}

} // namespace Fuzz
