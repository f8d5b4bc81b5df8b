#include "app/snapshot.h"

#include "app/main_frame.h"
#include "app/start_up.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QImageWriter>
#include <QPixmap>
#include <QTimer>

namespace Application_Tarvel {

using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

using Outils_Fichiers::ToText;
using Outils_Texte::FormatText;

namespace {

constexpr QSize kPictureSize(1400, 900);
constexpr int kLookPeriod = 50;       // ms
constexpr int kQuietTime = 600;       // ms without loading: the analysis may still find channels to load
constexpr int kLongestTime = 120'000; // ms

// Runs the event loop until the graphs have not been loading for a while; false when that takes too long.
bool WaitForGraphs(CTrvProjectMainFrame& frame) {
    QEventLoop loop;
    QElapsedTimer total, quiet;
    total.start();
    quiet.start();
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (frame.GetView().GetLoader().IsLoading()) quiet.restart();
        if (quiet.elapsed() >= kQuietTime || total.elapsed() >= kLongestTime) loop.quit();
    });
    look.start(kLookPeriod);
    loop.exec();
    return !frame.GetView().GetLoader().IsLoading();
}

} // namespace

EAnswer CSilentDialogs::ShowMessage(QWidget*, const std::string& text, EButtons buttons, EIcon) {
    m_messages += text + '\n';
    return buttons == EButtons::ok ? EAnswer::ok : buttons == EButtons::yesNo ? EAnswer::no : EAnswer::cancel;
}

std::string TakeSnapshot(CTrvProjectMainFrame& frame, const SCommandLine& line) {
    frame.resize(kPictureSize);
    Start(frame, {line.project, false});
    if (!line.project.empty() && !frame.HasProject())
        return FormatText(EText::snapshotNotOpened, {ToText(line.project)});
    if (!WaitForGraphs(frame)) return std::string(Outils_Texte::GetText(EText::snapshotTooLong));
    frame.resize(kPictureSize); // a window manager may have had its own idea
    QImageWriter writer(ToQString(line.snapshot), "png");
    if (!writer.write(frame.grab().toImage()))
        return FormatText(EText::snapshotNotWritten, {ToText(line.snapshot)});
    return {};
}

} // namespace Application_Tarvel
