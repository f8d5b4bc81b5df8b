// What the commands of the graphs ask and show: dialogs, printing, pictures, tables. UI thread.
#pragma once

#include "app/frame_host.h"
#include "graph/csv_export.h"
#include "views/stack_pictures.h"
#include "views/view_1d.h"

#include <QPointer>

#include <memory>

class QProgressDialog;
class QTimer;

namespace Application_Tarvel {

class CTrvGraphCommands {
  public:
    // All must outlive the object.
    CTrvGraphCommands(CTrvView1D& view, CTrvFrameHost& host, IDialogs& dialogs,
                      const Outils_Configuration::CTrvCnfConfigFile& configuration,
                      const Outils_Valeurs::CTrvAdaptors& adaptors);
    ~CTrvGraphCommands();
    CTrvGraphCommands(const CTrvGraphCommands&) = delete;
    CTrvGraphCommands& operator=(const CTrvGraphCommands&) = delete;

    void EditCurve();
    void EditRange();
    void GoToDate();
    void Copy();
    void SavePicture();
    // Writes in the background, under a window that shows how far it is; one at a time.
    void SaveData();
    bool IsSavingData() const { return m_export != nullptr; }
    void Print();
    void ShowPreview();
    // Draws the pages of the present graphs.
    void Print(QPrinter& printer);

  private:
    SPictureContent GetContent() const;
    std::filesystem::path Propose(const char* extension) const;
    bool MayReplace(const std::vector<std::filesystem::path>& targets, const std::filesystem::path& chosen);
    void OnDataSaved(const Presentation_Tarvel_Graphics::CTrv1DCsvExport::SOutcome& outcome);

    CTrvView1D& m_view;
    CTrvFrameHost& m_host;
    IDialogs& m_dialogs;
    const Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    const Outils_Valeurs::CTrvAdaptors& m_adaptors;
    std::unique_ptr<Presentation_Tarvel_Graphics::CTrv1DCsvExport> m_export; // under way, or null
    QPointer<QProgressDialog> m_progress;
};

} // namespace Application_Tarvel
