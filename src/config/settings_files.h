// Where the programs keep their settings: beside the program, or in the user's folder where that cannot be
// written. Any thread.
#pragma once

#include <filesystem>

namespace Outils_Configuration {

class CXmlConfigFile;

// The folder of the user's own settings; empty when the environment does not name it. It may not exist yet.
std::filesystem::path FindUserSettingsFolder();

class CSettingsFiles {
  public:
    // Knows no file.
    CSettingsFiles() = default;
    // The settings of `executable`, which need not exist: its own name, also when it was renamed. Each may be
    // empty for none. Touches no file.
    CSettingsFiles(const std::filesystem::path& executable, const std::filesystem::path& userFolder);

    // Reads the user's file if it can be read, otherwise the program's. False, and the settings keep their
    // values, when neither can be read.
    bool Load(CXmlConfigFile& settings) const;
    // Writes the program's file, and removes the user's, which Load would prefer; writes the user's file
    // where the program's folder refuses, or where it cannot be removed. False when Load would not find the
    // settings.
    bool Save(const CXmlConfigFile& settings) const;

    // Empty for none.
    const std::filesystem::path& GetProgramFile() const { return m_program; }
    const std::filesystem::path& GetUserFile() const { return m_user; }

  private:
    std::filesystem::path m_program;
    std::filesystem::path m_user;
};

} // namespace Outils_Configuration
