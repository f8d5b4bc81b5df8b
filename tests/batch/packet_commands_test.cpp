#include "batch/batch_fixture.h"

#include "dataaccess/plain_pass.h"
#include "foundation/date_time.h"
#include "recording/recording_writer.h"
#include "xpf/packets.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <random>

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
                ElementsAre("number;name;type;packets;first [s];last [s];description",
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
    EXPECT_THAT(Lines(), ElementsAre(StartsWith("Date;"), "3.0000000;0;4;11.25;0"));
    EXPECT_EQ(Run({"at", m_recording, "DEPTH", "7"}), 1);
    ASSERT_EQ(Run({"reduce", m_recording, "DEPTH", "--from", "1", "--to", "5.5", "--slices", "3"}), 0);
    const auto lines = Lines();
    ASSERT_THAT(lines, SizeIs(5)); // the packet at the very end opens a slice of its own
    EXPECT_EQ(lines[1], "1.5000000;0;1;11.25;0;1.0000000;0;0;10.25;0;1.0000000;0;2;12.25;0");
}

// The extremes and representatives of every slice are those that a pass over all packets finds.
TEST_F(PacketCommands, ReducesToWhatAPassOverThePacketsFinds) {
    const std::string recording = Path("dive.tarin");
    std::minstd_rand random(11);
    {
        Enregistrement::CRecordingWriter writer;
        constexpr std::string_view channels[] = {"DEPTH"};
        ASSERT_TRUE(writer.Create(recording, channels));
        Persistance_Xpf::CXpfTarinDepthPacketV1 packet;
        std::int64_t ticks = 10'000'000;
        for (int i = 0; i < 3000; ++i) {
            ticks += 1 + static_cast<std::int64_t>(random() % (i % 500 == 0 ? 90'000'000 : 2'000'000));
            packet.SetDate(0, Outils_Temps::CDateTimeSpan(ticks));
            packet.SetUInt8(2, static_cast<std::uint8_t>(random() % 4));
            packet.SetFloat(3, static_cast<float>(random() % 1000) / 8);
            ASSERT_TRUE(writer.Write("DEPTH", packet));
        }
    }
    // Columns: date, delay, rejection, depth, standard deviation.
    const auto sample = [](const std::vector<std::string>& cells, std::size_t first) {
        std::string ticks = cells.at(first);
        ticks.erase(ticks.find('.'), 1);
        return test::SSample{std::stoll(ticks), std::stof(cells.at(first + 3)),
                             static_cast<std::uint8_t>(std::stoi(cells.at(first + 2)))};
    };
    ASSERT_EQ(Run({"packets", recording, "DEPTH"}), 0);
    std::vector<test::SSample> all;
    for (const std::string& line : Lines())
        if (line != Lines().front()) all.push_back(sample(Cells(line), 0));
    ASSERT_THAT(all, SizeIs(3000));

    struct SWindow {
        int from, to, slices;
    };
    for (const auto& [from, to, slices] : {SWindow{0, 400, 7}, {20, 21, 40}, {100, 250, 500}, {-50, 9, 3}}) {
        ASSERT_EQ(Run({"reduce", recording, "DEPTH", "--from", std::to_string(from), "--to",
                       std::to_string(to), "--slices", std::to_string(slices)}),
                  0);
        const auto expected = test::ReducePlainly(all, from * 10'000'000ll, to * 10'000'000ll,
                                                  (to - from) * 10'000'000ll / slices);
        const auto lines = Lines();
        ASSERT_THAT(lines, SizeIs(expected.size() + 1)) << from;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const auto cells = Cells(lines[i + 1]);
            const auto& [representative, low, high] = expected[i];
            EXPECT_EQ(sample(cells, 0).ticks, representative.ticks) << from << ' ' << i;
            EXPECT_EQ(sample(cells, 5).depth, low.depth) << from << ' ' << i;
            EXPECT_EQ(sample(cells, 5).rejection, low.rejection) << from << ' ' << i;
            EXPECT_EQ(sample(cells, 10).depth, high.depth) << from << ' ' << i;
            EXPECT_EQ(sample(cells, 10).rejection, high.rejection) << from << ' ' << i;
        }
    }
}

TEST_F(PacketCommands, TellsWhatIsWrong) {
    const std::string gone = Path("gone"), text = Path("text"), project = Path("p.tarprj"),
                      out = Path("out.xml");
    std::ofstream(text) << std::string(500, 'x');
    struct SCase {
        std::vector<std::string> words;
        int status;
        const char* message;
    };
    const SCase cases[] = {
        {{}, 2, "usage: varnenav-batch COMMAND ..."},
        {{"unheard-of"}, 2, "unknown command \"unheard-of\""},
        {{"channels"}, 2, "wrong number of arguments"},
        {{"channels", m_recording, "more"}, 2, "wrong number of arguments"},
        {{"packets", m_recording, "DEPTH", "--form", "1"}, 2, "unknown option --form"},
        {{"packets", m_recording, "DEPTH", "--from"}, 2, "--from needs a value"},
        {{"packets", m_recording, "DEPTH", "--from", "soon"}, 2, "\"soon\" is no number of seconds"},
        {{"packets", m_recording, "DEPTH", "--from", "1e300"}, 2, "\"1e300\" is no number of seconds"},
        {{"packets", m_recording, "DEPTH", "--from", "nan"}, 2, "\"nan\" is no number of seconds"},
        {{"at", m_recording, "DEPTH", ""}, 2, "\"\" is no number of seconds"},
        {{"packets", m_recording, "DEPTH", "--limit", "0"}, 2, "--limit needs a whole number"},
        {{"packets", m_recording, "DEPTH", "--limit", "1", "--limit", "2"}, 2, "--limit is given twice"},
        {{"reduce", m_recording, "DEPTH", "--from", "1", "--to", "2"}, 2, "--slices are needed"},
        {{"reduce", m_recording, "DEPTH", "--from", "2", "--to", "1", "--slices", "3"}, 2, "later --to"},
        {{"picture", project, Path("p.gif")}, 2, "must end in .png"},
        {{"picture", project, Path("p.png"), "--size", "10x10"}, 2, "--size needs"},
        {{"picture", project, Path("p.png"), "--size", "800x600px"}, 2, "--size needs"},
        {{"create", m_recording, project, "--add", "sonar"}, 2, "unknown kind of sensor \"sonar\""},
        {{"channels", gone}, 1, "gone: no such file"},
        {{"channels", text}, 1, "text: "},
        {{"channels", m_folder.GetPath().string()}, 1, "not a packet file"},
        {{"analyse", gone}, 1, "gone: no such file"},
        {{"analyse", text}, 1, "text: "},
        {{"detect", gone}, 1, "gone: no such file"},
        {{"packets", m_recording, "GPS_1"}, 1, "no channel \"GPS_1\""},
        {{"packets", text, "DEPTH"}, 1, "text: "},
        {{"at", m_recording, "LBL", "1"}, 1, "empty or damaged"},
        {{"at", m_recording, "DEPTH", "99"}, 1, "outside the channel's data"},
        {{"reduce", gone, "DEPTH", "--from", "1", "--to", "2", "--slices", "3"}, 1, "gone: no such file"},
        {{"run", gone}, 1, "gone"},
        {{"run", text}, 1, "text"},
        {{"check", text}, 1, "text"},
        {{"describe", text}, 1, "text"},
        {{"dictionary", gone}, 1, "gone"},
        {{"copy", text, project}, 1, "text"},
        {{"parameters", text, out}, 1, "text"},
        {{"picture", text, Path("p.png")}, 1, "text"},
        {{"create", gone, project}, 1, "gone"},
        {{"create", text, project}, 1, "text"},
        {{"create", m_recording, project}, 1, "cannot detect equipment type"}, // no inertial data
        {{"create", m_recording, project, "--ins-configuration", gone}, 1, "gone: no such file"},
        {{"create-from-parameters", gone, project}, 1, "Failed to find input data file"},
        {{"create-from-parameters", text, project}, 1, "Failed to find input data file"},
    };
    for (const auto& [words, status, message] : cases) {
        EXPECT_EQ(Run(words), status) << testing::PrintToString(words);
        EXPECT_THAT(m_error, HasSubstr(message)) << testing::PrintToString(words);
        EXPECT_EQ(m_out, "") << testing::PrintToString(words);
        // One line says it; behind wrong usage stands the right one.
        if (status == 1) {
            EXPECT_EQ(std::count(m_error.begin(), m_error.end(), '\n'), 1) << m_error;
        }
    }
    for (const std::string& file : {project, out, Path("p.png"), Path("p.gif")})
        EXPECT_FALSE(std::filesystem::exists(file)) << file;
    EXPECT_EQ(Run({"--help"}), 0);
    for (const auto& command : ::Batch::GetCommands()) EXPECT_THAT(m_out, HasSubstr(command.name));
    EXPECT_EQ(Run({"--version"}), 0);
}

} // namespace
