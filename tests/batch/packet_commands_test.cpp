#include "batch/batch_fixture.h"

#include "foundation/date_time.h"
#include "recording/recording_writer.h"
#include "xpf/packets.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class PacketCommands : public test::Batch {
  protected:
    PacketCommands() {
        Enregistrement::CRecordingWriter writer;
        constexpr std::string_view channels[] = {"DEPTH", "LBL"};
        EXPECT_TRUE(writer.Create(Path("r.tarin"), channels));
        Persistance_Xpf::CXpfTarinDepthPacketV1 packet;
        for (int i = 0; i < 10; ++i) {
            packet.SetDate(0, Outils_Temps::CDateTimeSpan::FromSeconds(1 + i * 0.5));
            packet.SetUInt8(2, static_cast<std::uint8_t>(i));
            packet.SetFloat(3, 10.25f + static_cast<float>(i % 3));
            EXPECT_TRUE(writer.Write("DEPTH", packet));
        }
    }
};

TEST_F(PacketCommands, ListsChannels) {
    Succeed("channels /r.tarin");
    EXPECT_THAT(Lines(),
                ElementsAre("number;name;type;packets;first [s];last [s];description",
                            "8;DEPTH;4;10;1.0000000;5.5000000;Depth sensor", HasSubstr("12;LBL;6;0;;;")));
}

TEST_F(PacketCommands, PrintsPacketsOfAPeriod) {
    Succeed("packets /r.tarin DEPTH --from 1.9 --to 3");
    EXPECT_THAT(Lines(), ElementsAre("Date;Delay;Rejection;Depth;Std. dev. depth", "2.0000000;0;2;12.25;0",
                                     "2.5000000;0;3;10.25;0", "3.0000000;0;4;11.25;0"));
    for (const auto& [option, count] : {std::pair{"--limit 2", 2u}, {"--from 99", 0u}, {"--from -99", 10u}}) {
        Succeed("packets /r.tarin DEPTH " + std::string(option));
        EXPECT_THAT(Lines(), SizeIs(1 + count)) << option;
    }
}

TEST_F(PacketCommands, FindsAMomentAndReducesAWindow) {
    Succeed("at /r.tarin DEPTH 3.2");
    EXPECT_THAT(Lines(), ElementsAre(StartsWith("Date;"), "3.0000000;0;4;11.25;0"));
    EXPECT_EQ(Run("at /r.tarin DEPTH 7"), 1);
    Succeed("reduce /r.tarin DEPTH --from 1 --to 5.5 --slices 3");
    const auto lines = Lines();
    ASSERT_THAT(lines, SizeIs(5)); // the packet at the very end opens a slice of its own
    EXPECT_THAT(lines[0],
                AllOf(StartsWith("Date;"), HasSubstr(";minimum of Date;"), HasSubstr(";maximum of Date;")));
    EXPECT_EQ(lines[1], "1.5000000;0;1;11.25;0;1.0000000;0;0;10.25;0;1.0000000;0;2;12.25;0");
}

TEST_F(PacketCommands, TellsWhatIsWrong) {
    std::ofstream(Path("text")) << std::string(500, 'x');
    const std::tuple<const char*, int, const char*> cases[] = {
        {"", 2, "usage: varnenav-batch COMMAND ..."},
        {"unheard-of", 2, "unknown command \"unheard-of\""},
        {"channels", 2, "wrong number of arguments"},
        {"channels /r.tarin more", 2, "wrong number of arguments"},
        {"packets /r.tarin DEPTH --form 1", 2, "unknown option --form"},
        {"packets /r.tarin DEPTH --from", 2, "--from needs a value"},
        {"packets /r.tarin DEPTH --from soon", 2, "\"soon\" is no number of seconds"},
        {"packets /r.tarin DEPTH --from 1e300", 2, "\"1e300\" is no number of seconds"},
        {"packets /r.tarin DEPTH --from nan", 2, "\"nan\" is no number of seconds"},
        {"at /r.tarin DEPTH ''", 2, "\"\" is no number of seconds"},
        {"packets /r.tarin DEPTH --limit 0", 2, "--limit needs a whole number"},
        {"packets /r.tarin DEPTH --limit 1 --limit 2", 2, "--limit is given twice"},
        {"reduce /r.tarin DEPTH --from 1 --to 2", 2, "--slices are needed"},
        {"reduce /r.tarin DEPTH --from 2 --to 1 --slices 3", 2, "later --to"},
        {"picture /p.tarprj /p.gif", 2, "must end in .png"},
        {"picture /p.tarprj /p.png --size 10x10", 2, "--size needs"},
        {"picture /p.tarprj /p.png --size 800x600px", 2, "--size needs"},
        {"create /r.tarin /p.tarprj --add sonar", 2, "unknown kind of sensor \"sonar\""},
        {"channels /gone", 1, "gone: no such file"},
        {"channels /text", 1, "text: "},
        {"channels /", 1, "not a packet file"},
        {"analyse /text", 1, "text: "},
        {"detect /gone", 1, "gone: no such file"},
        {"detect /", 1, "cannot be read as a file"},
        {"packets /r.tarin GPS_1", 1, "no channel \"GPS_1\""},
        {"packets /text DEPTH", 1, "text: "},
        {"at /r.tarin LBL 1", 1, "the channel is empty"},
        {"at /r.tarin DEPTH 99", 1, "outside the channel's data"},
        {"reduce /gone DEPTH --from 1 --to 2 --slices 3", 1, "gone: no such file"},
        {"run /gone", 1, "gone"},
        {"run /text", 1, "text"},
        {"check /text", 1, "text"},
        {"describe /text", 1, "text"},
        {"dictionary /gone", 1, "gone"},
        {"copy /text /p.tarprj", 1, "text"},
        {"parameters /text /out.xml", 1, "text"},
        {"picture /text /p.png", 1, "text"},
        {"create /gone /p.tarprj", 1, "gone"},
        {"create /text /p.tarprj", 1, "text"},
        {"create /r.tarin /p.tarprj", 1, "cannot detect equipment type"}, // no inertial data
        {"create /r.tarin /p.tarprj --ins-configuration /gone", 1, "gone: no such file"},
        {"create-from-parameters /gone /p.tarprj", 1, "Failed to find input data file"},
        {"create-from-parameters /text /p.tarprj", 1, "Failed to find input data file"},
    };
    for (const auto& [words, status, message] : cases) {
        EXPECT_EQ(Run(words), status) << words;
        EXPECT_THAT(m_error, HasSubstr(message)) << words;
        EXPECT_EQ(m_out, "") << words;
        // One line says it; behind wrong usage stands the right one.
        if (status == 1) {
            EXPECT_EQ(std::count(m_error.begin(), m_error.end(), '\n'), 1) << m_error;
        }
    }
    for (const char* file : {"p.tarprj", "out.xml", "p.png", "p.gif"})
        EXPECT_FALSE(std::filesystem::exists(Path(file))) << file;
    Succeed("--help");
    for (const auto& command : ::Batch::GetCommands()) EXPECT_THAT(m_out, HasSubstr(command.name));
    Succeed("--version");
}

} // namespace
