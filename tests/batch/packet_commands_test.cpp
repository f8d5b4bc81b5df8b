#include "batch/batch_fixture.h"

#include "foundation/date_time.h"
#include "recording/recording_writer.h"
#include "xpf/packets.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include <unistd.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

namespace {

constexpr std::string_view kText = "caf\xC3\xA9; \"a\nb\"";

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
            packet.SetFloat(4, 0.1f);
            EXPECT_TRUE(writer.Write("DEPTH", packet));
        }
        // A result with a text that needs quoting, and with arrays.
        constexpr std::string_view results[] = {"MORVEX_MSG", "MORVEX_EXT"};
        EXPECT_TRUE(writer.Create(Path("r.tarout"), results));
        Persistance_Xpf::CXpfTaroutMorvexMsgPacketV1 message;
        std::memcpy(message.GetPayload() + Persistance_Xpf::kMorvexMsgLayout.OffsetOf("Text"), kText.data(),
                    kText.size());
        EXPECT_TRUE(writer.Write("MORVEX_MSG", message));
        EXPECT_TRUE(writer.Write("MORVEX_EXT", Persistance_Xpf::CXpfTaroutMorvexExtPacketV1()));
    }
};

// While an object lives the file cannot be read, also where the test runs as the user who may all.
class CWithoutRights {
  public:
    explicit CWithoutRights(std::filesystem::path path) : m_path(std::move(path)), m_user(::geteuid()) {
        std::filesystem::permissions(m_path, std::filesystem::perms::none);
        if (m_user == 0) {
            EXPECT_EQ(::seteuid(kOther), 0);
        }
    }
    ~CWithoutRights() {
        EXPECT_EQ(::seteuid(m_user), 0);
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all);
    }
    CWithoutRights(const CWithoutRights&) = delete;
    CWithoutRights& operator=(const CWithoutRights&) = delete;

  private:
    static constexpr uid_t kOther = 65534;

    std::filesystem::path m_path;
    uid_t m_user;
};

TEST_F(PacketCommands, ListsChannels) {
    Succeed("channels /r.tarin");
    EXPECT_THAT(Lines(),
                ElementsAre("number;name;type;packets;first [s];last [s];first UTC;last UTC;description",
                            "8;DEPTH;4;10;1;5.5;;;Depth sensor", HasSubstr("12;LBL;6;0;;;")));
}

// Every number is the shortest that reads back as the same value, in both forms of the table.
TEST_F(PacketCommands, PrintsPacketsOfAPeriod) {
    Succeed("packets /r.tarin depth --from 1.9 --to 3");
    EXPECT_THAT(Lines(), ElementsAre("Date;UTC;Delay;Rejection;Depth;Std. dev. depth", "2;;0;2;12.25;0.1",
                                     "2.5;;0;3;10.25;0.1", "3;;0;4;11.25;0.1"));
    Succeed("packets /r.tarin DEPTH --from 1.9 --to 2 --json");
    EXPECT_EQ(m_out, "{\"Date\":2,\"UTC\":null,\"Delay\":0,\"Rejection\":2,\"Depth\":12.25,"
                     "\"Std. dev. depth\":0.1}\n");
    for (const auto& [option, count, note] : {std::tuple{"--limit 2", 2u, ""},
                                              {"--from 99", 0u, "reach from 1 s to 5.5 s"},
                                              {"--from -99", 10u, ""}}) {
        Succeed("packets /r.tarin DEPTH " + std::string(option));
        EXPECT_THAT(Lines(), SizeIs(1 + count)) << option;
        EXPECT_THAT(m_error, HasSubstr(note)) << option;
        EXPECT_EQ(m_error.empty(), count > 0) << option;
    }
}

TEST_F(PacketCommands, ArraysHaveOneCellAnElement) {
    Succeed("packets /r.tarout MORVEX_MSG");
    EXPECT_THAT(Lines(), ElementsAre("Date;UTC;Level;Text", "0;;0;\"caf\xC3\xA9; \"\"a b\"\"\""));
    Succeed("packets /r.tarout MORVEX_MSG --json");
    EXPECT_THAT(m_out, HasSubstr("\"Text\":\"caf\xC3\xA9; \\\"a\\u000Ab\\\"\"}"));
    Succeed("packets /r.tarout MORVEX_EXT");
    EXPECT_THAT(m_out, HasSubstr(";Qnb[0];Qnb[1];Qnb[2];Qnb[3];"));
    EXPECT_EQ(Cells(Lines()[0]).size(), Cells(Lines()[1]).size());
}

TEST_F(PacketCommands, FindsMomentsReducesWindows) {
    Succeed("at /r.tarin DEPTH 3.2");
    EXPECT_THAT(Lines(), ElementsAre(StartsWith("Date;"), "3;;0;4;11.25;0.1"));
    Succeed("reduce /r.tarin DEPTH --from 1 --to 5.5 --slices 3");
    const auto lines = Lines();
    ASSERT_THAT(lines, SizeIs(5)); // the packet at the very end opens a slice of its own
    EXPECT_THAT(lines[0],
                AllOf(StartsWith("Date;"), HasSubstr(";minimum of Date;"), HasSubstr(";maximum of Date;")));
    EXPECT_EQ(lines[1], "1.5;;0;1;11.25;0.1;1;0;0;10.25;0.1;1;0;2;12.25;0.1");
}

TEST_F(PacketCommands, KeptIndexesChangeNoAnswer) {
    const std::string commands[] = {"at /r.tarin DEPTH 3.2",
                                    "reduce /r.tarin DEPTH --from 1 --to 5.5 --slices 3"};
    std::vector<std::string> answers;
    for (const std::string& command : commands) {
        Succeed(command);
        answers.push_back(m_out);
    }
    for (int time = 0; time < 2; ++time) { // made, and found again
        Succeed("index /r.tarin");
        const std::string size = std::to_string(std::filesystem::file_size(Path("r.tarin")));
        const auto cells = Cells(Lines()[1]);
        ASSERT_THAT(cells, SizeIs(5));
        EXPECT_THAT(cells, ElementsAre(Path("r.tarin"), size, size, testing::Ne("0"), "0"));
    }
    EXPECT_FALSE(std::filesystem::is_empty(Path("cache/varne-nav")));
    for (std::size_t i = 0; i < answers.size(); ++i) {
        Succeed(commands[i]);
        EXPECT_EQ(m_out, answers[i]);
        Succeed(commands[i] + " --no-index");
        EXPECT_EQ(m_out, answers[i]);
    }
    std::filesystem::remove_all(Path("cache"));
    std::ofstream(Path("cache")) << "no folder";
    EXPECT_EQ(Run("index /r.tarin"), 1);
    EXPECT_THAT(m_error, HasSubstr("cannot be kept in " + Path("cache/varne-nav")));
}

TEST_F(PacketCommands, ReportsWhatIsWrong) {
    std::ofstream(Path("text")) << std::string(500, 'x');
    std::ofstream(Path("empty")).flush();
    std::ofstream(Path("null.tarprj")) << std::string(2, '\0');
    std::ofstream(Path("cut")) << TextOf("r.tarin").substr(0, 125);
    std::ofstream(Path("secret")) << "x";
    std::filesystem::create_directory(Path("folder"));
    const std::tuple<const char*, int, const char*> cases[] = {
        {"", 2, "usage: varnenav-batch COMMAND ..."},
        {"unheard-of", 2, "unknown command \"unheard-of\""},
        {"channels", 2, "wrong number of arguments"},
        {"channels /r.tarin more", 2, "wrong number of arguments"},
        {"packets /r.tarin DEPTH --form 1", 2, "There is no switch --form. There are: --from, --to"},
        {"check -x /p.tarprj", 2, "no switch -x"},
        {"packets /r.tarin DEPTH --from", 2, "--from lacks its value"},
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
        {"create /r.tarin /p.tarprj --add sonar", 2,
         "unknown kind of sensor \"sonar\"; there are: all, gps, dvl"},
        {"channels /gone", 1, "gone: no such file"},
        {"channels /text", 1, "text: not a packet file"},
        {"channels /cut", 1, "cut: a packet file whose header is damaged or cut short"},
        {"analyse /empty", 1, "empty: an empty file"},
        {"packets /folder DEPTH", 1, "folder: a folder"},
        {"detect /gone", 1, "gone: no such file"},
        {"detect /empty", 1, "empty: an empty file"},
        {"packets /r.tarin GPS_1", 1, "no channel \"GPS_1\"; there are: DEPTH, LBL"},
        {"at /r.tarin LBL 1", 1, "the channel is empty"},
        {"at /r.tarin DEPTH 99", 1, "which reach from 1 s to 5.5 s"},
        {"reduce /gone DEPTH --from 1 --to 2 --slices 3", 1, "gone: no such file"},
        {"run /text", 1, "text: not a project"},
        {"run /null.tarprj", 1, "a project without content"},
        {"check /folder", 1, "folder: a folder"},
        {"dictionary /empty", 1, "empty: an empty file"},
        {"describe /text", 1, "text"},
        {"copy /text /p.tarprj", 1, "text"},
        {"parameters /text /out.xml", 1, "text"},
        {"picture /text /p.png", 1, "text"},
        {"create /text /p.tarprj", 1, "text: not a packet file"},
        {"create /r.tarin /none/p", 1, "there is no folder"},
        {"create /r.tarin /p.tarprj", 1, "cannot detect equipment type"}, // no inertial data
        {"create /r.tarin /p.tarprj --ins-configuration /gone", 1, "gone: no such file"},
        {"create-from-parameters /gone /p.tarprj", 1, "gone: no such file"},
        {"create-from-parameters /text /p.tarprj", 1, "Failed to find input data file"},
    };
    for (const auto& [words, status, message] : cases) {
        EXPECT_EQ(Run(words), status) << words;
        EXPECT_THAT(m_error, HasSubstr(message)) << words;
        EXPECT_EQ(m_out, "") << words;
        // One line says it; after wrong usage follows the right one.
        if (status == 1) {
            EXPECT_EQ(std::count(m_error.begin(), m_error.end(), '\n'), 1) << m_error;
        }
    }
    for (const char* file : {"p.tarprj", "out.xml", "p.png", "p.gif"})
        EXPECT_FALSE(std::filesystem::exists(Path(file))) << file;
    const CWithoutRights withoutRights(Path("secret"));
    EXPECT_EQ(Run("channels /secret"), 1);
    EXPECT_THAT(m_error, HasSubstr("no right to read it"));
}

TEST_F(PacketCommands, HelpIsEverywhere) {
    for (const char* words : {"--help", "-h", "help"}) {
        Succeed(words);
        for (const auto& command : ::Batch::GetCommands()) EXPECT_THAT(m_out, HasSubstr(command.name));
    }
    for (const auto& command : ::Batch::GetCommands()) {
        const std::string name(command.name);
        for (const std::string& words : {"help " + name, name + " -h", name + " --help"}) {
            Succeed(words);
            EXPECT_THAT(m_out, StartsWith("usage: varnenav-batch " + name)) << words;
        }
        Succeed(name + " --version");
        EXPECT_THAT(m_out, StartsWith("varnenav-batch ")) << name;
    }
}

} // namespace
