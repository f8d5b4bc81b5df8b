// Changes that could not be saved because the program had to end. They wait in a file beside their project,
// or in the user's folder where that file cannot be made, until they are restored and saved, or discarded.
#pragma once

#include <filesystem>
#include <functional>
#include <vector>

namespace Application_Tarvel {

class IDocumentHost;

// UI thread only, except for Find.
class CUnsavedWork {
  public:
    enum class EOffer {
        none, // nothing waits
        accepted,
        refused,
        ended // the program ends while the question is open, so that nobody has answered it
    };

    // `host` must outlive the object.
    explicit CUnsavedWork(IDocumentHost& host) : m_host(host) {}

    // Where changes of the project wait beside it.
    static std::filesystem::path GetFile(const std::filesystem::path& project);
    // The project beside which the file waits; empty for a file in the user's folder.
    std::filesystem::path GetProject(const std::filesystem::path& file) const;
    // All files that wait beside these projects and in the user's folder. Any thread; waits for the disks.
    static std::vector<std::filesystem::path> Find(const std::vector<std::filesystem::path>& projects,
                                                   const std::filesystem::path& userFolder);

    // Has `store` write the file of the open project, whose path is empty when it was never saved. False when
    // neither place takes it.
    bool Keep(const std::filesystem::path& project,
              const std::function<bool(const std::filesystem::path&)>& store);
    // Asks whether what waits for the project is to be restored.
    EOffer Offer(const std::filesystem::path& project);
    // Asks about one of the files after the other whether its project is to be opened with its changes, and
    // returns the first that is; empty when there is none. The open project has had its question.
    std::filesystem::path Choose(const std::vector<std::filesystem::path>& files,
                                 const std::filesystem::path& openProject);
    // The open project was restored from this file, which goes with the next save.
    void OnRestored(const std::filesystem::path& file) { m_file = file; }
    // What waits for the open project is of no use any more.
    void OnSaved(const std::filesystem::path& project);
    // The user does not want the changes. They go with the project: it may stay open yet.
    void Discard() { m_discards = true; }
    // The project is closed.
    void OnClosed(const std::filesystem::path& project);

  private:
    IDocumentHost& m_host;
    std::filesystem::path m_file; // of the open project, in the user's folder or beside it; empty for none
    bool m_discards = false;
    bool m_ended = false; // since the question of Offer was asked
};

} // namespace Application_Tarvel
