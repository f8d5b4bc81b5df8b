#include "app/window_middle.h"

#include "app/recent_files.h"
#include "app/start_page.h"
#include "document/document.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QFileInfo>
#include <QLocale>

#include <utility>
#include <vector>

namespace Application_Tarvel {

using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

// The mission that the build records as an example, from the folder of the program.
constexpr auto kSamplePath = "../../sample/mission.tarprj";

} // namespace

CWindowMiddle::CWindowMiddle(QWidget* graphs, CTrvDocument& document, const CRecentFiles& recent,
                             const std::filesystem::path& programFolder, QWidget* parent)
    : QStackedWidget(parent),
      m_document(document),
      m_recent(recent),
      m_graphs(graphs),
      m_start(new CTrvStartPage) {
    addWidget(m_start);
    addWidget(m_graphs);
    connect(m_start, &CTrvStartPage::NewRequested, this, &CWindowMiddle::NewRequested);
    connect(m_start, &CTrvStartPage::OpenRequested, this, &CWindowMiddle::OpenRequested);
    connect(m_start, &CTrvStartPage::SampleRequested, this, [this] { Q_EMIT ProjectRequested(m_sample); });
    connect(m_start, &CTrvStartPage::RecentRequested, this, &CWindowMiddle::RecentRequested);
    LookForFiles(programFolder);
}

CWindowMiddle::~CWindowMiddle() { m_document.GetFileLooks().Forget(this); }

void CWindowMiddle::Update() {
    const bool hasProject = m_document.GetProject() != nullptr;
    QWidget* const shown = hasProject ? m_graphs : m_start;
    if (currentWidget() != shown) {
        const bool hadFocus = isAncestorOf(window()->focusWidget());
        setCurrentWidget(shown);
        if (hadFocus) shown->setFocus();
    }
    if (hasProject) return;
    std::vector<CTrvStartPage::SRecent> recent;
    for (const auto& file : m_recent.GetFiles()) {
        const QString folder = ToQString(file.parent_path());
        const auto date = m_dates.find(file);
        recent.push_back({ToQString(file.stem()),
                          date == m_dates.end() ? folder
                                                : ToQString(Outils_Texte::FormatText(
                                                      EText::startRecentPlace,
                                                      {folder.toStdString(), date->second.toStdString()}))});
    }
    m_start->SetRecent(recent);
    m_start->SetHasSample(!m_sample.empty());
}

// No disk is waited for.
void CWindowMiddle::LookForFiles(const std::filesystem::path& programFolder) {
    struct SFound {
        std::map<std::filesystem::path, QString> dates;
        std::filesystem::path sample;
    };
    const auto look = [files = m_recent.GetFiles(), folder = programFolder,
                       locale = locale()](const Outils::CEvent& cancel) {
        SFound found;
        for (const auto& file : files) {
            if (cancel.IsSet()) break;
            if (const QFileInfo info(ToQString(file)); info.exists())
                found.dates[file] = locale.toString(info.lastModified(), QLocale::ShortFormat);
        }
        const auto sample = (folder / kSamplePath).lexically_normal();
        if (std::error_code error; std::filesystem::is_regular_file(sample, error)) found.sample = sample;
        return found;
    };
    m_document.GetFileLooks().Ask(this, look, [this](SFound found) {
        m_dates = std::move(found.dates);
        m_sample = std::move(found.sample);
        Update();
    });
}

} // namespace Application_Tarvel
