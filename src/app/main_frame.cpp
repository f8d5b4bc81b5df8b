#include "app/main_frame.h"

#include "app/status_bar.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "plot/text.h"
#include "processing/message_line.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QTimer>

#include <thread>

namespace Application_Tarvel {

using Outils_Texte::EText;

namespace {

// The project among what is dragged; empty when there is none or more than one file.
std::filesystem::path ProjectOf(const QMimeData& data) {
    const QList<QUrl> links = data.urls();
    if (links.size() != 1 || !links[0].isLocalFile()) return {};
    const QString file = links[0].toLocalFile();
    return file.endsWith(Text(EText::projectExtension), Qt::CaseInsensitive) ? ToPath(file)
                                                                             : std::filesystem::path();
}

} // namespace

// The wait cursor gives way while a question is asked.
class CTrvProjectMainFrame::CPlainCursor {
  public:
    explicit CPlainCursor(int waitCursors) : m_waitCursors(waitCursors) {
        for (int i = 0; i < m_waitCursors; ++i) QApplication::restoreOverrideCursor();
    }
    ~CPlainCursor() {
        for (int i = 0; i < m_waitCursors; ++i) QApplication::setOverrideCursor(Qt::WaitCursor);
    }
    CPlainCursor(const CPlainCursor&) = delete;
    CPlainCursor& operator=(const CPlainCursor&) = delete;

  private:
    const int m_waitCursors;
};

void CTrvProjectMainFrame::NewProject() { m_document.CommandNew(); }

void CTrvProjectMainFrame::AskAndOpen() {
    // A name would be chosen by who only wants to see the folder.
    const auto paths = AskPath({EPathKind::open, EText::openTitle, EText::projectFilter,
                                Outils_Texte::GetText(EText::projectExtension).substr(1),
                                m_document.GetPathName().parent_path()});
    if (!paths.empty()) OpenProject(paths.front());
}

bool CTrvProjectMainFrame::OpenProject(const std::filesystem::path& path) {
    return m_document.CommandOpen(path);
}

void CTrvProjectMainFrame::OpenRecent(int index) {
    const auto& files = m_recentFiles.GetFiles();
    if (index >= static_cast<int>(files.size())) return;
    const auto path = files[static_cast<std::size_t>(index)];
    // The user may have said no to the question about the present project: that says nothing of this file.
    if (!m_document.OpenDocument(path) && !HasProject()) m_recentFiles.Remove(path);
}

QString CTrvProjectMainFrame::GetRecentCaption(int index) const {
    const auto& files = m_recentFiles.GetFiles();
    if (index >= static_cast<int>(files.size())) return {};
    QString name = ToQString(files[static_cast<std::size_t>(index)].filename());
    name.replace(u'&', QStringLiteral("&&"));
    return QStringLiteral("&%1 %2").arg(index + 1).arg(name);
}

bool CTrvProjectMainFrame::HasUserGuide() const {
    std::error_code error;
    return std::filesystem::is_regular_file(m_application.GetUserGuide(), error);
}

void CTrvProjectMainFrame::OpenUserGuide() {
    if (!m_dialogs.OpenLink(QUrl::fromLocalFile(ToQString(m_application.GetUserGuide()))))
        ShowMessage(std::string(Outils_Texte::GetText(EText::userGuideFailed)), EButtons::ok,
                    EIcon::exclamation);
}

void CTrvProjectMainFrame::ContactSupport() {
    if (!m_dialogs.OpenLink(QUrl::fromEncoded(QByteArray::fromStdString(GetSupportLink(GetVersionInfo())))))
        ShowMessage(std::string(Outils_Texte::GetText(EText::mailFailed)), EButtons::ok, EIcon::exclamation);
}

void CTrvProjectMainFrame::ShowAbout() { m_dialogs.ShowAbout(this, GetVersionInfo()); }

EAnswer CTrvProjectMainFrame::ShowMessage(const std::string& text, EButtons buttons, EIcon icon) {
    const CPlainCursor plain(m_waitCursors);
    return m_dialogs.ShowMessage(this, text, buttons, icon);
}

std::vector<std::filesystem::path> CTrvProjectMainFrame::AskPath(const SPathQuestion& question) {
    const CPlainCursor plain(m_waitCursors);
    return m_dialogs.AskPath(this, question);
}

EOutcome CTrvProjectMainFrame::Refuse(std::string_view name) {
    AppendOutputText(Outils_Texte::FormatText(EText::notAvailable, {name}));
    return EOutcome::unavailable;
}

EOutcome CTrvProjectMainFrame::MakeProject(SMadeProject&) {
    return Refuse(Outils_Texte::GetText(EText::makeProjectName));
}

EOutcome CTrvProjectMainFrame::MakeProjectFrom(const std::filesystem::path&, SMadeProject&) {
    return Refuse(Outils_Texte::GetText(EText::newFromBatchTitle));
}

EOutcome CTrvProjectMainFrame::UpdateDataFile(const std::filesystem::path& path) {
    return Refuse(Outils_Texte::FormatText(EText::updateFileName, {Outils_Fichiers::ToText(path)}));
}

EOutcome CTrvProjectMainFrame::ConvertRawFiles(const std::vector<std::filesystem::path>& files, ERawFormat,
                                               std::filesystem::path&) {
    return Refuse(
        Outils_Texte::FormatText(EText::convertFilesName, {Outils_Fichiers::ToText(files.front())}));
}

void CTrvProjectMainFrame::AppendOutputText(const std::string& line) {
    if (m_output) m_output->AppendLine(line);
}

void CTrvProjectMainFrame::SetProgress(int percent) {
    if (m_statusBar) m_statusBar->SetProgress(percent);
}

void CTrvProjectMainFrame::ShowProgress(bool visible) {
    if (m_statusBar) m_statusBar->ShowProgress(visible);
}

void CTrvProjectMainFrame::ShowWaitCursor(bool on) {
    m_waitCursors += on ? 1 : -1;
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void CTrvProjectMainFrame::Sleep(std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }

void CTrvProjectMainFrame::OnProgressChanged() { SetProgress(static_cast<int>(m_receiver.LastProgress())); }

void CTrvProjectMainFrame::OnMessageQueued() {
    int level = 0, code = 0;
    std::string text;
    if (m_receiver.TakeMessage(level, code, text))
        AppendOutputText(Communication_Processus::FormatMessageLine(level, text));
}

void CTrvProjectMainFrame::OnUpdate(EHint hint, const Outils_Objets::CObject*) {
    if (hint == hintRunStarted || hint == hintRunEnded) m_running = hint == hintRunStarted;
    UpdateFrame();
}

void CTrvProjectMainFrame::closeEvent(QCloseEvent* event) {
    if (!m_document.CanCloseFrame()) return event->ignore();
    StoreWindow();
    event->accept();
}

void CTrvProjectMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    if (!ProjectOf(*event->mimeData()).empty()) event->acceptProposedAction();
}

void CTrvProjectMainFrame::dropEvent(QDropEvent* event) {
    const auto path = ProjectOf(*event->mimeData());
    if (path.empty()) return;
    event->acceptProposedAction();
    // Later: the program the file was dragged from waits until this returns, and opening may ask questions.
    QTimer::singleShot(0, this, [this, path] { OpenProject(path); });
}

} // namespace Application_Tarvel
