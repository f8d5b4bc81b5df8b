#include "batch/batch_fixture.h"

#include "foundation/date_time.h"
#include "recording/recording_writer.h"
#include "xpf/packets.h"

#include <gmock/gmock.h>

#include <fstream>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

class PacketCommands : public test::Batch {
  protected:
    PacketCommands() {
        Enregistrement::CRecordingWriter writer;
        constexpr std::string_view channels[] = {"DEPTH", "LBL"};
        EXPECT_TRUE(writer.Create(m_recording, channels));
        Persistance_Xpf::CXpfTarinDepthPacketV1 packet;
        for (int i = 0; i < 10; ++i) {
            packet.SetDate(0, Outils_Temps::CDateTimeSpan::FromSeconds(1 + i * 0.5));
            packet.SetUInt8(2, static_cast<std::uint8_t>(i));
            packet.SetFloat(3, 10.25f + static_cast<float>(i % 3));
            EXPECT_TRUE(writer.Write("DEPTH", packet));
        }
    }
    const std::string m_recording = Path("r.tarin");
};

TEST_F(PacketCommands, ListsChannels) {
    ASSERT_EQ(Run({"channels", m_recording}), 0);
    EXPECT_THAT(Lines(),
                ElementsAre("number;name;type;packets;first;last;description",
                            "8;DEPTH;4;10;1.0000000;5.5000000;Depth sensor", HasSubstr("12;LBL;6;0;;;")));
}

TEST_F(PacketCommands, PrintsPacketsOfAPeriod) {
    ASSERT_EQ(Run({"packets", m_recording, "DEPTH", "--from", "1.9", "--to", "3"}), 0);
    EXPECT_THAT(Lines(), ElementsAre("Date;Delay;Rejection;Depth;Std. dev. depth", "2.0000000;0;2;12.25;0",
                                     "2.5000000;0;3;10.25;0", "3.0000000;0;4;11.25;0"));
    ASSERT_EQ(Run({"packets", m_recording, "DEPTH", "--limit", "2"}), 0);
    EXPECT_THAT(Lines(), SizeIs(3));
    ASSERT_EQ(Run({"packets", m_recording, "DEPTH", "--from", "99"}), 0);
    EXPECT_THAT(Lines(), SizeIs(1));
    ASSERT_EQ(Run({"packets", m_recording, "DEPTH", "--from", "-99"}), 0);
    EXPECT_THAT(Lines(), SizeIs(11));
}

TEST_F(PacketCommands, FindsAMomentAndReducesAWindow) {
    ASSERT_EQ(Run({"at", m_recording, "DEPTH", "3.2"}), 0);
    EXPECT_EQ(m_out, "3.0000000;0;4;11.25;0\n");
    EXPECT_EQ(Run({"at", m_recording, "DEPTH", "7"}), 1);
    ASSERT_EQ(Run({"reduce", m_recording, "DEPTH", "--from", "1", "--to", "5.5", "--slices", "3"}), 0);
    const auto lines = Lines();
    ASSERT_THAT(lines, SizeIs(5)); // the packet at the very end opens a slice of its own
    EXPECT_EQ(lines[1], "1.5000000;0;1;11.25;0;1.0000000;0;0;10.25;0;1.0000000;0;2;12.25;0");
}

TEST_F(PacketCommands, TellsWhatIsWrong) {
    std::ofstream(Path("text")) << std::string(500, 'x');
    struct SCase {
        std::vector<std::string> words;
        int status;
    };
    const SCase cases[] = {
        {{}, 2},
        {{"unheard-of"}, 2},
        {{"channels"}, 2},
        {{"channels", m_recording, "more"}, 2},
        {{"packets", m_recording, "DEPTH", "--form", "1"}, 2},
        {{"packets", m_recording, "DEPTH", "--from"}, 2},
        {{"packets", m_recording, "DEPTH", "--from", "soon"}, 2},
        {{"packets", m_recording, "DEPTH", "--from", "1e300"}, 2},
        {{"packets", m_recording, "DEPTH", "--limit", "0"}, 2},
        {{"packets", m_recording, "DEPTH", "--limit", "1", "--limit", "2"}, 2},
        {{"reduce", m_recording, "DEPTH", "--from", "1", "--to", "2"}, 2},
        {{"reduce", m_recording, "DEPTH", "--from", "2", "--to", "1", "--slices", "3"}, 2},
        {{"picture", Path("p.tarprj"), Path("p.gif")}, 2},
        {{"picture", Path("p.tarprj"), Path("p.png"), "--size", "10x10"}, 2},
        {{"create", m_recording, Path("p.tarprj"), "--add", "sonar"}, 2},
        {{"channels", Path("gone")}, 1},
        {{"channels", Path("text")}, 1},
        {{"packets", m_recording, "GPS_1"}, 1},
        {{"at", m_recording, "LBL", "1"}, 1},
        {{"run", Path("gone.tarprj")}, 1},
        {{"create", m_recording, Path("p.tarprj")}, 1}, // no inertial data, so no equipment
    };
    for (const auto& [words, status] : cases) {
        EXPECT_EQ(Run(words), status) << testing::PrintToString(words);
        EXPECT_FALSE(m_error.empty()) << testing::PrintToString(words);
    }
    EXPECT_FALSE(std::filesystem::exists(Path("p.tarprj")));
    EXPECT_EQ(Run({"--help"}), 0);
    for (const auto& command : ::Batch::GetCommands()) EXPECT_THAT(m_out, HasSubstr(command.name));
    EXPECT_EQ(Run({"--version"}), 0);
}

} // namespace
