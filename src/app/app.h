// What the process owns beside its windows: settings, the shared adaptors, the look of plots, the labels of
// channels. UI thread.
#pragma once

#include "config/config_file.h"
#include "plot/settings.h"
#include "values/adaptors.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace Application_Tarvel {

using Outils_Configuration::CTrvCnfConfigFile;

class CTrvApp {
  public:
    // `executable` is the path of the running program, empty when it is unknown. `userFolder` takes the settings
    // where the program's folder cannot be written; empty for none. Touches no file.
    explicit CTrvApp(std::filesystem::path executable, std::filesystem::path userFolder = {})
        : m_executable(std::move(executable)), m_userFolder(std::move(userFolder)) {}
    CTrvApp(const CTrvApp&) = delete;
    CTrvApp& operator=(const CTrvApp&) = delete;

    // Reads the settings, from the user's folder if there are some, otherwise from the program's, and sets up
    // all that follows them. A file that is missing or bad leaves the defaults in force and is not reported.
    void InitInstance();
    // Writes the settings; nothing else does, so that they last from a normal exit only. Writes them to the
    // user's folder where the program's folder refuses them. False when both failed or the path is unknown.
    bool ExitInstance() const;

    CTrvCnfConfigFile& GetConfiguration() { return m_configuration; }
    const Outils_Valeurs::CTrvAdaptors& GetAdaptors() const { return m_adaptors; }
    Outils_Plot2D::CPlot2DSettings& GetPlotSettings() { return m_plotSettings; }
    bool IsExpertMode() const { return m_expertMode; }
    // The folder of the executable, where the child programs and the user guide stand.
    std::filesystem::path GetProgramFolder() const { return m_executable.parent_path(); }
    std::filesystem::path GetUserGuide() const;
    // The settings file beside the executable: the executable's own name, also when it was renamed. Empty when
    // that is unknown.
    std::filesystem::path GetSettingsPath() const;
    // The settings file in the user's folder; empty when one of the two is unknown.
    std::filesystem::path GetUserSettingsPath() const;

  private:
    const std::filesystem::path m_executable;
    const std::filesystem::path m_userFolder;
    CTrvCnfConfigFile m_configuration;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Outils_Plot2D::CPlot2DSettings m_plotSettings;
    bool m_expertMode = false; // as at start-up
};

} // namespace Application_Tarvel
