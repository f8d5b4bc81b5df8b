// The questions that the application asks its user. The windows stand behind an interface, so that a session
// can be run by a script as well.
#pragma once

#include "app/version_info.h"
#include "document/document_host.h"

#include <QUrl>

#include <filesystem>
#include <string>
#include <vector>

class QSettings;
class QWidget;

namespace Dialogue_Tarvel {
class CDataFileChooser;
class CDataFileChannelChooser;
class CNewFromBatchParametersDlg;
class CNewProjectWizard;
class CRelinkDialog;
class CRoughMisalignmentChooser;
class CToolDialog;
class CTrvSettingsDlg;
} // namespace Dialogue_Tarvel

namespace Presentation_Tarvel_Graphics {
class CForm;
}

namespace Application_Tarvel {

// UI thread. `parent` is the window over which a dialog stands; every dialog returns when it was answered.
class IDialogs {
  public:
    virtual ~IDialogs() = default;

    virtual EAnswer ShowMessage(QWidget* parent, const std::string& text, EButtons buttons, EIcon icon) = 0;
    // As IQuestions::AskPath.
    virtual std::vector<std::filesystem::path> AskPath(QWidget* parent, const SPathQuestion& question) = 0;
    virtual void ShowAbout(QWidget* parent, const CVersionInfo& version) = 0;
    // Each shows the dialog, and returns whether it ended with OK: its logic then holds the result.
    virtual bool Show(QWidget* parent, Dialogue_Tarvel::CNewProjectWizard& dialog) = 0;
    virtual bool Show(QWidget* parent, Dialogue_Tarvel::CNewFromBatchParametersDlg& dialog) = 0;
    virtual bool Show(QWidget* parent, Dialogue_Tarvel::CDataFileChooser& dialog) = 0;
    virtual bool Show(QWidget* parent, Dialogue_Tarvel::CDataFileChannelChooser& dialog) = 0;
    virtual bool Show(QWidget* parent, Dialogue_Tarvel::CRoughMisalignmentChooser& dialog) = 0;
    virtual bool Show(QWidget* parent, Dialogue_Tarvel::CTrvSettingsDlg& dialog) = 0;
    // Ends with OK when the project has taken the new places.
    virtual bool Show(QWidget* parent, Dialogue_Tarvel::CRelinkDialog& dialog) = 0;
    virtual bool Show(QWidget* parent, Presentation_Tarvel_Graphics::CForm& form) = 0;
    // The dialog of a tool, which keeps its outcome; whether it has ended by itself.
    virtual bool Show(QWidget* parent, Dialogue_Tarvel::CToolDialog& dialog) = 0;
    // Hands the link to the program that the desktop has for it; false when there is none.
    virtual bool OpenLink(const QUrl& link) = 0;
};

class CWindowDialogs final : public IDialogs {
  public:
    // Keeps the sizes of dialogs and the last folder of each kind of file in `settings`, which must outlive
    // this; without it nothing is kept.
    explicit CWindowDialogs(QSettings* settings = nullptr) : m_settings(settings) {}

    EAnswer ShowMessage(QWidget* parent, const std::string& text, EButtons buttons, EIcon icon) override;
    std::vector<std::filesystem::path> AskPath(QWidget* parent, const SPathQuestion& question) override;
    void ShowAbout(QWidget* parent, const CVersionInfo& version) override;
    bool Show(QWidget* parent, Dialogue_Tarvel::CNewProjectWizard& dialog) override;
    bool Show(QWidget* parent, Dialogue_Tarvel::CNewFromBatchParametersDlg& dialog) override;
    bool Show(QWidget* parent, Dialogue_Tarvel::CDataFileChooser& dialog) override;
    bool Show(QWidget* parent, Dialogue_Tarvel::CDataFileChannelChooser& dialog) override;
    bool Show(QWidget* parent, Dialogue_Tarvel::CRoughMisalignmentChooser& dialog) override;
    bool Show(QWidget* parent, Dialogue_Tarvel::CTrvSettingsDlg& dialog) override;
    bool Show(QWidget* parent, Dialogue_Tarvel::CRelinkDialog& dialog) override;
    bool Show(QWidget* parent, Presentation_Tarvel_Graphics::CForm& form) override;
    bool Show(QWidget* parent, Dialogue_Tarvel::CToolDialog& dialog) override; // tool_windows.cpp
    bool OpenLink(const QUrl& link) override;

  private:
    QSettings* const m_settings;
};

} // namespace Application_Tarvel
