#include "app/start_up.h"

#include "app/program.h"
#include "app/snapshot.h"
#include "app/splash.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "session.h"

#include <QImage>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>

#include <csignal>
#include <fstream>
#include <optional>

using namespace Application_Tarvel;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

using StartUp = test::Session;

TEST(CommandLine, IsReadAsAWhole) {
    struct {
        std::vector<const char*> words;
        ERequest request;
        const char* project = "";
        const char* snapshot = "";
    } const rows[] = {
        {{}, ERequest::run},
        {{"a b.tarprj"}, ERequest::run, "a b.tarprj"},
        {{"--snapshot", "o.png"}, ERequest::snapshot, "", "o.png"},
        {{"p.tarprj", "--snapshot", "o.png"}, ERequest::snapshot, "p.tarprj", "o.png"},
        {{"--snapshot", "--", "--", "-p"}, ERequest::snapshot, "-p", "--"},
        {{"p", "--help"}, ERequest::help, "p"},
        {{"--version", "-x"}, ERequest::version},
        {{"--snapshot"}, ERequest::wrongUsage},
        {{"--snapshot", ""}, ERequest::wrongUsage},
        {{"a", "b"}, ERequest::wrongUsage, "a"},
        {{"-platform"}, ERequest::wrongUsage},
    };
    for (const auto& row : rows) {
        const SCommandLine line = ParseCommandLine(row.words);
        const std::string name = testing::PrintToString(row.words);
        EXPECT_EQ(line.request, row.request) << name;
        EXPECT_EQ(line.project, row.project) << name;
        EXPECT_EQ(line.snapshot, row.snapshot) << name;
        EXPECT_TRUE(row.request != ERequest::wrongUsage || !line.error.empty()) << name;
    }
}

TEST(Settings, AreReadAtTheStartAndWrittenAtTheEndOnly) {
    const test::CTemporaryFolder folder;
    const auto file = folder / "Renamed.conf.xml";
    std::ofstream(file) << "<configuration><general><startMode>OPENLAST</startMode>"
                           "<expertMode>yes</expertMode></general></configuration>";
    CTrvApp application(folder / "Renamed");
    application.InitInstance();
    EXPECT_TRUE(application.IsExpertMode());
    EXPECT_EQ(application.GetConfiguration().Get(test::Cnf<"general/startMode">), EStartMode::openLast);
    application.GetConfiguration().Set(test::Cnf<"general/startMode">, EStartMode::newEmpty);
    const auto startModeOf = [&] {
        CTrvApp other(folder / "Renamed.exe"); // an extension is replaced
        other.InitInstance();
        return other.GetConfiguration().Get(test::Cnf<"general/startMode">);
    };
    EXPECT_EQ(startModeOf(), EStartMode::openLast);
    EXPECT_TRUE(application.ExitInstance());
    EXPECT_EQ(startModeOf(), EStartMode::newEmpty);
    std::ofstream(file) << "<configuration><gen";
    EXPECT_EQ(startModeOf(), EStartMode::newWizard);
    CTrvApp nowhere{{}};
    nowhere.InitInstance();
    EXPECT_FALSE(nowhere.ExitInstance());
}

// The program's folder cannot be written when there is a folder in the file's place.
TEST(Settings, FallBackToTheUsersFolder) {
    const test::CTemporaryFolder folder;
    const auto program = folder / "P", user = folder / "user";
    const auto startMode = [&](std::optional<EStartMode> mode) {
        CTrvApp application(program, user);
        application.InitInstance();
        if (!mode) return application.GetConfiguration().Get(test::Cnf<"general/startMode">);
        application.GetConfiguration().Set(test::Cnf<"general/startMode">, *mode);
        EXPECT_TRUE(application.ExitInstance());
        return *mode;
    };
    const auto inProgram = folder / "P.conf.xml", inUser = user / "P.conf.xml";
    std::filesystem::create_directory(inProgram);
    startMode(EStartMode::newEmpty);
    EXPECT_TRUE(std::filesystem::is_regular_file(inUser));
    EXPECT_EQ(startMode(std::nullopt), EStartMode::newEmpty);
    std::filesystem::remove(inProgram);
    EXPECT_EQ(startMode(std::nullopt), EStartMode::newEmpty) << "the user's own are read first";
    startMode(EStartMode::openLast);
    EXPECT_TRUE(std::filesystem::is_regular_file(inProgram));
    EXPECT_FALSE(std::filesystem::exists(inUser)) << "it would hide the newer ones";
    EXPECT_EQ(startMode(std::nullopt), EStartMode::openLast);
    // What cannot be removed would hide the new settings.
    std::filesystem::create_directories(inUser / "in");
    EXPECT_FALSE(CTrvApp(program, user).ExitInstance());
    std::filesystem::remove_all(inUser);

    std::filesystem::remove(inProgram);
    std::filesystem::create_directory(inProgram);
    std::filesystem::create_directory(inUser);
    EXPECT_FALSE(CTrvApp(program, user).ExitInstance());
}

TEST_F(StartUp, SplashCoversNoWindowAndNoQuestion) {
    QPointer<CSplashWnd> splash = new CSplashWnd;
    splash->show();
    QMessageBox box;
    box.setModal(true);
    box.show();
    EXPECT_FALSE(splash->isVisible());
    box.close();
    splash->show();
    Start(*m_frame, {}, [&] {
        EXPECT_TRUE(splash->isVisible());
        splash->CloseFor(*m_frame);
        EXPECT_FALSE(splash->isVisible());
    });
    EXPECT_TRUE(PumpUntil([&] { return !splash; })) << "it ends by itself";
}

// What is unsaved is kept without a question, and offered when the project opens again.
TEST_F(StartUp, SignalEndsTheSessionAndKeepsTheChanges) {
    const Outils::CEndSignals endSignals;
    const auto project = MakeProject("p");
    for (const int signal : {SIGTERM, SIGHUP}) {
        MakeFrame();
        m_dialogs.m_answers = {EAnswer::no};
        ASSERT_TRUE(m_frame->OpenProject(project));
        m_dialogs.TakeMessages();
        m_frame->GetDocument().ProjectChanged(hintSimulationParametersChanged, nullptr);
        m_session->EndOn(endSignals);
        QTimer::singleShot(0, [signal] { std::raise(signal); });
        QTimer::singleShot(30'000, m_frame, [] { QApplication::exit(1); });
        EXPECT_EQ(QApplication::exec(), 0);
        EXPECT_THAT(m_dialogs.m_messages, IsEmpty());
    }
    MakeFrame();
    m_dialogs.m_answers = {EAnswer::yes};
    Start(*m_frame, {{}, true});
    EXPECT_TRUE(PumpUntil([&] { return m_frame->HasProject(); }));
    EXPECT_THAT(m_dialogs.TakeMessages(),
                ElementsAre(Outils_Texte::FormatText(Outils_Texte::EText::openUnsaved,
                                                     {Outils_Fichiers::ToText(project)})));
    EXPECT_EQ(m_frame->GetDocument().GetPathName(), project);
    EXPECT_TRUE(m_frame->isWindowModified());
    m_frame->GetDocument().SetModifiedFlag(false);
}

TEST_F(StartUp, SignalClosesAnOpenBox) {
    const Outils::CEndSignals endSignals;
    const auto project = MakeProject("p");
    ASSERT_TRUE(m_frame->OpenProject(project));
    m_frame->GetDocument().ProjectChanged(hintSimulationParametersChanged, nullptr);
    m_session->EndOn(endSignals);
    QTimer::singleShot(0, [] { std::raise(SIGTERM); });
    QTimer::singleShot(30'000, m_frame, [] { QApplication::exit(1); });
    const EAnswer answer = CWindowDialogs().ShowMessage(m_frame, "", EButtons::yesNoCancel, EIcon::question);
    EXPECT_EQ(answer, EAnswer::cancel);
    EXPECT_TRUE(m_session->IsEndedFromOutside());
    EXPECT_TRUE(std::filesystem::exists(project.string() + ".unsaved"));
    MakeFrame();
}

TEST(Program, NamesTheOtherProgramWithoutADisplay) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) qunsetenv(name);
    char program[] = "VarneNav";
    char* words[] = {program, nullptr};
    testing::internal::CaptureStderr();
    EXPECT_EQ(RunProgram(1, words), 2);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("varnenav-batch"));
    qputenv("QT_QPA_PLATFORM", "offscreen");
}

TEST(Version, TheSupportLinkCarriesIt) {
    CVersionInfo version = GetVersionInfo();
    EXPECT_TRUE(version.releaseDate.IsValid());
    version.fileVersion = "2.4 beta";
    version.buildNumber = "7";
    EXPECT_THAT(GetSupportLink(version),
                testing::EndsWith("?subject=VARNE%20NAV%20support%20request"
                                  "&body=Product%20name:%20VARNE%20NAV%0d%0aVersion:%202.4%20beta%0d%0a"
                                  "Build%20number:%207%0d%0aOwning%20company:%20%0d%0aOperating%20company:%20"
                                  "%0d%0aYour%20contact%20details:%20%0d%0aComments:%20%0d%0a"));
}

TEST_F(StartUp, OpensWhatWasNamedOrWhatWasLast) {
    const auto last = MakeProject("last");
    const auto gone = m_folder / "gone.tarprj";
    const std::tuple<std::filesystem::path, EStartMode, std::filesystem::path, std::filesystem::path, bool>
        rows[] = {
            {last, EStartMode::newWizard, {}, last, false}, {gone, EStartMode::openLast, last, gone, false},
            {{}, EStartMode::openLast, last, last, false},  {{}, EStartMode::openLast, gone, {}, false},
            {{}, EStartMode::openLast, {}, {}, false},      {{}, EStartMode::newEmpty, last, {}, false},
            {{}, EStartMode::newWizard, last, {}, true},
        };
    for (const auto& [named, mode, recent, file, newProject] : rows) {
        const SStart start = ChooseStart(named, mode, recent);
        EXPECT_EQ(start.file, file);
        EXPECT_EQ(start.newProject, newProject);
        MakeFrame();
        bool sawWindow = false;
        Start(*m_frame, start, [&] { sawWindow = m_frame->isVisible(); });
        EXPECT_TRUE(sawWindow);
        EXPECT_EQ(m_frame->GetDocument().GetPathName(), file == last ? last : std::filesystem::path());
        EXPECT_EQ(m_frame->HasProject(), file == last);
        // A project that cannot be opened leaves an empty document that is not to be saved.
        EXPECT_FALSE(m_frame->GetDocument().IsModified());
        EXPECT_EQ(m_dialogs.TakeMessages().size(), file == gone ? 1u : 0u);
    }
}

TEST_F(StartUp, ASnapshotShowsTheProjectOrTellsWhyNot) {
    const auto project = MakeProject("p");
    const auto snap = [&](const char* out, std::filesystem::path file) {
        MakeFrame();
        return TakeSnapshot(*m_frame, {ERequest::snapshot, std::move(file), m_folder / out, {}});
    };
    EXPECT_EQ(snap("p.png", project), "");
    const QImage picture(QString::fromStdString((m_folder / "p.png").string()));
    EXPECT_EQ(picture.size(), QSize(1400, 900));
    EXPECT_EQ(snap("empty.png", {}), "");
    EXPECT_THAT(snap("no folder/p.png", project), Not(IsEmpty()));
    EXPECT_THAT(snap("gone.png", m_folder / "gone.tarprj"), Not(IsEmpty()));
    EXPECT_FALSE(std::filesystem::exists(m_folder / "gone.png"));
    EXPECT_EQ(m_dialogs.TakeMessages().size(), 1u);
}

} // namespace
