#include "recording/recording_writer.h"

#include "recording/recording_header.h"
#include "xpf/records.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace Enregistrement {

using namespace Persistance_Xpf;

namespace {

// Big enough that the system calls do not count, small enough to stay in the processor's cache.
constexpr std::size_t kBlockSize = 1 << 20;

} // namespace

bool CRecordingWriter::Create(const std::filesystem::path& path,
                              std::span<const std::string_view> channelNames) {
    Close();
    const std::vector<std::uint8_t> header = MakeRecordingHeader(channelNames);
    if (header.empty() || !m_file.Create(path)) return false;

    m_failed = false;
    m_channels.clear();
    for (const std::string_view name : channelNames) {
        const SChannelLayout* row = FindChannelLayout(name);
        const SPacketLayout* layout = FindPacketLayout(row->packetType);
        SChannel channel{};
        channel.name = row->name;
        channel.number = static_cast<std::uint16_t>(row - GetChannelLayouts().data());
        channel.payloadSize = layout ? layout->payloadSize : 0;
        m_channels.push_back(channel);
    }
    m_block.resize(std::max(kBlockSize, header.size()));
    m_blockStart = 0;
    m_used = 0;
    std::memcpy(Reserve(header.size()), header.data(), header.size());
    m_used = header.size();
    // A reader that opens the file from here on finds a complete header.
    if (Flush()) return true;
    Close();
    return false;
}

std::optional<ChannelHandle> CRecordingWriter::FindChannel(std::string_view name) const {
    const auto found = std::ranges::find(m_channels, name, &SChannel::name);
    if (found == m_channels.end()) return std::nullopt;
    return static_cast<ChannelHandle>(found - m_channels.begin());
}

bool CRecordingWriter::Write(ChannelHandle channel, const CXpfPacket& packet) {
    if (channel >= m_channels.size() || packet.GetPayloadSize() != m_channels[channel].payloadSize)
        return false;
    return WriteRaw(channel, {packet.GetPayload(), packet.GetPayloadSize()});
}

bool CRecordingWriter::Write(std::string_view channel, const CXpfPacket& packet) {
    const auto handle = FindChannel(channel);
    return handle && Write(*handle, packet);
}

bool CRecordingWriter::WriteRaw(ChannelHandle handle, std::span<const std::uint8_t> payload) {
    if (!IsOpen() || m_failed || handle >= m_channels.size() || payload.size() > kMaximumPayload)
        return false;
    SChannel& channel = m_channels[handle];
    const auto size = static_cast<std::uint32_t>(payload.size() + kPacketOverhead);
    std::uint8_t* place = Reserve(size);
    if (!place) return false;

    const std::int64_t position = GetSize();
    const SPacketHeader header{
        {'$', '$'}, channel.number, size, channel.count, channel.last ? MakeLink(channel.last, position) : 0,
        0};
    const SPacketTrailer trailer{{'!', '!'}, channel.number, size};
    std::memcpy(place, &header, sizeof header);
    if (!payload.empty()) std::memcpy(place + sizeof header, payload.data(), payload.size());
    std::memcpy(place + size - sizeof trailer, &trailer, sizeof trailer);
    if (channel.last) LinkPrevious(channel, position);
    m_used += size;
    channel.last = position;
    ++channel.count;
    return true;
}

// Room for `size` bytes after those that wait; null on a failed write.
std::uint8_t* CRecordingWriter::Reserve(std::size_t size) {
    if (m_used + size > m_block.size()) {
        if (!Flush()) return nullptr;
        if (size > m_block.size()) m_block.resize(size);
    }
    return m_block.data() + m_used;
}

// Makes the channel's last packet lead to the one at `position`.
void CRecordingWriter::LinkPrevious(SChannel& channel, std::int64_t position) {
    const std::uint32_t link = MakeLink(channel.last, position);
    if (channel.last >= m_blockStart) {
        std::uint8_t* previous = m_block.data() + (channel.last - m_blockStart);
        std::memcpy(previous + offsetof(SPacketHeader, forwardLink), &link, sizeof link);
    } else if (link != 0) {
        channel.patchWaits = true;
        channel.patchAt = channel.last;
        channel.patchLink = link;
    }
}

bool CRecordingWriter::Flush() {
    if (!IsOpen() || m_failed) return false;
    if (!m_file.WriteAt(m_blockStart, {m_block.data(), m_used})) return Fail();
    m_blockStart += static_cast<std::int64_t>(m_used);
    m_used = 0;
    for (SChannel& channel : m_channels) {
        if (!channel.patchWaits) continue;
        std::uint8_t link[sizeof channel.patchLink];
        std::memcpy(link, &channel.patchLink, sizeof link);
        if (!m_file.WriteAt(channel.patchAt + static_cast<std::int64_t>(offsetof(SPacketHeader, forwardLink)),
                            link))
            return Fail();
        channel.patchWaits = false;
    }
    return true;
}

// Takes back a half-written block: what stays is whole, and no link in it leads beyond the end.
bool CRecordingWriter::Fail() {
    m_failed = true;
    m_used = 0;
    m_file.Truncate(m_blockStart);
    return false;
}

bool CRecordingWriter::Close() {
    if (!IsOpen()) return true;
    const bool flushed = Flush();
    const bool closed = m_file.Close();
    m_channels.clear();
    return flushed && closed;
}

std::uint32_t CRecordingWriter::GetPacketCount(ChannelHandle channel) const {
    return channel < m_channels.size() ? m_channels[channel].count : 0;
}

} // namespace Enregistrement
