#include "xpf/packets.h"
#include "xpf/table_file.h"

#include <gtest/gtest.h>

namespace Persistance_Xpf {
namespace {

constexpr std::uint32_t kNone = 99;

std::uint32_t Value(const CXpfPacket& packet, std::uint32_t index) {
    std::uint32_t value = kNone;
    return packet.GetStatusValue(index, value) ? value : kNone;
}

TEST(Status, CountsFieldsPerType) {
    const CXpfTarinFileV3 input;
    const CXpfTaroutFileV2 output;
    constexpr std::uint32_t expected[] = {0, 1, 1, 3, 1, 3, 1, 1, 1, 1, 62, 0, 0, 0, 0, 0, 0};
    std::string name, description;
    std::uint32_t literals = 0;
    for (std::uint16_t type = 0; type < std::size(expected); ++type) {
        EXPECT_EQ(input.GetStatusFieldCount(type), expected[type]) << type;
        EXPECT_EQ(output.GetStatusFieldCount(type), type == typeMorvexStd ? 62u : 0u) << type;
        EXPECT_FALSE(input.GetStatusField(type, expected[type], name, description, literals));
        // Every literal that a field counts has a name, and there are no more.
        for (std::uint32_t index = 0; index < expected[type]; ++index) {
            ASSERT_TRUE(input.GetStatusField(type, index, name, description, literals));
            EXPECT_FALSE(name.empty() || description.empty());
            for (std::uint32_t literal = 0; literal < literals; ++literal)
                EXPECT_TRUE(input.GetStatusLiteral(type, index, literal, name, description) &&
                            !description.empty());
            EXPECT_FALSE(input.GetStatusLiteral(type, index, literals, name, description));
        }
    }
}

TEST(Status, NamesAndDescribesFieldsAndLiterals) {
    const CXpfTarinFileV3 file;
    struct {
        std::uint16_t type;
        std::uint32_t index;
        const char *name, *description;
        std::uint32_t literals;
        const char *last, *lastDescription;
    } const rows[] = {
        {typeDvl, 0, "Rejection", "Instruction given by the user to process (or not) the sensor data", 3,
         "Auto", "The choice of processing or not the sensor data is done automatically"},
        {typeGps, 2, "GPS Mode", "Mode du GPS", 10, "Float RTK converging (ppk)",
         "Float RTK converging (post-processing mode)"},
        {typeNelixNav, 3, "Dead reckoning", "Dvl calibration is in progress", 2, "True",
         "Value is set to True"},
        {typeNelixNav, 8, "Altitude mode", "Current altitude mode of the INS", 4, "Hydro",
         "Altitude calculated using GPS - accurate mode"},
        {typeNelixNav, 31, "Acc or rotation speed dynamic exceeded",
         "Acceleration or rotation speed dynamic exceeded", 2, "Yes", "Value is set to Yes"},
        {typeNelixNav, 36, "Gps2 on", "Gps2 on", 2, "On", "Value is set to On"},
        {typeNelixNav, 39, "Gps2 data rejected", "Gps2 data rejected", 2, "Yes", "Value is set to Yes"},
        {typeNelixNav, 61, "Gps3 data rejected", "Gps3 data rejected", 2, "Yes", "Value is set to Yes"},
    };
    for (const auto& row : rows) {
        std::string name, description;
        std::uint32_t literals = 0;
        ASSERT_TRUE(file.GetStatusField(row.type, row.index, name, description, literals)) << row.name;
        EXPECT_EQ(name, row.name);
        EXPECT_EQ(description, row.description);
        EXPECT_EQ(literals, row.literals) << row.name;
        ASSERT_TRUE(file.GetStatusLiteral(row.type, row.index, literals - 1, name, description));
        EXPECT_EQ(name, row.last);
        EXPECT_EQ(description, row.lastDescription);
    }
}

TEST(Status, ReadsRejectionsAndModes) {
    struct {
        std::uint8_t byte;
        std::uint32_t rejection, gpsMode, usblMode;
    } const rows[] = {{0, kNone, 0, 0},     {1, 1, 1, 1},     {2, 0, 2, 2},          {3, 2, 3, kNone},
                      {4, kNone, 4, kNone}, {9, 1, 9, kNone}, {10, 0, kNone, kNone}, {255, 2, kNone, kNone}};
    CXpfTarinGpsPacketV2 gps;
    CXpfTarinUsblPacketV1 usbl;
    for (const auto& row : rows) {
        for (const std::uint32_t field : {2u, 3u, 4u}) gps.SetUInt8(field, row.byte);
        for (const std::uint32_t field : {2u, 3u, 5u}) usbl.SetUInt8(field, row.byte);
        for (const std::uint32_t index : {0u, 1u}) {
            EXPECT_EQ(Value(gps, index), row.rejection) << int{row.byte};
            EXPECT_EQ(Value(usbl, index), row.rejection) << int{row.byte};
        }
        EXPECT_EQ(Value(gps, 2), row.gpsMode) << int{row.byte};
        EXPECT_EQ(Value(usbl, 2), row.usblMode) << int{row.byte};
        EXPECT_EQ(Value(gps, 3), kNone);
    }
    EXPECT_EQ(Value(CXpfTarinImuPacketV2(), 0), kNone);
}

// Which status fields answer for one bit of a word, by their indexes; bits without one are absent.
TEST(Status, EveryBitMovesItsOwnField) {
    CXpfTarinNelixNavPacketV2 navigation;
    CXpfTaroutMorvexStdPacketV2 result;
    for (std::uint32_t word = 0; word < 2; ++word) {
        for (std::uint32_t bit = 0; bit < 32; ++bit) {
            navigation.Clear();
            result.Clear();
            ASSERT_TRUE(navigation.SetUInt32(1 + word, 1u << bit));
            ASSERT_TRUE(result.SetUInt32(kMorvexStdLayout.IndexOf("Algorithm status 1") + word, 1u << bit));
            std::vector<std::uint32_t> moved, expected;
            for (std::uint32_t index = 0; index < 62; ++index) {
                EXPECT_EQ(Value(navigation, index), Value(result, index)) << index;
                if (index != 8 && Value(navigation, index) == 1) moved.push_back(index);
            }
            if (word == 0 && bit < 31) expected = {bit < 8 ? bit : bit + 1};
            if (word == 1 && bit < 22) expected = {32 + bit};
            if (word == 1 && bit == 4) expected = {36, 37};
            if (word == 1 && (bit == 5 || bit == 22 || bit == 23)) expected = {};
            if (word == 1 && bit > 23) expected = {30 + bit};
            EXPECT_EQ(moved, expected) << "word " << word << " bit " << bit;
        }
    }
}

TEST(Status, AltitudeModeNeedsOneBit) {
    CXpfTarinNelixNavPacketV2 packet;
    constexpr std::uint32_t expected[16] = {kNone, 0,     1,     kNone, 2,     kNone, kNone, kNone,
                                            3,     kNone, kNone, kNone, kNone, kNone, kNone, kNone};
    for (std::uint32_t bits = 0; bits < 16; ++bits) {
        packet.SetUInt32(1, 0xFFFFFF0F | bits << 4);
        EXPECT_EQ(Value(packet, 8), expected[bits]) << bits;
    }
}

} // namespace
} // namespace Persistance_Xpf
