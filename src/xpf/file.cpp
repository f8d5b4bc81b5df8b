#include "xpf/file.h"

#include "xpf/block_reader.h"
#include "xpf/packet_search.h"
#include "xpf/table_file.h"

#include <algorithm>
#include <cstring>

namespace Persistance_Xpf {

CXpfFile::CXpfFile() : m_reader(std::make_unique<CBlockReader>()) {}

CXpfFile::~CXpfFile() = default;

bool CXpfFile::Open(const std::filesystem::path& path) {
    m_dataStart = CXpfFilePosition();
    return m_reader->Open(path);
}

bool CXpfFile::ReadFileHeader(bool& outdated, HeaderBuffer&) {
    outdated = false;
    return false;
}

CXpfFilePosition CXpfFile::GetDataStart() {
    if (m_dataStart.IsKnown()) return m_dataStart;
    std::uint16_t channelCount = 0, definitionCount = 0;
    const std::uint8_t* header = m_reader->View(0, kFileHeaderSize);
    if (!header) return {};
    std::memcpy(&channelCount, header + kChannelCountOffset, sizeof channelCount);
    std::memcpy(&definitionCount, header + kDefinitionCountOffset, sizeof definitionCount);

    std::int64_t position = kFileHeaderSize + std::int64_t{channelCount} * kChannelRecordSize;
    for (std::uint32_t i = 0; i < definitionCount; ++i) {
        const std::uint8_t* record = m_reader->View(position, kDefinitionRecordSize);
        if (!record) return {};
        std::uint16_t fieldCount = 0;
        std::memcpy(&fieldCount, record + 6, sizeof fieldCount);
        position += kDefinitionRecordSize + std::int64_t{fieldCount} * kFieldRecordSize;
    }
    if (position > m_reader->GetFileSize()) return {};
    return m_dataStart = position;
}

std::int64_t CXpfFile::GetFileSize() const { return m_reader->GetFileSize(); }

bool CXpfFile::IsAt(const std::filesystem::path& path) const { return m_reader->IsAt(path); }

void CXpfFile::SetInterrupt(const Outils::CEvent* interrupt) { m_reader->SetInterrupt(interrupt); }

std::int64_t CXpfFile::GetPosition() const { return m_reader->GetPosition(); }

bool CXpfFile::Seek(std::int64_t offset) { return m_reader->Seek(offset); }

std::size_t CXpfFile::Read(void* buffer, std::size_t size) { return m_reader->Read(buffer, size); }

bool CXpfFile::IsTornTail(std::int64_t position) {
    const std::int64_t size = GetFileSize();
    SPacketHeader header;
    if (position + kPacketHeaderSize > size) return true;
    if (!m_reader->Probe(position, &header, sizeof header)) return false;
    if (!header.Check()) {
        // Zeros have cut the header, or are where a packet would begin.
        constexpr std::uint32_t kSizeOffset = 4;
        const bool begins = header.magic[0] == '$' || header.magic[0] == 0;
        return begins && header.size == 0 && HoldsOnlyZeros(position + kSizeOffset);
    }
    const std::int64_t end = position + header.size;
    if (end > size) return true;
    const SPacketTrailer whole{{'!', '!'}, header.channel, header.size};
    std::uint8_t expected[kPacketTrailerSize], found[kPacketTrailerSize];
    std::memcpy(expected, &whole, sizeof expected);
    if (!m_reader->Probe(end - kPacketTrailerSize, found, sizeof found)) return false;
    const auto cut = std::mismatch(std::begin(found), std::end(found), expected).first;
    return std::all_of(cut, std::end(found), [](std::uint8_t byte) { return byte == 0; }) &&
           cut != std::end(found) && HoldsOnlyZeros(end);
}

bool CXpfFile::HoldsOnlyZeros(std::int64_t position) {
    constexpr std::int64_t kBlock = std::int64_t{64} << 10;
    const std::int64_t size = GetFileSize();
    while (position < size) {
        const auto length = static_cast<std::size_t>(std::min(kBlock, size - position));
        const std::uint8_t* bytes = m_reader->View(position, length);
        // All bytes equal the first one when the block equals itself a byte further on.
        if (!bytes || bytes[0] != 0 || std::memcmp(bytes, bytes + 1, length - 1) != 0) return false;
        position += static_cast<std::int64_t>(length);
    }
    return true;
}

bool CXpfFile::SearchPacketBackward(SPacketHeader& header) {
    return CPacketSearch(*m_reader).SearchBackward(header);
}

bool CXpfFile::SearchPacketForward(SPacketHeader& header) {
    return CPacketSearch(*m_reader).SearchForward(header);
}

const std::uint8_t* CXpfFile::WalkToChannel(std::uint16_t channel, std::int64_t& position) {
    CBlockReader& reader = *m_reader;
    for (std::int64_t at = position;;) {
        const std::uint8_t* bytes = reader.View(at, kPacketHeaderSize);
        const std::uint32_t size = bytes ? LoadPacketSize(bytes) : 0;
        // Nothing shorter than its own frame is a packet, and a size of 0 would hold the walk here for ever.
        if (size < kPacketOverhead) {
            if (bytes) reader.Forget(); // it may be a place that the writer has yet to fill
            position = at;
            return nullptr;
        }
        if (LoadWord(bytes) >> 16 == channel) {
            position = at;
            return bytes;
        }
        at += size;
    }
}

CXpfChannel* CXpfFile::FindChannelByName(std::string_view) { return nullptr; }

CXpfChannel* CXpfFile::FindChannelByNumber(std::uint16_t) { return nullptr; }

std::uint32_t CXpfFile::GetStatusFieldCount(std::uint16_t) const { return 0; }

bool CXpfFile::GetStatusField(std::uint16_t, std::uint32_t, std::string&, std::string&,
                              std::uint32_t&) const {
    return false;
}

bool CXpfFile::GetStatusLiteral(std::uint16_t, std::uint32_t, std::uint32_t, std::string&,
                                std::string&) const {
    return false;
}

SOpenedFile OpenXpfFile(const std::filesystem::path& path, EFileKind kind, const Outils::CEvent* interrupt) {
    std::unique_ptr<CXpfTableFile> file;
    if (kind == EFileKind::tarin)
        file = std::make_unique<CXpfTarinFileV3>();
    else
        file = std::make_unique<CXpfTaroutFileV2>();
    file->SetInterrupt(interrupt);
    CXpfFile::HeaderBuffer header;
    bool outdated = false;
    if (!file->Open(path)) return {};
    if (file->ReadFileHeader(outdated, header)) return {std::move(file), EOpening::opened};
    return {nullptr, file->ExplainRefusal()};
}

} // namespace Persistance_Xpf
