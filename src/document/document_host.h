// The one door from the document to its surroundings: the application implements it with windows, the batch
// program with lines of text, the tests with a script.
#pragma once

#include "document/actions/data_file_kind.h"
#include "foundation/date_time.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Communication_Interfaces {
class IMorvexNotification;
}

namespace Dialogue_Tarvel {
class CNewFromBatchParametersDlg;
class CNewProjectWizard;
} // namespace Dialogue_Tarvel

namespace Application_Tarvel {

enum class EButtons { ok, okCancel, yesNo, yesNoCancel };
enum class EIcon { information, exclamation, question };
enum class EAnswer { ok, cancel, yes, no };

// All operations are called on the UI thread.
class IDocumentHost {
  public:
    virtual ~IDocumentHost() = default;

    // Shows a text and waits for the answer.
    virtual EAnswer ShowMessage(const std::string& text, EButtons buttons, EIcon icon) = 0;
    // Asks where to save a project; the user has agreed to replace an existing file. Empty when cancelled.
    virtual std::optional<std::filesystem::path> AskProjectPath(const std::filesystem::path& proposed) = 0;
    // Asks for an existing data file; `filter` is a list of "name|patterns|" pairs, and "tarin" the extension
    // of a name typed without one. Empty when cancelled.
    virtual std::optional<std::filesystem::path> AskDataFile(const std::string& /*filter*/) {
        return std::nullopt;
    }
    // Asks where to write a batch command file; the user has agreed to replace an existing one.
    virtual std::optional<std::filesystem::path> AskCommandFilePath(const std::filesystem::path& /*proposed*/,
                                                                    const std::string& /*filter*/) {
        return std::nullopt;
    }
    // Has the file brought up to the present layout in its place; false when that was not done.
    virtual bool UpdateDataFile(const std::filesystem::path& /*path*/) { return false; }
    // Has a raw recording of one or more files converted; the packet file made of it, empty when that was not
    // done.
    virtual std::optional<std::filesystem::path>
    ConvertRawFiles(const std::vector<std::filesystem::path>& /*files*/, ERawFormat /*format*/) {
        return std::nullopt;
    }
    // Asks for an existing batch command file; "xml" is the extension of a name typed without one.
    virtual std::optional<std::filesystem::path> AskCommandFile(const std::string& /*filter*/) {
        return std::nullopt;
    }
    // Each shows the user the choices of a new project until their OnOK has succeeded; false when cancelled.
    virtual bool ShowNewProjectWizard(Dialogue_Tarvel::CNewProjectWizard& /*wizard*/) { return false; }
    virtual bool ShowNewFromBatch(Dialogue_Tarvel::CNewFromBatchParametersDlg& /*dialog*/) { return false; }

    // One line at the end of the output panel.
    virtual void AppendOutputText(const std::string& line) = 0;
    // The progress bar of a run: 0 to 100, and whether it shows.
    virtual void SetProgress(int percent) = 0;
    virtual void ShowProgress(bool visible) = 0;
    // Calls nest.
    virtual void ShowWaitCursor(bool on) = 0;
    // The commands that the project's equipment offers; 0 without a project.
    virtual void UpdateMenuForEquipment(std::int32_t equipment) = 0;

    // Receives progress and messages of a run, on a thread of its own; null for none.
    virtual Communication_Interfaces::IMorvexNotification* GetReceiver() = 0;
    // The folder of the program, where the child programs stand.
    virtual std::filesystem::path GetProgramFolder() = 0;

    virtual Outils_Temps::CDateTime GetTime() = 0;
    virtual void Sleep(std::chrono::milliseconds time) = 0;
    // How long a command waits for what the files of a project tell of themselves. It goes on without those
    // that do not answer in time; what they tell comes later.
    virtual std::chrono::milliseconds GetPatience() { return std::chrono::milliseconds(100); }
};

// The wait cursor as long as the object lives.
class CWaitCursor {
  public:
    explicit CWaitCursor(IDocumentHost& host) : m_host(host) { m_host.ShowWaitCursor(true); }
    ~CWaitCursor() { m_host.ShowWaitCursor(false); }
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;

  private:
    IDocumentHost& m_host;
};

} // namespace Application_Tarvel
