// What the process owns beside its windows: settings, the shared adaptors, the look of plots, the labels of
// channels. UI thread.
#pragma once

#include "config/config_file.h"
#include "config/settings_files.h"
#include "plot/settings.h"
#include "values/adaptors.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace Application_Tarvel {

using Outils_Configuration::CTrvCnfConfigFile;

class CTrvApp {
  public:
    // `executable` is the path of the running program, empty when it is unknown. `userFolder` takes the
    // settings where the program's folder cannot be written; empty for none. Touches no file.
    explicit CTrvApp(std::filesystem::path executable, const std::filesystem::path& userFolder = {})
        : m_executable(std::move(executable)),
          m_userFolder(userFolder),
          m_settingsFiles(m_executable, userFolder) {}
    CTrvApp(const CTrvApp&) = delete;
    CTrvApp& operator=(const CTrvApp&) = delete;

    // Reads the settings and sets up all that follows them. A file that is missing or bad leaves the defaults
    // in force and is not reported.
    void InitInstance();
    // Writes the settings; nothing else does, so that they last from a normal exit only. False when no folder
    // takes them.
    bool ExitInstance() const { return m_settingsFiles.Save(m_configuration); }

    CTrvCnfConfigFile& GetConfiguration() { return m_configuration; }
    const Outils_Valeurs::CTrvAdaptors& GetAdaptors() const { return m_adaptors; }
    Outils_Valeurs::CTrvAdaptors& GetAdaptors() { return m_adaptors; }
    Outils_Plot2D::CPlot2DSettings& GetPlotSettings() { return m_plotSettings; }
    bool IsExpertMode() const { return m_expertMode; }
    // The folder of the executable, where the child programs and the user guide stand.
    std::filesystem::path GetProgramFolder() const { return m_executable.parent_path(); }
    // Empty for none.
    const std::filesystem::path& GetUserFolder() const { return m_userFolder; }
    std::filesystem::path GetUserGuide() const;
    const Outils_Configuration::CSettingsFiles& GetSettingsFiles() const { return m_settingsFiles; }

  private:
    const std::filesystem::path m_executable;
    const std::filesystem::path m_userFolder;
    const Outils_Configuration::CSettingsFiles m_settingsFiles;
    CTrvCnfConfigFile m_configuration;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Outils_Plot2D::CPlot2DSettings m_plotSettings;
    bool m_expertMode = false; // as at start-up
};

} // namespace Application_Tarvel
