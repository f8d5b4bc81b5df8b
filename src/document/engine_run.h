// One run of the engine after the other: the parameter file, the child process, the stop requests, the
// result.
#pragma once

#include "document/file_looks.h"
#include "foundation/date_time.h"
#include "foundation/texts.h"
#include "processing/child_processes.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace Metier_Tarvel {
class CTrvSimulationParameters;
}

namespace Application_Tarvel {

class IDocumentHost;
using Outils_Texte::EText;

// What a run reports to the owner of the project. All calls come from within operations of CEngineRun.
class IEngineRunListener {
  public:
    virtual ~IEngineRunListener() = default;
    // The old result is no longer under its name; `existed` is false when there was none.
    virtual void OnResultRemoved(bool existed) = 0;
    virtual void OnRunStarted() = 0;
    // The engine has ended and its last messages are posted.
    virtual void OnRunEnded() = 0;
};

// UI thread only.
class CEngineRun {
  public:
    // All four must outlive the object.
    CEngineRun(IDocumentHost& host, const Outils_Configuration::CTrvCnfConfigFile& configuration,
               CFileLooks& looks, IEngineRunListener& listener);
    ~CEngineRun() { RemoveTemporaryFiles(); }

    // Checks that the result would not take the place of another file of the project. Shows a message and
    // returns false when it would, or when a disk does not answer in time.
    bool CheckFiles(const Metier_Tarvel::CTrvSimulationParameters& parameters);
    // Starts the engine on the parameters. Shows a message and returns false when it does not start.
    // REQUIRES: Poll() is false.
    bool Start(const Metier_Tarvel::CTrvSimulationParameters& parameters);
    // Returns whether the engine runs. The first call after its end reports the end to the listener.
    bool Poll();
    // Asks the engine to stop; false when it does not run. A second request more than 5 seconds after the
    // first offers to terminate it.
    bool Stop();
    // True from the start until the listener knows of the end. Does not look at the process.
    bool IsActive() const { return m_active; }
    // Removes the parameter files of all runs so far: the engine reads them at its own pace.
    void RemoveTemporaryFiles();

  private:
    bool Refuse(EText text);
    bool WriteParameterFile(const Metier_Tarvel::CTrvSimulationParameters& parameters,
                            std::filesystem::path& path);
    void RemoveResult(const std::filesystem::path& result);
    bool Launch(const std::filesystem::path& parameterFile);
    void End();

    IDocumentHost& m_host;
    const Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    CFileLooks& m_looks;
    IEngineRunListener& m_listener;
    Communication_Processus::CProcessMorvex m_process;
    bool m_active = false;
    std::uint32_t m_stopRequests = 0;
    Outils_Temps::CDateTime m_firstStopTime = Outils_Temps::CDateTime::Invalid();
    std::vector<std::filesystem::path> m_temporaryFiles;
};

} // namespace Application_Tarvel
