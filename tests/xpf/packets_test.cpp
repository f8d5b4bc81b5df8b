#include "xpf/packets.h"

#include "foundation/texts.h"

#include <cmath>
#include <gmock/gmock.h>
#include <set>

namespace Persistance_Xpf {
namespace {

class EveryPacket : public testing::TestWithParam<int> {
  protected:
    std::unique_ptr<CXpfPacket> m_packet = CreateXpfPacket(static_cast<std::uint16_t>(GetParam()));
    const SPacketLayout& m_layout = *FindPacketLayout(static_cast<std::uint16_t>(GetParam()));
};

// Writes `value` through the one setter that fits and asks every getter: only the one of the type may answer.
template <class T>
void ExpectOnly(CXpfPacket& packet, std::uint32_t field, EFieldType type, T value) {
    const auto typed = [&](EFieldType own, auto probe, auto set, auto get) {
        const bool fits = own == type;
        if (fits) {
            EXPECT_TRUE((packet.*set)(field, static_cast<decltype(probe)>(value)));
        }
        auto read = probe;
        EXPECT_EQ((packet.*get)(field, read), fits) << "field " << field;
        EXPECT_EQ(read, fits ? static_cast<decltype(probe)>(value) : probe) << "field " << field;
    };
    typed(EFieldType::u8, std::uint8_t{1}, &CXpfPacket::SetUInt8, &CXpfPacket::GetUInt8);
    typed(EFieldType::u16, std::uint16_t{1}, &CXpfPacket::SetUInt16, &CXpfPacket::GetUInt16);
    typed(EFieldType::u32, std::uint32_t{1}, &CXpfPacket::SetUInt32, &CXpfPacket::GetUInt32);
    typed(EFieldType::i8, std::int8_t{1}, &CXpfPacket::SetInt8, &CXpfPacket::GetInt8);
    typed(EFieldType::i16, std::int16_t{1}, &CXpfPacket::SetInt16, &CXpfPacket::GetInt16);
    typed(EFieldType::i32, std::int32_t{1}, &CXpfPacket::SetInt32, &CXpfPacket::GetInt32);
    typed(EFieldType::f32, float{1}, &CXpfPacket::SetFloat, &CXpfPacket::GetFloat);
    double number = 0;
    ASSERT_TRUE(packet.GetDouble(field, number));
    if (type == EFieldType::f64) {
        EXPECT_TRUE(packet.SetDouble(field, static_cast<double>(value)));
        ASSERT_TRUE(packet.GetDouble(field, number));
    } else {
        EXPECT_FALSE(packet.SetDouble(field, 1.0));
    }
    EXPECT_EQ(number, static_cast<double>(value)) << "field " << field;
}

TEST_P(EveryPacket, FieldsAnswerTheirOwnAccessorOnly) {
    ASSERT_TRUE(m_packet);
    ASSERT_EQ(m_packet->GetFieldCount(), m_layout.fields.size());
    EXPECT_EQ(m_packet->GetPayloadSize(), m_layout.payloadSize);
    CDateTimeSpan date(7);
    EXPECT_TRUE(m_packet->SetDate(0, CDateTimeSpan(-12345678901)));
    EXPECT_FALSE(m_packet->SetDate(1, date));
    EXPECT_FALSE(m_packet->GetDate(1, date));
    EXPECT_EQ(date.GetTicks(), 7);
    EXPECT_TRUE(m_packet->GetDate(0, date));
    EXPECT_EQ(date, CDateTimeSpan(-12345678901));
    double ticks = 0;
    EXPECT_TRUE(m_packet->GetDouble(0, ticks));
    EXPECT_EQ(ticks, -12345678901.0);

    for (std::uint32_t field = 1; field < m_layout.fields.size(); ++field) {
        const SFieldLayout& row = m_layout.fields[field];
        const bool isUnsigned = row.type <= EFieldType::u32;
        if (row.count == 1) ExpectOnly(*m_packet, field, row.type, isUnsigned ? 200.0 - field : 50.0 - field);
    }
    EXPECT_EQ(date, static_cast<CXpfDatedPacket&>(*m_packet).GetPacketDate())
        << "a setter wrote beside its field";
    std::uint8_t byte = 0;
    EXPECT_FALSE(m_packet->GetUInt8(m_packet->GetFieldCount(), byte));
    EXPECT_FALSE(m_packet->GetDouble(m_packet->GetFieldCount(), ticks));
}

TEST_P(EveryPacket, GivesElementsOfArraysOnly) {
    for (std::uint32_t i = 0; i < m_layout.payloadSize; ++i)
        m_packet->GetPayload()[i] = static_cast<std::uint8_t>(i * 7);
    for (std::uint32_t field = 0; field < m_layout.fields.size(); ++field) {
        const SFieldLayout& row = m_layout.fields[field];
        double real = 0;
        std::int8_t character = 0;
        EXPECT_FALSE(m_packet->GetDoubleElement(field, row.count, real));
        EXPECT_FALSE(m_packet->GetInt8Element(field, row.count, character));
        EXPECT_EQ(m_packet->GetDoubleElement(field, row.count - 1, real),
                  row.count > 1 && row.type == EFieldType::f64);
        EXPECT_EQ(m_packet->GetInt8Element(field, row.count - 1, character),
                  row.count > 1 && row.type == EFieldType::i8);
        EXPECT_EQ(m_packet->GetDouble(field, real), row.count == 1);
        if (row.count == 1 || row.type != EFieldType::i8) continue;
        const std::uint32_t last = m_layout.offsets[field] + row.count - 1;
        EXPECT_EQ(character, static_cast<std::int8_t>(last * 7));
    }
}

TEST_P(EveryPacket, WritesOneTextPerElement) {
    const std::string header = m_packet->GetHeaderText("|");
    const std::string text = m_packet->ToText("|");
    EXPECT_EQ(std::ranges::count(header, '|'), std::ranges::count(text, '|'));
    EXPECT_THAT(header, testing::StartsWith("Date|"));
    EXPECT_THAT(text, testing::StartsWith("0.0000000|0"));
    EXPECT_THAT(header, testing::EndsWith(std::string(m_layout.fields.back().name)));
}

INSTANTIATE_TEST_SUITE_P(Types, EveryPacket,
                         testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15, 16));

TEST(Packets, TextHasEightSignificantDigits) {
    CXpfTarinGpsPacketV2 packet;
    packet.SetDate(0, CDateTimeSpan(-5'000'001));
    packet.SetFloat(1, 0.1f);
    packet.SetUInt8(4, 65);
    packet.SetDouble(5, 48.123456789);
    packet.SetDouble(6, -1e-9);
    packet.SetFloat(7, NAN);
    packet.SetFloat(8, 123456789.f);
    EXPECT_EQ(packet.ToText(";"), "-0.5000001;0.1;0;0;65;48.123457;-1e-09;nan;1.2345679e+08;0;0;0;0");
    packet.Clear();
    EXPECT_EQ(packet.ToText(" "), "0.0000000 0 0 0 0 0 0 0 0 0 0 0 0");
    CXpfTarinSynchroPacketV2 synchro;
    synchro.SetUInt32(3, 4294967295u);
    double counter = 0;
    EXPECT_TRUE(synchro.GetDouble(3, counter));
    EXPECT_EQ(counter, 4294967295.0);
}

TEST(Layouts, RowsAreUniqueAndHaveLabels) {
    std::set<std::string_view> names, labels;
    for (const SChannelLayout& row : GetChannelLayouts()) {
        EXPECT_TRUE(names.insert(row.name).second && row.name.size() <= 16) << row.name;
        const std::string_view label = GetChannelLabel(row.name);
        EXPECT_TRUE(labels.insert(label).second && label == Outils_Texte::GetText(row.label)) << row.name;
        if (const char last = row.name.back(); last >= '1' && last <= '9') {
            EXPECT_TRUE(label.ends_with(std::string("#") + last)) << row.name;
        }
        EXPECT_EQ(FindPacketLayout(row.packetType) == nullptr, row.name == "MORVEX_STA");
        EXPECT_EQ(CreateXpfPacket(row.packetType) == nullptr, row.name == "MORVEX_STA");
    }
    EXPECT_EQ(names.size(), 26u);
    EXPECT_EQ(GetChannelLabel("GPS_4"), "");
    EXPECT_EQ(GetChannelLabel("DVL_WT"), "Dvl water track");
    EXPECT_EQ(GetChannelLabel("MORVEX_MSG"), "Post-processing messages");
    EXPECT_EQ(Outils_Texte::GetText(Outils_Texte::EText::natureUnknown + natureRawAcc),
              "Raw acc measurement");
    for (std::uint16_t type = 0; type < 20; ++type) {
        const SPacketLayout* layout = FindPacketLayout(type);
        if (!layout) continue;
        std::set<std::string_view> fields;
        for (const SFieldLayout& field : layout->fields)
            EXPECT_TRUE(fields.insert(field.name).second && field.name.size() <= 30 &&
                        field.nature < natureCount)
                << field.name;
    }
}

} // namespace
} // namespace Persistance_Xpf
