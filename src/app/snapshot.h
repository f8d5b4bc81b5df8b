// A picture of the main window without a user: for documents and for machines without a screen.
#pragma once

#include "app/dialogs.h"

#include <string>

namespace Application_Tarvel {

class CTrvProjectMainFrame;
struct SCommandLine;

// Takes questions for refused and keeps what was reported.
class CSilentDialogs final : public IDialogs {
  public:
    // One line for each message; empty when there was none.
    const std::string& GetMessages() const { return m_messages; }

    EAnswer ShowMessage(QWidget*, const std::string& text, EButtons buttons, EIcon) override;
    std::vector<std::filesystem::path> AskPath(QWidget*, const SPathQuestion&) override { return {}; }
    void ShowAbout(QWidget*, const CVersionInfo&) override {}
    bool Show(QWidget*, Dialogue_Tarvel::CNewProjectWizard&) override { return false; }
    bool Show(QWidget*, Dialogue_Tarvel::CNewFromBatchParametersDlg&) override { return false; }
    bool Show(QWidget*, Dialogue_Tarvel::CDataFileChooser&) override { return false; }
    bool Show(QWidget*, Dialogue_Tarvel::CDataFileChannelChooser&) override { return false; }
    bool Show(QWidget*, Dialogue_Tarvel::CRoughMisalignmentChooser&) override { return false; }
    bool Show(QWidget*, Dialogue_Tarvel::CTrvSettingsDlg&) override { return false; }
    bool Show(QWidget*, Dialogue_Tarvel::CRelinkDialog&) override { return false; }
    bool Show(QWidget*, Presentation_Tarvel_Graphics::CForm&) override { return false; }
    bool Show(QWidget*, Dialogue_Tarvel::CToolDialog&) override { return false; }
    bool OpenLink(const QUrl&) override { return false; }

  private:
    std::string m_messages;
};

// Opens the project of the line, if any, waits until its graphs are complete and writes the picture. The
// error as a text; empty on success.
std::string TakeSnapshot(CTrvProjectMainFrame& frame, const SCommandLine& line);

} // namespace Application_Tarvel
