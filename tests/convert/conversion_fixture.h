// Runs converters on sources of a test and reads their targets back.
#pragma once

#include "convert/conversion.h"
#include "support/temporary_folder.h"
#include "xpf/packet_classes.h"
#include "xpf/stream_walk.h"
#include "xpf/table_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace test {

struct SPacket {
    std::string channel;
    double date = 0; // seconds
    std::vector<std::uint8_t> payload;

    // A field by its name, NaN when there is none.
    double operator[](std::string_view name) const {
        const auto& row = *Persistance_Xpf::FindChannelLayout(channel);
        const auto packet = Persistance_Xpf::FindPacketClass(row.packetType)->createPacket();
        std::memcpy(packet->GetPayload(), payload.data(), payload.size());
        double value = std::nan("");
        packet->GetDouble(packet->GetLayout().IndexOf(name), value);
        return value;
    }
};

using Packets = std::map<std::string, std::vector<SPacket>>; // by channel

inline Packets ReadPackets(const std::filesystem::path& path) {
    using namespace Persistance_Xpf;
    Packets packets;
    const auto file = OpenXpfFile(path, EFileKind::tarin).file;
    if (!file || !file->Seek(file->GetDataStart().Get())) return packets;
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    for (CStreamWalk walk(*file); walk.Next(header, payload) == EPacketRead::whole;) {
        std::int64_t date;
        std::memcpy(&date, payload.data(), sizeof date);
        const std::string channel = file->FindChannelByNumber(header.channel)->GetName();
        packets[channel].push_back(
            {channel, static_cast<double>(date) * 1e-7, {payload.begin(), payload.end()}});
    }
    EXPECT_EQ(file->GetPosition(), file->GetFileSize()) << "damaged target";
    return packets;
}

// Keeps what a conversion says, and stops it when asked to.
struct CMonitor : Compagnon::IRunMonitor {
    std::map<Compagnon::EText, std::string> texts;
    std::string all;
    double lastPercent = 0;
    int stopAfter = -1; // questions; -1: never

    void Progress(double percent) override { lastPercent = percent; }
    void Message(Compagnon::ELevel, Compagnon::EText code, std::string_view text) override {
        texts[code] = text;
        (all += text) += '\n';
    }
    bool GoOn() override { return stopAfter < 0 || stopAfter-- > 0; }
};

class ConversionTest : public testing::Test {
  protected:
    static constexpr std::string_view kDay = "2024-05-14";

    std::filesystem::path Write(std::string_view name, std::string_view text) {
        const auto path = m_folder / name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    // Runs the converter of a program ("Depth2Tarin"); its target is GetTarget().
    Compagnon::ERunEnd Run(std::string_view program, const std::vector<std::string>& words,
                           std::filesystem::path target = {}) {
        m_monitor.texts.clear();
        m_monitor.all.clear();
        const auto converters = Conversion::GetConverters();
        const auto found =
            std::ranges::find(converters, std::string(program) + ".exe", &Conversion::SConverter::program);
        EXPECT_NE(found, converters.end()) << program;
        std::vector<std::string> line = words;
        line.push_back((target.empty() ? GetTarget() : target).string());
        Compagnon::CArguments arguments;
        std::string error;
        EXPECT_TRUE(arguments.Parse(found->switches, line, error)) << error;
        return Conversion::Convert(*found, arguments, m_monitor);
    }
    // Converts a text and gives the packets; empty when there is no target.
    Packets Convert(std::string_view program, std::string_view text, std::vector<std::string> switches = {}) {
        std::filesystem::remove(GetTarget());
        switches.push_back(Write("source", text).string());
        return Run(program, switches) == Compagnon::ERunEnd::finished ? ReadPackets(GetTarget()) : Packets();
    }
    std::filesystem::path GetTarget() const { return m_folder / "target.tarin"; }
    std::size_t CountFiles() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_folder.GetPath()), {}));
    }
    // How often a fault was counted.
    std::string Said(Compagnon::EText fault) const {
        const std::string head = "Skipped, " + std::string(Outils_Texte::GetText(fault)) + ": ";
        const std::size_t at = m_monitor.all.find(head);
        return at == std::string::npos
                   ? "0"
                   : m_monitor.all.substr(at + head.size(),
                                          m_monitor.all.find(' ', at + head.size()) - at - head.size());
    }

    CTemporaryFolder m_folder;
    CMonitor m_monitor;
};

} // namespace test
