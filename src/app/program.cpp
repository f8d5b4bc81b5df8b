#include "app/program.h"

#include "app/app.h"
#include "app/end_signals.h"
#include "app/event_loop_target.h"
#include "app/main_frame.h"
#include "app/snapshot.h"
#include "app/splash.h"
#include "app/start_up.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QApplication>
#include <QSettings>

#include <cstdlib>
#include <iostream>

namespace Application_Tarvel {

using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr const char* kSettingsName = "Qetral";

bool HasVariable(const char* name) {
    const char* value = std::getenv(name);
    return value && *value;
}

// A picture needs no screen.
void ChoosePlatform(const SCommandLine& line) {
    if (line.request != ERequest::snapshot || HasVariable("QT_QPA_PLATFORM")) return;
#ifndef _WIN32
    if (!HasVariable("DISPLAY") && !HasVariable("WAYLAND_DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
}

// Without a display the window system ends the program, and does not say what works without one.
bool HasDisplay() {
#ifdef _WIN32
    return true;
#else
    return HasVariable("QT_QPA_PLATFORM") || HasVariable("DISPLAY") || HasVariable("WAYLAND_DISPLAY");
#endif
}

int RunSnapshot(CTrvApp& application, Outils::IMessageTarget& target, const SCommandLine& line) {
    // The same picture on every desk: nothing of the user's window is read or written.
    QSettings settings(QString(), QSettings::IniFormat);
    CSilentDialogs dialogs;
    CTrvProjectMainFrame frame(application, target, dialogs, settings);
    const std::string error = TakeSnapshot(frame, line);
    std::cerr << dialogs.GetMessages();
    if (error.empty()) return 0;
    std::cerr << error << std::endl;
    return 1;
}

int RunSession(CTrvApp& application, Outils::IMessageTarget& target, const SCommandLine& line,
               CEndSignals& endSignals) {
    auto* splash = new CSplashWnd; // Deletes itself.
    splash->show();
    QSettings settings(QSettings::IniFormat, QSettings::UserScope, kSettingsName, kSettingsName);
    CWindowDialogs dialogs;
    CTrvProjectMainFrame frame(application, target, dialogs, settings);
    endSignals.Listen([&frame] {
        frame.GetDocument().EndNow();
        QApplication::exit();
    });
    const auto mode = application.GetConfiguration().Get(Cnf<"general/startMode">);
    Start(frame, ChooseStart(line.project, mode, frame.GetRecentFiles().GetFirst()),
          [&] { splash->CloseFor(frame); });
    return QApplication::exec();
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
    ChoosePlatform(line);
    if (!HasDisplay()) {
        std::cerr << GetText(EText::noDisplay) << '\n';
        return 1;
    }
    CEndSignals endSignals;
    int noArguments = std::min(argc, 1); // the words are read: none is the window system's
    QApplication qt(noArguments, argv);
    QApplication::setApplicationVersion(ToQString(GetVersionInfo().productVersion));
    CEventLoopTarget target;
    CTrvApp application(ToPath(QApplication::applicationFilePath()));
    application.InitInstance();
    if (line.request == ERequest::snapshot) return RunSnapshot(application, target, line);
    const int code = RunSession(application, target, line, endSignals);
    application.ExitInstance();
    return code;
}

} // namespace Application_Tarvel
