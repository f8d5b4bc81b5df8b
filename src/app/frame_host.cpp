#include "app/frame_host.h"

#include "app/status_bar.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "processing/message_line.h"
#include "views/output_wnd.h"

#include <QApplication>

#include <thread>

namespace Application_Tarvel {

using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

CTrvFrameHost::CPlainCursor::CPlainCursor(const CTrvFrameHost& host) : m_count(host.m_waitCursors) {
    for (int i = 0; i < m_count; ++i) QApplication::restoreOverrideCursor();
}

CTrvFrameHost::CPlainCursor::~CPlainCursor() {
    for (int i = 0; i < m_count; ++i) QApplication::setOverrideCursor(Qt::WaitCursor);
}

CTrvFrameHost::CTrvFrameHost(Outils::IMessageTarget& target, IDialogs& dialogs,
                             std::filesystem::path programFolder, std::filesystem::path userFolder)
    : m_dialogs(dialogs),
      m_programFolder(std::move(programFolder)),
      m_userFolder(std::move(userFolder)),
      m_receiver(target, this) {}

void CTrvFrameHost::Attach(QWidget* window, CTrvOutputWnd* output, CTrvStatusBar* statusBar) {
    m_window = window;
    m_output = output;
    m_statusBar = statusBar;
}

void CTrvFrameHost::UpdateMenuForEquipment(std::int32_t equipment) {
    if (m_onEquipment) m_onEquipment(equipment);
}

EAnswer CTrvFrameHost::ShowMessage(const std::string& text, EButtons buttons, EIcon icon) {
    const CPlainCursor plain(*this);
    return m_dialogs.ShowMessage(m_window, text, buttons, icon);
}

std::vector<std::filesystem::path> CTrvFrameHost::AskPath(const SPathQuestion& question) {
    const CPlainCursor plain(*this);
    return m_dialogs.AskPath(m_window, question);
}

EOutcome CTrvFrameHost::Refuse(std::string_view name) {
    AppendOutputText(FormatText(EText::notAvailable, {name}));
    return EOutcome::unavailable;
}

EOutcome CTrvFrameHost::MakeProject(SMadeProject& made) {
    const CPlainCursor plain(*this);
    return m_makeProject ? m_makeProject(made) : Refuse(GetText(EText::makeProjectName));
}

EOutcome CTrvFrameHost::MakeProjectFrom(const std::filesystem::path& commandFile, SMadeProject& made) {
    const CPlainCursor plain(*this);
    return m_makeProjectFrom ? m_makeProjectFrom(commandFile, made)
                             : Refuse(GetText(EText::newFromBatchTitle));
}

EOutcome CTrvFrameHost::UpdateDataFile(const std::filesystem::path& path) {
    const CPlainCursor plain(*this);
    return m_update ? m_update(path) : Refuse(FormatText(EText::updateFileName, {ToText(path)}));
}

EOutcome CTrvFrameHost::ConvertRawFiles(const std::vector<std::filesystem::path>& files, ERawFormat format,
                                        std::filesystem::path& converted) {
    const CPlainCursor plain(*this);
    return m_convert ? m_convert(files, format, converted)
                     : Refuse(FormatText(EText::convertFilesName, {ToText(files.front())}));
}

void CTrvFrameHost::AppendOutputText(const SOutputLine& line) {
    if (m_output) m_output->AppendLine(line);
}

void CTrvFrameHost::SetProgress(int percent) {
    if (m_statusBar) m_statusBar->SetProgress(percent);
}

void CTrvFrameHost::ShowProgress(bool visible) {
    if (m_statusBar) m_statusBar->ShowProgress(visible);
}

void CTrvFrameHost::ShowWaitCursor(bool on) {
    m_waitCursors += on ? 1 : -1;
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void CTrvFrameHost::Sleep(std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }

void CTrvFrameHost::OnProgressChanged() { SetProgress(static_cast<int>(m_receiver.LastProgress())); }

void CTrvFrameHost::OnMessageQueued() {
    int level = 0, code = 0;
    std::string text;
    if (m_receiver.TakeMessage(level, code, text))
        AppendOutputText({Communication_Processus::FormatMessageLine(level, text), level});
}

} // namespace Application_Tarvel
