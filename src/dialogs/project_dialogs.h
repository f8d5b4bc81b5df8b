// The dialogs that make a project, as logic: what they hold, check, ask and result in. A window shows the
// fields and calls OnOK; every question and message goes through the host. UI thread.
#pragma once

#include "dialogs/batch_creation.h"
#include "document/document_host.h"
#include "document/file_looks.h"
#include "document/recording_survey.h"
#include "foundation/texts.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}

namespace Dialogue_Tarvel {

using Outils_Texte::EText;
using namespace Application_Tarvel;
using Metier_Tarvel::CTrvProject;

// Where the focus goes after a refused OK.
enum class EProjectField { files, configurationFile, name, folder };

// What both dialogs share: the place of the project, and the project as the result.
class CProjectDialog {
  public:
    // All must outlive the dialog.
    CProjectDialog(IDocumentHost& host, const Outils_Configuration::CTrvCnfConfigFile& configuration,
                   CFileLooks& looks)
        : m_host(host), m_configuration(configuration), m_looks(looks) {}
    virtual ~CProjectDialog() = default;
    CProjectDialog(const CProjectDialog&) = delete;
    CProjectDialog& operator=(const CProjectDialog&) = delete;

    std::string projectName; // of the project file, without extension
    std::filesystem::path projectFolder;

    // Checks the fields and makes the project; true when it did. Otherwise the reason was reported or the
    // user cancelled a question: the dialog stays open with the focus on `focus`, and there is no project.
    bool OnOK(EProjectField& focus);

    // The result, once: null before OnOK has succeeded.
    std::unique_ptr<CTrvProject> TakeProject() { return std::move(m_project); }
    // Where the project is to be saved.
    std::filesystem::path GetProjectPath() const;

  protected:
    // What a dialog has of its own, in the order of the calls; each false was reported, with the focus set.
    virtual bool CheckFiles(EProjectField& /*focus*/) { return true; }
    virtual bool PrepareFiles() { return true; }
    virtual std::unique_ptr<CTrvProject> MakeProject(EProjectField& focus) = 0;

    bool Refuse(std::string message); // shows the reason; false
    bool Refuse(EText text);
    bool Ask(EText question);
    // False, and reported, when there is nothing of this name or its disk does not answer.
    bool CheckExists(const std::filesystem::path& path);
    // What `look` finds in the files, if they answer in time.
    template <class Look>
    auto LookInto(Look look) {
        const CWaitCursor wait(m_host);
        return m_looks.Call(std::move(look), GetTimeForChosenFile(m_configuration));
    }

    IDocumentHost& m_host;
    const Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    CFileLooks& m_looks;

  private:
    bool CheckPlace(EProjectField& focus);
    bool AgreeToOverwrite();
    // False too when the disk does not answer in time.
    bool IsWritable(const std::filesystem::path& folder);
    // `none`, and reported, when the disk does not answer in time or refuses to.
    std::filesystem::file_type FindType(const std::filesystem::path& path);

    std::unique_ptr<CTrvProject> m_project;
};

class CNewProjectWizard final : public CProjectDialog {
  public:
    using CProjectDialog::CProjectDialog;
    ~CNewProjectWizard() override;

    // Texts of the two file dialogs.
    static constexpr EText kInputFilter = EText::recordingFilter;
    static constexpr EText kConfigurationFilter = EText::insConfigurationFilter;

    std::filesystem::path insConfigurationFile; // empty for none

    // Takes the chosen files, and proposes name and folder from the first.
    void ChooseInputFiles(const std::vector<std::filesystem::path>& files);
    const std::vector<std::filesystem::path>& GetInputFiles() const { return m_inputFiles; }
    // The files on one line; those with a blank in quotes.
    std::string GetInputLine() const;

    // A sensor for a channel of the recording.
    struct SOffer {
        SSurveyedChannel channel;
        bool isTaken = true;
    };
    struct SFindings {
        bool isBusy = false; // more may come
        SRecordingSurvey recording;
        std::vector<SSurveyedChannel> channels;
        std::vector<SOffer> offers; // one for each aiding channel, in file order
    };
    // From now on the chosen recording is looked into in the background; `onFound` runs as often as more of
    // it is known. Without it nobody looks, and the project starts without sensors.
    void Survey(std::function<void()> onFound);
    const SFindings& GetFindings() const { return m_findings; }
    // The findings as a person reads them.
    struct SFindingRow {
        std::string title, value;
        std::optional<std::size_t> offer; // of a channel that can be a sensor
    };
    std::vector<SFindingRow> DescribeFindings() const;
    // Whether the new project gets the offered sensor. One more than a project can have of its kind takes the
    // place of the first.
    void Take(std::size_t offer, bool isTaken);

  private:
    void StartSurvey();
    void TakeChannels(std::vector<SSurveyedChannel> channels);
    int CountTaken(Metier_Tarvel::ESensorKind kind) const;
    void AddSensors(CTrvProject& project) const;

    bool CheckFiles(EProjectField& focus) override;
    // Leaves one packet file of the current layout in the list.
    bool PrepareFiles() override;
    bool Convert(ERawFormat format);
    std::unique_ptr<CTrvProject> MakeProject(EProjectField& focus) override;

    std::vector<std::filesystem::path> m_inputFiles;
    std::function<void()> m_onFound; // empty while nobody looks
    SFindings m_findings;
    bool m_channelsKnown = false;
};

class CNewFromBatchParametersDlg final : public CProjectDialog {
  public:
    using CProjectDialog::CProjectDialog;
    using SRow = Persistance_Parametres::SParameterFileRow;

    static constexpr EText kTitle = EText::newFromBatchTitle;
    static constexpr EText kColumns[] = {EText::identifierColumn, EText::pathColumn};
    static constexpr EText kLabels[] = {EText::nameLabel, EText::folderLabel};

    // Reads the rows and proposes name and folder; false when that failed, which was reported.
    bool Load(const std::filesystem::path& commandFile);
    const std::vector<SRow>& GetRows() const { return m_creation.GetFiles(); }
    // For the dialog that asks for another file in the place of the row's: the number of its filter, and the
    // extension of a name typed without one.
    static EText GetFilter(const SRow& row) {
        return row.isOutput ? EText::batchOutputFilter : EText::batchInputFilter;
    }
    static const char* GetExtension(const SRow& row) { return row.isOutput ? "tarout" : "tarin"; }
    // Puts another file in the place of one; false when no row has this id.
    bool ChooseFile(std::string_view id, const std::filesystem::path& path) {
        return m_creation.ChooseFile(id, path);
    }

  private:
    std::unique_ptr<CTrvProject> MakeProject(EProjectField& focus) override;

    CBatchCreation m_creation;
};

} // namespace Dialogue_Tarvel
