// The surroundings of a document: the application implements them with windows, the batch program with lines
// of text, the tests with a script. All operations are called on the UI thread, and none has a default body.
#pragma once

#include "document/actions/data_file_kind.h"
#include "foundation/date_time.h"
#include "foundation/text_id.h"
#include "model/project.h"
#include "processing/notification.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Communication_Interfaces {
class IMorvexNotification;
}

namespace Application_Tarvel {

enum class EButtons { ok, okCancel, yesNo, yesNoCancel };
// What a box looks like. Says nothing of failure: the caller of a failed operation says that.
enum class EIcon { information, exclamation, question };
enum class EAnswer { ok, cancel, yes, no };

enum class EPathKind {
    open,
    openSeveral,
    save,
    saveUnasked // the caller asks about replacing a file
};

struct SPathQuestion {
    EPathKind kind;
    Outils_Texte::EText title;
    Outils_Texte::EText filter;       // a text of "name|patterns|" pairs: foundation/file_filter.h
    std::string_view extension;       // of a name typed without one, without the dot
    std::filesystem::path proposed{}; // a file or a folder; may be empty
};

class IQuestions {
  public:
    virtual ~IQuestions() = default;

    // Shows a text and waits for the answer.
    virtual EAnswer ShowMessage(const std::string& text, EButtons buttons, EIcon icon) = 0;
    // Returns the chosen paths, one unless several may be opened; empty when cancelled. For `save` the user
    // agreed to replace an existing file.
    virtual std::vector<std::filesystem::path> AskPath(const SPathQuestion& question) = 0;
};

// How a dialog ended. `failed` and `unavailable` were reported by the host.
enum class EOutcome {
    done,
    cancelled,
    failed,
    unavailable // the host has no such dialog
};

// A project that is not saved yet, and where it is to be saved.
struct SMadeProject {
    std::unique_ptr<Metier_Tarvel::CTrvProject> project;
    std::filesystem::path path;
};

// Each shows the user a dialog and sets its last argument only when done.
class IProjectDialogs {
  public:
    virtual ~IProjectDialogs() = default;

    virtual EOutcome MakeProject(SMadeProject& made) = 0;
    virtual EOutcome MakeProjectFrom(const std::filesystem::path& commandFile, SMadeProject& made) = 0;
    // Brings the file up to the present layout, in its place.
    virtual EOutcome UpdateDataFile(const std::filesystem::path& path) = 0;
    // Converts a raw recording of one or more files into one packet file.
    virtual EOutcome ConvertRawFiles(const std::vector<std::filesystem::path>& files, ERawFormat format,
                                     std::filesystem::path& converted) = 0;
};

// A line of the output panel.
struct SOutputLine {
    SOutputLine(std::string written) : text(std::move(written)) {}
    SOutputLine(std::string written, int weight, const Outils_Objets::CObject* about = nullptr)
        : text(std::move(written)), level(weight), subject(about) {}

    std::string text;
    int level = Communication_Interfaces::levelInformation; // an EMessageLevel, or any number of the engine
    // The object of the project whose values the line is about; null for none. An identity only: the object
    // may be gone when the user follows the line.
    const Outils_Objets::CObject* subject = nullptr;
};

class IOutput {
  public:
    virtual ~IOutput() = default;

    // Adds one line at the end of the output panel.
    virtual void AppendOutputText(const SOutputLine& line) = 0;
    // Sets the progress bar of a run, 0 to 100.
    virtual void SetProgress(int percent) = 0;
    virtual void ShowProgress(bool visible) = 0;
};

class IClock {
  public:
    virtual ~IClock() = default;

    virtual Outils_Temps::CDateTime GetTime() = 0;
    virtual void Sleep(std::chrono::milliseconds time) = 0;
    // How long a command waits for the looks at the files of a project. It goes on without those
    // that do not answer in time; their answers come later.
    virtual std::chrono::milliseconds GetPatience() = 0;
};

class ISurroundings {
  public:
    virtual ~ISurroundings() = default;

    // Calls nest.
    virtual void ShowWaitCursor(bool on) = 0;
    // The commands that the project's equipment offers; 0 without a project.
    virtual void UpdateMenuForEquipment(std::int32_t equipment) = 0;
    // Receives progress and messages of a run, on a thread of its own; null for none.
    virtual Communication_Interfaces::IMorvexNotification* GetReceiver() = 0;
    // The folder of the program and of its child programs.
    virtual std::filesystem::path GetProgramFolder() = 0;
    // The user's own folder, for what waits for the next start; empty for none. It may not exist yet.
    virtual std::filesystem::path GetUserFolder() = 0;
};

class IDocumentHost : public IQuestions,
                      public IProjectDialogs,
                      public IOutput,
                      public IClock,
                      public ISurroundings {};

// Shows the wait cursor as long as the object lives.
class CWaitCursor {
  public:
    explicit CWaitCursor(ISurroundings& host) : m_host(host) { m_host.ShowWaitCursor(true); }
    ~CWaitCursor() { m_host.ShowWaitCursor(false); }
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;

  private:
    ISurroundings& m_host;
};

} // namespace Application_Tarvel
