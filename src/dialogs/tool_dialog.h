// What the dialogs of all tools share, as logic: fields in a grid, checks, the command line, the run, its
// end. A window shows the grid, calls Start and Cancel, and polls. UI thread.
#pragma once

#include "dialogs/tool_fields.h"
#include "dialogs/tool_run.h"
#include "document/file_looks.h"
#include "grid/grid_control.h"

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace Outils_Valeurs {
class CTrvAdaptors;
}

namespace Dialogue_Tarvel {

// What a dialog of a tool works with. All must outlive the dialog.
struct SToolServices {
    Application_Tarvel::IDocumentHost& host;
    Outils_Configuration::CTrvCnfConfigFile& configuration; // takes the last values
    Application_Tarvel::CFileLooks& looks;
    const Outils_Valeurs::CTrvAdaptors& adaptors;
    bool expertMode;
};

// What is shown of a run beside its state.
class IToolDialogListener {
  public:
    virtual ~IToolDialogListener() = default;
    // `level` is an EMessageLevel.
    virtual void OnToolMessage(int level, const std::string& text) = 0;
    // Comes before what the dialog says of the end.
    virtual void OnToolEnded() {}
};

// What the checks ask the disk, found by one look.
struct SToolFiles {
    bool sourcesExist = false;
    bool templateExists = false;
    bool targetExists = false;
    bool targetIsFolder = false;
    bool targetIsSource = false;
    bool targetIsOpen = false; // in any program; not known for a file of another user
    bool folderIsWritable = false;
};
SToolFiles LookAtFiles(const std::vector<std::filesystem::path>& sources, const std::filesystem::path& target,
                       const std::filesystem::path& exportTemplate = {});

enum class ECheck {
    refusal,
    question // of which OK goes on
};

// One check of a dialog, in the order in which they are made.
template <class Options>
struct SToolCheck {
    EText text; // %1 is the target
    int field;  // that has the focus after a refusal
    bool (*holds)(const Options& options);
    ECheck kind = ECheck::refusal;
};

class CToolDialog {
  public:
    virtual ~CToolDialog();
    CToolDialog(const CToolDialog&) = delete;
    CToolDialog& operator=(const CToolDialog&) = delete;

    virtual EText GetTitle() const = 0;
    // The settings that keep width, height and width of the first column.
    struct SSizeKeys {
        Outils_Configuration::TKey<std::int32_t> width, height, column;
    };
    virtual SSizeKeys GetSizeKeys() const = 0;

    Presentation_Tarvel_Grid::CHierarchicalGridControl& GetGrid() { return m_grid; }
    Application_Tarvel::IQuestions& GetQuestions() const { return m_services.host; }
    Outils_Configuration::CTrvCnfConfigFile& GetConfiguration() const { return m_services.configuration; }
    // Null for none. Must outlive the dialog or be taken back.
    void SetListener(IToolDialogListener* listener) { m_listener = listener; }

    const CToolFields& GetFields() const { return m_fields; }
    // What the user enters: a refusal leaves all as it was and returns its message.
    std::string Write(int field, std::string_view text);
    std::string WritePaths(int field, const std::vector<std::filesystem::path>& paths);
    // Whether the row is of the format and of effect at the moment.
    bool IsShown(int field) const;
    // The row at which the last Start was refused; null for none.
    const Presentation_Tarvel_Grid::CHGItem* GetFaultItem() const;

    // Checks the fields and starts the tool. False when refused, which was reported.
    bool Start();
    // Asks the tool to stop, as a second call after 5 seconds offers to terminate it.
    void Cancel();
    // To be called at short intervals while a tool runs.
    void Poll();
    // The same, after waiting for a report of the tool.
    void Wait(std::chrono::milliseconds time);
    // False, and reported, while a tool runs. Keeps the last values.
    bool Close();
    bool IsRunning() const { return m_run.IsActive(); }
    int GetProgress() const { return m_run.GetProgress(); }
    std::optional<std::chrono::seconds> GetTimeLeft() const { return m_run.GetTimeLeft(); }
    // The command line that Start would run, without any check.
    virtual std::string GetCommandLine() const = 0;

    // The dialog has ended by itself.
    bool HasEnded() const { return m_hasEnded; }
    // How the last run ended; cancelled before the first.
    Application_Tarvel::EOutcome GetOutcome() const { return m_outcome; }
    // How the last tool itself ended. REQUIRES: IsRunning() is false.
    const Communication_Processus::SProcessEnd& GetEnd() const { return m_run.GetEnd(); }
    // Why the last run has failed; empty when it has not.
    const std::string& GetFailure() const { return m_failure; }

  protected:
    CToolDialog(EToolKind kind, const SToolServices& services, std::span<const SToolField> rows);

    // Makes the rows of the grid; at the end of the constructor of a derived class.
    void MakeRows();
    // Asks everything; false, with the focus set, when refused.
    virtual bool Check() = 0;
    // To be removed before the start; empty for none.
    virtual std::filesystem::path GetTarget() const { return {}; }
    virtual EText GetLaunchFailure() const;
    virtual std::string GetProgram() const = 0;
    // A field has another value.
    virtual void OnWritten(int /*field*/) {}
    // The tool has ended: the outcome, `failure` of one that failed, and whether the dialog ends.
    virtual bool OnEnded(Application_Tarvel::EOutcome& outcome, std::string& failure) = 0;
    // The text of a value in the grid, and what the user typed for it as a value.
    virtual std::string Show(int field) const;
    virtual std::string Read(int /*field*/, std::string_view text, std::string& value) const;
    // What the row asks for; of a path, several paths or the target.
    virtual Application_Tarvel::SPathQuestion GetQuestion(int field) const;

    // The checks of a table, by their order.
    template <class Options>
    bool CheckAll(std::span<const SToolCheck<Options>> checks, const Options& options) {
        for (const auto& check : checks) {
            if (check.holds(options)) continue;
            m_focus = check.field;
            const bool goesOn =
                check.kind == ECheck::question ? Ask(check.text) : Refuse(check.text, GetTarget());
            if (!goesOn) return false;
        }
        m_focus = -1;
        return true;
    }
    // The answer of a look at files, if it comes in time; otherwise refused and reported.
    std::optional<SToolFiles> Look(const std::vector<std::filesystem::path>& sources,
                                   const std::filesystem::path& target,
                                   const std::filesystem::path& exportTemplate = {});
    std::string ResolveProgram(Outils_Configuration::TKey<std::string> key) const;
    // How the tool ended and its first error.
    std::string DescribeEnd() const;
    void RemoveFile(const std::filesystem::path& path);

    const SToolServices m_services;
    CToolFields m_fields;
    CToolRun m_run;

  private:
    class CFieldItem;

    bool Refuse(EText text, const std::filesystem::path& about);
    bool Ask(EText question);
    void Finish();

    Presentation_Tarvel_Grid::CHierarchicalGridControl m_grid;
    std::vector<CFieldItem*> m_items; // by field; owned by the grid
    IToolDialogListener* m_listener = nullptr;
    int m_focus = -1;
    bool m_hasEnded = false;
    Application_Tarvel::EOutcome m_outcome = Application_Tarvel::EOutcome::cancelled;
    std::string m_failure;
};

} // namespace Dialogue_Tarvel
