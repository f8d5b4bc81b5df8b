// The projects opened last, newest first, kept with the user's settings. UI thread.
#pragma once

#include <filesystem>
#include <vector>

class QSettings;

namespace Application_Tarvel {

class CRecentFiles {
  public:
    static constexpr std::size_t mostFiles = 4;

    // Reads the list. `settings` must outlive the object.
    explicit CRecentFiles(QSettings& settings);

    const std::vector<std::filesystem::path>& GetFiles() const { return m_files; }
    // The newest; empty when there is none.
    std::filesystem::path GetFirst() const { return m_files.empty() ? std::filesystem::path() : m_files[0]; }
    // To the front; a file that is in the list already, in any case of letters, moves there.
    void Add(const std::filesystem::path& file);
    void Remove(const std::filesystem::path& file);

  private:
    void Store();

    QSettings& m_settings;
    std::vector<std::filesystem::path> m_files;
};

} // namespace Application_Tarvel
