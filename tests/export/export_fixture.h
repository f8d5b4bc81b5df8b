// Runs exporters over recordings made for a test, and reads back what they write.
#pragma once

#include "common/child_program.h"
#include "foundation/texts.h"
#include "recording/recording_writer.h"
#include "support/program_output.h"
#include "support/temporary_folder.h"
#include "xpf/packets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

namespace Exportation {

using namespace Persistance_Xpf;
using test::Ask;
using Compagnon::ELevel;
using Compagnon::ERunEnd;
using Compagnon::SProgram;
using Outils_Texte::EText;

constexpr std::int64_t kSecond = Outils_Temps::kTicksPerSecond;

class CListMonitor : public Compagnon::IRunMonitor {
  public:
    void Progress(double percent) override {
        EXPECT_GE(percent, lastPercent);
        lastPercent = percent;
    }
    void Message(ELevel, EText code, std::string_view text) override {
        codes.push_back(code);
        texts += std::string(text) + '\n';
    }
    bool GoOn() override { return goOn(); }

    std::function<bool()> goOn = [] { return true; };
    double lastPercent = 0.0;
    std::vector<EText> codes;
    std::string texts;
};

class ExportTest : public testing::Test {
  protected:
    std::filesystem::path Path(std::string_view name) const { return m_folder / name; }
    std::string Name(std::string_view name) const { return Path(name).string(); }

    // The monitor holds the messages of this run.
    ERunEnd Run(const SProgram& program, const std::vector<std::string>& arguments) {
        Compagnon::CArguments parsed;
        std::string error;
        EXPECT_TRUE(parsed.Parse(program.switches, arguments, error)) << error;
        monitor.codes.clear();
        monitor.texts.clear();
        monitor.lastPercent = 0.0;
        return program.run(parsed, monitor);
    }
    static std::vector<std::string> Split(const std::string& text, char separator) {
        std::vector<std::string> parts;
        std::istringstream stream(text);
        for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
        return parts;
    }
    std::string Load(std::string_view name) const {
        std::ifstream stream(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::vector<std::string> ListFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.GetPath()))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    CListMonitor monitor;

  private:
    test::CTemporaryFolder m_folder;
};

// Sets fields by their names.
class CPacketMaker {
  public:
    CPacketMaker(std::string_view channel, double seconds)
        : m_packet(CreateXpfPacket(FindChannelLayout(channel)->packetType)) {
        m_packet->SetDate(0, Outils_Temps::CDateTimeSpan::FromSeconds(seconds));
    }
    CPacketMaker& Set(std::string_view name, double value) {
        const SPacketLayout& layout = m_packet->GetLayout();
        const std::uint32_t field = layout.IndexOf(name);
        switch (layout.fields[field].type) {
        case EFieldType::f64: m_packet->SetDouble(field, value); break;
        case EFieldType::f32: m_packet->SetFloat(field, static_cast<float>(value)); break;
        case EFieldType::u32: m_packet->SetUInt32(field, static_cast<std::uint32_t>(value)); break;
        case EFieldType::u16: m_packet->SetUInt16(field, static_cast<std::uint16_t>(value)); break;
        default: m_packet->SetUInt8(field, static_cast<std::uint8_t>(value));
        }
        return *this;
    }
    CPacketMaker& SetAll(std::initializer_list<std::pair<std::string_view, double>> values) {
        for (const auto& [name, value] : values) Set(name, value);
        return *this;
    }
    operator const CXpfPacket&() const { return *m_packet; }
    const CXpfPacket& Get() const { return *m_packet; }
    std::uint8_t* GetPayload() { return m_packet->GetPayload(); }

  private:
    std::shared_ptr<CXpfPacket> m_packet; // copies share it
};

inline CPacketMaker MakeUtc(double date, int day, int hour, int minute, double second) {
    CPacketMaker packet("UTC", date);
    packet.SetAll({{"UTC Year", 2026},
                   {"UTC Month", 3},
                   {"UTC day", day},
                   {"UTC Hour", hour},
                   {"UTC Minute", minute},
                   {"UTC Second", second}});
    return packet;
}

} // namespace Exportation
