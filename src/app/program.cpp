#include "app/program.h"

#include "app/app.h"
#include "app/event_loop_target.h"
#include "app/snapshot.h"
#include "app/splash.h"
#include "app/start_up.h"
#include "app/window_session.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QApplication>
#include <QSettings>

#include <cstdlib>
#include <iostream>
#include <optional>

namespace Application_Tarvel {

using Outils_Plot2D::ToPath;
using Outils_Plot2D::ToQString;

using Outils_Configuration::Cnf;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr const char* kSettingsName = "Qetral";

bool HasVariable(const char* name) {
    const char* value = std::getenv(name);
    return value && *value;
}

bool HasDisplay() {
#ifdef _WIN32
    return true;
#else
    return HasVariable("QT_QPA_PLATFORM") || HasVariable("DISPLAY") || HasVariable("WAYLAND_DISPLAY");
#endif
}

// How a session has ended; from outside there is nobody to ask.
struct SSessionEnd {
    int code = 0;
    bool fromOutside = false;
};

void StoreSettings(const CTrvApp& application, bool canAsk) {
    if (application.ExitInstance()) return;
    const auto& files = application.GetSettingsFiles();
    const std::string text =
        FormatText(EText::settingsNotSaved, {ToText(files.GetProgramFile()), ToText(files.GetUserFile())});
    if (canAsk)
        CWindowDialogs().ShowMessage(nullptr, text, EButtons::ok, EIcon::exclamation);
    else
        std::cerr << text << std::endl;
}

int RunSnapshot(CTrvApp& application, Outils::IMessageTarget& target, const SCommandLine& line) {
    // The same picture on every desk: nothing of the user's window is read or written.
    QSettings settings(QString(), QSettings::IniFormat);
    CSilentDialogs dialogs;
    CWindowSession session(application, target, dialogs, settings);
    const std::string error = TakeSnapshot(session.GetFrame(), line);
    std::cerr << dialogs.GetMessages();
    if (error.empty()) return 0;
    std::cerr << error << std::endl;
    return 1;
}

SSessionEnd RunSession(CTrvApp& application, Outils::IMessageTarget& target, const SCommandLine& line,
                       const Outils::CEndSignals& endSignals) {
    SSessionEnd end;
    auto* splash = new CSplashWnd; // Deletes itself.
    splash->show();
    QSettings settings(QSettings::IniFormat, QSettings::UserScope, kSettingsName, kSettingsName);
    CWindowDialogs dialogs(&settings);
    CWindowSession session(application, target, dialogs, settings);
    CTrvProjectMainFrame& frame = session.GetFrame();
    session.EndOn(endSignals);
    const auto mode = application.GetConfiguration().Get(Cnf<"general/startMode">);
    Start(frame, ChooseStart(line.project, mode, frame.GetRecentFiles().GetFirst()),
          [&] { splash->CloseFor(frame); });
    // A signal may have closed a box of the start: the loop would not know of it.
    if (!session.IsEndedFromOutside()) end.code = QApplication::exec();
    end.fromOutside = session.IsEndedFromOutside();
    return end;
}

int Answer(const SCommandLine& line) {
    const CVersionInfo version = GetVersionInfo();
    switch (line.request) {
    case ERequest::help: std::cout << GetText(EText::windowUsage); return 0;
    case ERequest::version:
        std::cout << FormatText(EText::versionLine,
                                {version.productVersion, version.buildNumber, version.buildReleaseDate});
        return 0;
    default: std::cerr << line.error << '\n' << GetText(EText::windowUsage); return 2;
    }
}

} // namespace

int RunProgram(int argc, char* argv[]) {
    const SCommandLine line = ParseCommandLine({argv + 1, static_cast<std::size_t>(argc > 1 ? argc - 1 : 0)});
    if (line.request != ERequest::run && line.request != ERequest::snapshot) return Answer(line);
    if (!HasDisplay()) {
        if (line.request != ERequest::snapshot) {
            std::cerr << GetText(EText::noDisplay) << std::endl;
            return 2;
        }
        qputenv("QT_QPA_PLATFORM", "offscreen"); // a picture needs no screen
    }
    std::optional<Outils::CEndSignals> endSignals;
    if (line.request == ERequest::run) endSignals.emplace(); // the work on a picture may end at any place
    int noArguments = std::min(argc, 1); // the words are read: none is the window system's
    QApplication qt(noArguments, argv);
    QApplication::setApplicationVersion(ToQString(GetVersionInfo().productVersion));
    CEventLoopTarget target;
    CTrvApp application(ToPath(QApplication::applicationFilePath()),
                        Outils_Configuration::FindUserSettingsFolder());
    application.InitInstance();
    if (line.request == ERequest::snapshot) return RunSnapshot(application, target, line);
    const SSessionEnd end = RunSession(application, target, line, *endSignals);
    endSignals.reset(); // the question about the settings may be ended as any other program is
    StoreSettings(application, !end.fromOutside);
    return end.code;
}

} // namespace Application_Tarvel
