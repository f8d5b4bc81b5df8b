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
    // `executable` is the path of the running program; empty when the platform does not tell. Touches no
    // file.
    explicit CTrvApp(std::filesystem::path executable) : m_executable(std::move(executable)) {}
    CTrvApp(const CTrvApp&) = delete;
    CTrvApp& operator=(const CTrvApp&) = delete;

    // Reads the settings beside the executable and sets up all that follows them. A file that is missing or
    // bad leaves the defaults in force and is not reported.
    void InitInstance();
    // Writes the settings; the one place that does, so that they last from a normal exit only. False when
    // that failed or the path is unknown.
    bool ExitInstance() const;

    CTrvCnfConfigFile& GetConfiguration() { return m_configuration; }
    const Outils_Valeurs::CTrvAdaptors& GetAdaptors() const { return m_adaptors; }
    Outils_Plot2D::CPlot2DSettings& GetPlotSettings() { return m_plotSettings; }
    bool IsExpertMode() const { return m_expertMode; }
    // The folder of the executable, where the child programs and the user guide stand.
    std::filesystem::path GetProgramFolder() const { return m_executable.parent_path(); }
    std::filesystem::path GetUserGuide() const;
    // The settings file: the executable's own name, also when it was renamed. Empty when that is unknown.
    std::filesystem::path GetSettingsPath() const;

  private:
    const std::filesystem::path m_executable;
    CTrvCnfConfigFile m_configuration;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Outils_Plot2D::CPlot2DSettings m_plotSettings;
    bool m_expertMode = false; // as at start-up
};

} // namespace Application_Tarvel
