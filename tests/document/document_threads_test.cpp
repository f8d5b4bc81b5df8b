// Projects that are opened, replaced and closed while the threads of the document are at work on their files.
#include "dialogs/project_dialogs.h"
#include "document/document_fixture.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "support/faulty_disk.h"

#include <gmock/gmock.h>

#include <list>
#include <optional>
#include <random>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Application_Tarvel;
using namespace std::chrono_literals;
using Dialogue_Tarvel::CNewProjectWizard;
using Dialogue_Tarvel::EProjectField;

namespace {

using Outils_Texte::EText;
using test::Record;

constexpr std::uint16_t kImuNumber = 0;

class CCountingQuery final : public CTrvView1DDataQuery {
  public:
    using CTrvView1DDataQuery::CTrvView1DDataQuery;
    void OnFinished(bool) override { ++m_answers; }
    void OnCancelled() override { ++m_answers; }
    int m_answers = 0;
};

// The superuser's rights to files are none for this thread, and for those that it starts.
struct SWithoutRights {
    SWithoutRights() { ::setfsuid(65534); }
    ~SWithoutRights() { ::setfsuid(::geteuid()); }
};

// Boxes and dialogs have a loop of their own, which delivers what is posted. The updater renames what it
// makes into place.
class CUpdatingHost final : public test::CScriptedHost {
  public:
    EAnswer ShowMessage(const std::string& text, EButtons buttons, EIcon icon) override {
        const EAnswer answer = CScriptedHost::ShowMessage(text, buttons, icon);
        m_queue.RunPending();
        return answer;
    }
    EOutcome UpdateDataFile(const std::filesystem::path& path) override {
        const std::filesystem::path made = path.native() + ".new";
        std::filesystem::copy_file(m_repaired, made);
        std::filesystem::rename(made, path);
        m_queue.RunPending();
        return EOutcome::done;
    }
};

class DocumentThreads : public testing::Test, private IDocumentView {
  protected:
    DocumentThreads() { m_document.AddView(this); }

    std::unique_ptr<CTrvProject> Make(const std::filesystem::path& recording) {
        std::string message;
        auto project = CreateProject({recording, m_folder / "p.tarprj"}, message);
        EXPECT_TRUE(project) << message;
        return project;
    }
    static std::size_t LastPacket(const std::filesystem::path& path) {
        Persistance_Xpf::CXpfFile file;
        EXPECT_TRUE(file.Open(path) && file.Seek(file.GetFileSize()));
        Persistance_Xpf::SPacketHeader header;
        EXPECT_TRUE(file.SearchPacketBackward(header));
        return static_cast<std::size_t>(file.GetPosition());
    }
    // As a writer leaves it that is killed in the middle of a packet.
    static void Tear(const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        std::string bytes(static_cast<std::size_t>(file_size(file)), '\0');
        in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        std::ofstream(file, std::ios::app).write(bytes.data() + LastPacket(file), 30);
    }
    bool Saw(EHint hint) const { return std::find(m_hints.begin(), m_hints.end(), hint) != m_hints.end(); }
    bool PumpUntil(const std::function<bool()>& done) { return m_host.m_queue.RunUntil(done, 30s); }

    // What a thread reports of a file is never heard after the file's project has gone.
    void OnUpdate(EHint hint, const Outils_Objets::CObject* object) override {
        m_hints.push_back(hint);
        if (hint != hintChannelFound && hint != hintDataFileContentChanged) return;
        ASSERT_TRUE(m_document.GetProject());
        const auto files = m_document.GetProject()->simulationParameters->GetDataFiles();
        EXPECT_NE(std::find(files.begin(), files.end(), object), files.end()) << "of another project";
    }

    test::CTemporaryFolder m_folder;
    CUpdatingHost m_host;
    Outils_Configuration::CTrvCnfConfigFile m_configuration;
    std::vector<EHint> m_hints;
    CTrvDocument m_document{m_host, m_host.m_queue, m_configuration, false};
};

TEST_F(DocumentThreads, ProjectsCloseWhileTheirFilesLoad) {
    test::CTestRecording growing(m_folder / "growing.tarin"), still(m_folder / "still.tarin");
    Record(growing, 0, 3000);
    Record(still, 0, 3000);
    std::atomic<int> rounds{0};
    constexpr int kRounds = 60;
    std::thread writer([&] {
        for (int i = 3000; rounds < kRounds;) {
            if (i > 3000 + 500 * rounds) {
                std::this_thread::yield();
                continue;
            }
            Record(growing, i, i + 50);
            i += 50;
        }
    });

    std::mt19937 random(4);
    std::vector<std::shared_ptr<CCountingQuery>> queries;
    const auto ask = [&] {
        const CTrvDataFile& file = *m_document.GetProject()->simulationParameters->mainInputFile;
        const auto start = test::Seconds(random() % 20);
        const SWindow window{start, start + test::Seconds(10), test::Seconds(0.05)};
        const std::uint16_t channel = random() % 3 ? kImuNumber : test::kGpsNumber;
        queries.push_back(std::make_shared<CCountingQuery>(m_document.GetFiles()->GetAddress(file, channel),
                                                           window, nullptr));
        m_document.GetQueryManager().Submit(queries.back());
    };
    for (; rounds < kRounds; ++rounds) {
        m_host.m_patience = random() % 2 ? 30s : 0s;
        switch (random() % 4) {
        case 0: EXPECT_TRUE(m_document.NewFromProject(Make(still.GetPath()), m_folder / "s.tarprj")); break;
        case 1: EXPECT_TRUE(m_document.NewFromProject(Make(growing.GetPath()), m_folder / "g.tarprj")); break;
        case 2:
            if (std::filesystem::exists(m_folder / "g.tarprj")) {
                EXPECT_TRUE(m_document.CommandOpen(m_folder / "g.tarprj"));
            }
            break;
        default: EXPECT_TRUE(m_document.CloseDocument());
        }
        for (int i = 0; m_document.GetProject() && i < 4; ++i) ask();
        if (!queries.empty() && random() % 2)
            m_document.GetQueryManager().Cancel(
                queries[queries.size() - 1 - random() % std::min<std::size_t>(4, queries.size())]);
        // Sometimes much of what the threads have posted is heard late.
        if (random() % 3 == 0) m_host.m_queue.RunPending();
    }
    writer.join();
    EXPECT_TRUE(m_document.NewFromProject(Make(still.GetPath()), m_folder / "s.tarprj"));
    ask();
    EXPECT_TRUE(PumpUntil([&] {
        return std::all_of(queries.begin(), queries.end(),
                           [](const auto& query) { return query->m_answers > 0; });
    }));
    for (const auto& query : queries) EXPECT_EQ(query->m_answers, 1);
    EXPECT_TRUE(Saw(hintChannelFound));
}

// Many recordings are broken at once, each in its own way. The output panel tells each event once, however
// often the files are looked at after it.
TEST_F(DocumentThreads, EachFaultOfAFileIsReportedOnce) {
    struct SRow {
        const char* name;
        std::function<void(const std::filesystem::path&)> breakFile;
        EText text; // 0 for none
    };
    std::list<test::CFaultyDisk> disks;
    using namespace std::filesystem;
    const SRow rows[] = {
        {"vanished", [](const path& file) { remove(file); }, EText::fileVanished},
        {"folder", [](const path& file) { remove(file), create_directory(file); }, EText::fileIsFolder},
        {"fifo", [](const path& file) { remove(file), ::mkfifo(file.c_str(), 0600); }, EText::fileIsNoFile},
        {"shrunk", [](const path& file) { resize_file(file, file_size(file) / 2); }, EText::fileReplaced},
        {"cut", [](const path& file) { resize_file(file, 50); }, EText::fileHeaderDamaged},
        {"empty", [](const path& file) { resize_file(file, 0); }, EText::fileEmpty},
        {"foreign", [](const path& file) { std::ofstream(file) << "no recording"; }, EText::fileForeign},
        {"overtaken",
         [this](const path& file) {
             test::CTestRecording other(m_folder / "other");
             Record(other, 0, 500);
             rename(m_folder / "other", file);
         },
         EText::fileReplaced},
        {"damaged", [](const path& file) { std::ofstream(file, std::ios::app) << std::string(4000, 'x'); },
         EText::fileDamaged},
        {"torn", Tear, EText::none},
        {"locked", [](const path& file) { permissions(file, perms::none); }, EText::fileNotReadable},
        {"unplugged",
         [&](const path& file) {
             disks.emplace_back(file, test::CFaultyDisk::fails);
             resize_file(file, file_size(file) - 1);
         },
         EText::fileNotReadable},
        {"scratched", // where the file has grown
         [&](const path& file) {
             disks.emplace_back(file, test::CFaultyDisk::fails, file_size(file));
             resize_file(file, file_size(file) + 4000);
         },
         EText::fileDamaged},
    };
    test::CTestRecording main(m_folder / "main.tarin");
    Record(main, 0, 300);
    ASSERT_TRUE(m_document.NewFromProject(Make(main.GetPath()), m_folder / "p.tarprj"));
    auto& parameters = *m_document.GetProject()->simulationParameters;
    for (const SRow& row : rows) {
        test::CTestRecording recording(m_folder / row.name);
        Record(recording, 0, 300);
        CTrvDataFile* file = m_document.GetProject()->AddDataFile(recording.GetPath(), false);
        ASSERT_TRUE(file);
        m_document.GetFiles()->Follow(*file);
    }
    const auto seen = [&] { return std::count(m_hints.begin(), m_hints.end(), hintDataFileContentChanged); };
    ASSERT_TRUE(PumpUntil([&] { return seen() == 1 + std::ssize(rows); })); // all have appeared
    EXPECT_TRUE(m_host.m_output.empty());

    std::vector<std::string> expected;
    for (const SRow& row : rows) {
        row.breakFile(m_folder / row.name);
        std::string position = "";
        if (row.text == EText::fileDamaged) position = std::to_string(file_size(m_folder / row.name) - 4000);
        const std::string file = Outils_Fichiers::ToText(m_folder / row.name);
        if (row.text != EText::none) expected.push_back(Outils_Texte::FormatText(row.text, {file, position}));
    }
    // What has lost its rights is as large as before: the next query tells.
    for (const auto& file : {m_folder.GetPath(), m_folder / "damaged"}) permissions(file, perms::all);
    auto withoutRights = std::make_optional<SWithoutRights>();
    for (const auto& file : parameters.GetDataFiles()) m_document.GetFiles()->OnQueryFailed(*file);
    ASSERT_TRUE(PumpUntil(
        [&] { return m_host.m_output.size() >= expected.size() && seen() == 2 * std::ssize(rows); }));
    // Later looks, at the file that goes on growing among them, find no news.
    std::ofstream(m_folder / "damaged", std::ios::app) << std::string(4000, 'x');
    for (const auto& file : parameters.GetDataFiles()) m_document.GetFiles()->OnQueryFailed(*file);
    ASSERT_TRUE(PumpUntil([&] { return seen() > 2 * std::ssize(rows); }));
    while (m_document.IsAnalysing()) m_host.m_queue.RunOne(10ms);
    m_host.m_queue.RunPending();
    EXPECT_THAT(m_host.m_output, testing::UnorderedElementsAreArray(expected));

    // A project opens over all of it, and tells what is missing.
    withoutRights.reset();
    ASSERT_TRUE(m_document.Save());
    m_host.m_output.clear();
    withoutRights.emplace();
    ASSERT_TRUE(m_document.CommandOpen(m_folder / "p.tarprj"));
    // Vanished, folder, fifo, cut, empty, foreign, locked, unplugged.
    EXPECT_EQ(m_host.m_output.size(), 8u);
    const std::string cut = Outils_Fichiers::ToText(m_folder / "cut");
    EXPECT_THAT(m_host.m_messages,
                testing::Contains(Outils_Texte::FormatText(EText::failedToLoad, {cut}) + "\n\n" +
                                  Outils_Texte::FormatText(EText::fileHeaderDamaged, {cut})));
}

TEST_F(DocumentThreads, ReplacedFileReportsItsDamageAgain) {
    test::CTestRecording main(m_folder / "main.tarin"), recording(m_folder / "damaged");
    for (test::CTestRecording* each : {&main, &recording}) Record(*each, 0, 300);
    const auto place = std::filesystem::file_size(recording.GetPath());
    const auto damage = [](const std::filesystem::path& file) {
        std::ofstream(file, std::ios::app) << std::string(4000, 'x');
    };
    damage(recording.GetPath());
    ASSERT_TRUE(m_document.NewFromProject(Make(main.GetPath()), m_folder / "p.tarprj"));
    CTrvDataFile* file = m_document.GetProject()->AddDataFile(recording.GetPath(), false);
    ASSERT_TRUE(file);
    m_document.GetFiles()->Follow(*file);
    const auto appeared = [&] { return std::ranges::count(m_hints, hintDataFileContentChanged); };
    ASSERT_TRUE(PumpUntil([&] { return m_host.m_output.size() == 1 && appeared() == 2; }));
    std::filesystem::copy_file(recording.GetPath(), m_folder / "other");
    damage(m_folder / "other"); // the place stays
    std::filesystem::rename(m_folder / "other", recording.GetPath());
    ASSERT_TRUE(PumpUntil([&] { return m_host.m_output.size() == 3; }));
    const std::string name = Outils_Fichiers::ToText(recording.GetPath());
    const auto damaged = Outils_Texte::FormatText(EText::fileDamaged, {name, std::to_string(place)});
    EXPECT_THAT(m_host.m_output,
                testing::UnorderedElementsAre(damaged, damaged,
                                              Outils_Texte::FormatText(EText::fileReplaced, {name})));
}

TEST_F(DocumentThreads, LateOldFilesAreUpgradedTogether) {
    const std::filesystem::path disk = m_folder / "disk";
    std::filesystem::create_directory(disk);
    const std::filesystem::path files[] = {disk / "a", disk / "b", disk / "c"};
    for (const auto& file : files) {
        test::CTestRecording recording(file);
        Record(recording, 0, 300);
    }
    m_host.m_repaired = m_folder / "repaired";
    std::filesystem::copy_file(files[0], m_host.m_repaired);
    {
        test::CScriptedHost host;
        CTrvDocument document(host, host.m_queue, m_configuration, false);
        auto project = Make(files[0]);
        ASSERT_TRUE(project->AddDataFile(files[1], false) && project->AddDataFile(files[2], false));
        ASSERT_TRUE(document.NewFromProject(std::move(project), m_folder / "p.tarprj"));
    }
    for (const auto& file : files) test::MakeOutdated(file);
    m_host.m_patience = 0ms;
    m_host.m_answers = {EAnswer::yes};
    {
        const test::CFaultyDisk held(disk, test::CFaultyDisk::stalls);
        ASSERT_TRUE(m_document.CommandOpen(m_folder / "p.tarprj"));
        // The answer of the result, and what the monitor sees of the others.
        for (int i = 0; i < 4; ++i) ASSERT_TRUE(m_host.m_queue.RunOne(30s));
        EXPECT_TRUE(m_host.m_messages.empty());
    }
    const auto& layers = m_document.GetProject()->dataModel->m_layers;
    const auto isKnown = [](const auto& layer) { return layer->m_name == "IMU"; };
    ASSERT_TRUE(PumpUntil([&] { return std::count_if(layers.begin(), layers.end(), isKnown) == 3; }));
    // The monitor's next look finds another file under each name, and that is no news.
    while (m_document.IsAnalysing()) m_host.m_queue.RunOne(10ms);
    m_hints.clear();
    for (const auto& file : files) Tear(file);
    ASSERT_TRUE(PumpUntil([&] { return Saw(hintDataFileContentChanged); }));
    while (m_document.IsAnalysing()) m_host.m_queue.RunOne(10ms);
    m_host.m_queue.RunPending();
    EXPECT_THAT(m_host.m_messages, testing::ElementsAre(Outils_Texte::GetText(EText::upgradeDataFiles)));
    EXPECT_THAT(m_host.m_output, testing::IsEmpty());
}

// The reads of a recording are held: what the UI thread does returns all the same, for no read goes on before
// the disk object goes. Then what was forgotten is not heard, and what was not is made up for.
TEST_F(DocumentThreads, DeadDiskDelaysNothing) {
    test::CTestRecording bad(m_folder / "bad.tarin"), good(m_folder / "good.tarin");
    Record(bad, 0, 300);
    Record(good, 0, 300);
    ASSERT_TRUE(m_document.NewFromProject(Make(good.GetPath()), m_folder / "good.tarprj"));
    ASSERT_TRUE(m_document.NewFromProject(Make(bad.GetPath()), m_folder / "bad.tarprj"));
    const auto hasLayers = [this] { return !m_document.GetProject()->dataModel->m_layers.empty(); };
    const auto frequency = [this] { return m_document.GetProject()->simulationParameters->imuFrequency; };
    std::vector<std::shared_ptr<CCountingQuery>> queries;
    const auto ask = [&] {
        const CTrvDataFile& file = *m_document.GetProject()->simulationParameters->mainInputFile;
        const SWindow window{test::Seconds(0), test::Seconds(3), test::Seconds(0.05)};
        queries.push_back(std::make_shared<CCountingQuery>(
            m_document.GetFiles()->GetAddress(file, kImuNumber), window, nullptr));
        m_document.GetQueryManager().Submit(queries.back());
    };
    const auto answered = [&] { return queries.back()->m_answers == 1; };
    m_configuration.Set(Outils_Configuration::Cnf<"general/utcSearch/timeout">, 1);

    for (const bool replace : {false, true}) {
        const test::CFaultyDisk disk(bad.GetPath(), test::CFaultyDisk::stalls);
        m_host.m_patience = 0ms;
        ASSERT_TRUE(m_document.CommandOpen(m_folder / "bad.tarprj"));
        ask();
        disk.WaitForHeld(5); // the look, the cipher mode, the frequency, the analyser and the query
        EXPECT_FALSE(hasLayers());
        m_document.GetFiles()->OnQueryFailed(*m_document.GetProject()->simulationParameters->mainInputFile);
        CNewProjectWizard wizard(m_host, m_configuration, m_document.GetFileLooks());
        wizard.ChooseInputFiles({bad.GetPath()});
        EProjectField focus{};
        EXPECT_TRUE(replace || !wizard.OnOK(focus));
        if (replace) {
            m_host.m_patience = 30s;
            ASSERT_TRUE(m_document.CommandOpen(m_folder / "good.tarprj"));
            EXPECT_TRUE(hasLayers());
            EXPECT_EQ(frequency(), 100);
            ask(); // not behind the one that is held
            EXPECT_TRUE(PumpUntil(answered));
        } else {
            EXPECT_TRUE(m_document.CloseDocument());
        }
    }
    EXPECT_TRUE(PumpUntil([&] { return queries[0]->m_answers == 1 && queries[1]->m_answers == 1; }));

    m_host.m_patience = 0ms;
    {
        const test::CFaultyDisk disk(bad.GetPath(), test::CFaultyDisk::stalls);
        ASSERT_TRUE(m_document.CommandOpen(m_folder / "bad.tarprj"));
        m_hints.clear();
    }
    EXPECT_TRUE(PumpUntil([&] { return hasLayers() && frequency() == 100; }));
    EXPECT_TRUE(Saw(hintDataLayersRebuilt) && Saw(hintDataFileContentChanged));
    const auto& layers = m_document.GetProject()->dataModel->m_layers;
    EXPECT_TRUE(PumpUntil([&] {
        return std::all_of(layers.begin(), layers.end(),
                           [](const auto& layer) { return layer->m_hasData == (layer->m_name != "DEPTH"); });
    }));
}

} // namespace
