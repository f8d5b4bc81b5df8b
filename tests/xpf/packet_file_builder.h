// Packet files made byte by byte, for the tests of their reader.
#pragma once

#include "support/temporary_folder.h"
#include "xpf/layout.h"
#include "xpf/records.h"
#include "xpf/stream_walk.h"
#include "xpf/table_file.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Persistance_Xpf {

using Bytes = std::vector<std::uint8_t>;

template <class T>
void Append(Bytes& bytes, const T& value) {
    const auto* raw = reinterpret_cast<const std::uint8_t*>(&value);
    bytes.insert(bytes.end(), raw, raw + sizeof value);
}

inline void AppendPadded(Bytes& bytes, std::string_view text, std::size_t size) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.insert(bytes.end(), size - text.size(), 0);
}

struct SPlacedPacket {
    std::int64_t position;
    SPacketHeader header; // as in the file at the end
    Bytes payload;
};

class CPacketFileBuilder {
  public:
    struct SChannelRecord {
        std::uint16_t number;
        std::string name;
        std::uint16_t type;
        std::string description = "described";
    };
    struct SDefinitionRecord {
        std::uint16_t type;
        std::uint32_t version;
        std::uint16_t fieldCount; // records that follow are those of the type's layout, up to this count
    };

    explicit CPacketFileBuilder(const std::vector<SChannelRecord>& channels,
                                const std::vector<SDefinitionRecord>& definitions = {}) {
        AppendPadded(bytes, "XPF", kChannelCountOffset);
        Append(bytes, static_cast<std::uint16_t>(channels.size()));
        Append(bytes, static_cast<std::uint16_t>(definitions.size()));
        for (const SChannelRecord& channel : channels) {
            Append(bytes, channel.number);
            AppendPadded(bytes, channel.name, kChannelNameSize);
            AppendPadded(bytes, channel.description, kChannelDescriptionSize);
            Append(bytes, channel.type);
        }
        for (const SDefinitionRecord& definition : definitions) AppendDefinition(definition);
        dataStart = static_cast<std::int64_t>(bytes.size());
    }

    // Channels of the table by their names, with the row's index as number.
    static CPacketFileBuilder ForChannels(const std::vector<std::string>& names) {
        std::vector<SChannelRecord> records;
        for (const std::string& name : names) {
            const SChannelLayout* row = FindChannelLayout(name);
            const auto number = static_cast<std::uint16_t>(row - GetChannelLayouts().data());
            records.push_back({number, name, row->packetType});
        }
        return CPacketFileBuilder(records);
    }

    // Appends a packet and links it with the one before it in its channel.
    SPlacedPacket& Add(std::uint16_t channel, const Bytes& payload) {
        std::vector<SPlacedPacket>& before = packets[channel];
        SPlacedPacket packet{
            static_cast<std::int64_t>(bytes.size()), {{'$', '$'}, channel, 0, 0, 0, 0}, payload};
        packet.header.size = static_cast<std::uint32_t>(payload.size()) + kPacketOverhead;
        packet.header.number = static_cast<std::uint32_t>(before.size());
        if (!before.empty()) {
            SPlacedPacket& last = before.back();
            packet.header.backLink = static_cast<std::uint32_t>(packet.position - last.position);
            last.header.forwardLink = packet.header.backLink;
            std::memcpy(&bytes[static_cast<std::size_t>(last.position)], &last.header, sizeof last.header);
        }
        Append(bytes, packet.header);
        bytes.insert(bytes.end(), payload.begin(), payload.end());
        Append(bytes, SPacketTrailer{{'!', '!'}, channel, packet.header.size});
        before.push_back(packet);
        return before.back();
    }

    Bytes bytes;
    std::int64_t dataStart = 0;
    std::map<std::uint16_t, std::vector<SPlacedPacket>> packets; // by channel

  private:
    void AppendDefinition(const SDefinitionRecord& definition) {
        Append(bytes, definition.type);
        Append(bytes, definition.version);
        Append(bytes, definition.fieldCount);
        const SPacketLayout* layout = FindPacketLayout(definition.type);
        for (std::size_t i = 0; layout && i < layout->fields.size() && i < definition.fieldCount; ++i) {
            const SFieldLayout& field = layout->fields[i];
            AppendPadded(bytes, field.name, kFieldNameSize);
            Append(bytes, field.type);
            Append(bytes, field.count);
            AppendPadded(bytes, "about it", kFieldDescriptionSize);
            Append(bytes, field.nature);
        }
    }
};

// A file of its own for each test, removed at its end.
class PacketFileTest : public testing::Test {
  protected:
    void Save(const Bytes& bytes) const {
        std::ofstream(m_path, std::ios::binary | std::ios::trunc)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    void WriteAt(std::int64_t offset, const void* data, std::size_t size) const {
        std::fstream stream(m_path, std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(offset).write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
    }

    std::unique_ptr<CXpfFile> Open() const { return OpenXpfFile(m_path, EFileKind::tarin).file; }
    std::unique_ptr<CXpfFile> Open(const Bytes& bytes) const {
        Save(bytes);
        return Open();
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "xpf";
    SPacketHeader header; // of the packet read last, as the rest
    std::span<const std::uint8_t> payload;
    CStreamWalk::Run run;
};

} // namespace Persistance_Xpf
