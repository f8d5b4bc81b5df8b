// One run of the engine after the other: the parameter file, the child process, the stop requests, the
// result.
#pragma once

#include "document/file_looks.h"
#include "document/result_guard.h"
#include "foundation/text_id.h"
#include "processing/child_processes.h"
#include "processing/child_run.h"

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
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
    // The engine has ended, its last messages are posted, and its result, or the former one, is in place.
    virtual void OnRunEnded() = 0;
};

// How the last run ended. A run has finished when the engine ended with exit code 0, said 100 percent, and
// left a result.
enum class ERunOutcome { none, finished, stopped, failed };

// UI thread only.
class CEngineRun final : private Communication_Processus::IChildRunOwner {
  public:
    // All four must outlive the object.
    CEngineRun(IDocumentHost& host, const Outils_Configuration::CTrvCnfConfigFile& configuration,
               CFileLooks& looks, IEngineRunListener& listener);
    ~CEngineRun() override { RemoveTemporaryFiles(); }

    // Opens the main input file and each file that a sensor uses, and checks that the result would not take
    // the place of a file of the project. Shows a message and returns false when one cannot be read, or when
    // a disk does not answer in time.
    bool CheckFiles(const Metier_Tarvel::CTrvSimulationParameters& parameters);
    // Starts the engine on the parameters and sets the old result aside. Shows a message and returns false,
    // with the old result in its place, when the engine does not start or another run has the result.
    // REQUIRES: Poll() is false.
    bool Start(const Metier_Tarvel::CTrvSimulationParameters& parameters);
    // Returns whether the engine runs. The first call after its end reports the end to the listener, and,
    // when the run has not finished, to the host's receiver as messages after those of the engine.
    bool Poll();
    // Asks the engine to stop; false when it does not run. A second request more than 5 seconds after the
    // first offers to terminate it.
    bool Stop();
    // Stops the engine without a question, kills it after 5 seconds, keeps the result so far and removes the
    // temporary files. For a program that has to end.
    void StopNow();
    // True from the start until the listener knows of the end. Does not look at the process.
    bool IsActive() const { return m_run.IsActive(); }
    ERunOutcome GetOutcome() const { return m_outcome; }
    // Looks at the result of a project that was just opened, on a thread. The output panel says when it is
    // partial. A former result that a killed program has left aside comes back.
    void ExamineResult(const std::filesystem::path& result);
    // Removes the parameter files of all runs so far: the engine reads them at its own pace.
    void RemoveTemporaryFiles();

  private:
    bool Refuse(const std::string& text);
    bool Refuse(EText text);
    bool TakeResult();
    bool WriteParameterFile(const Metier_Tarvel::CTrvSimulationParameters& parameters,
                            std::filesystem::path& path);
    bool SetResultAside();
    bool Launch(const std::filesystem::path& parameterFile);
    struct SLeft;
    std::optional<SLeft> ReleaseResult(bool succeeded);
    void End();
    void ReportEnd(const SLeft* left);
    void Report(Communication_Interfaces::EMessageLevel level, EText text,
                std::initializer_list<std::string_view> arguments = {});

    Outils_Temps::CDateTime GetTime() override;
    void Sleep(std::chrono::milliseconds time) override;
    bool AskToTerminate() override;

    IDocumentHost& m_host;
    const Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    CFileLooks& m_looks;
    IEngineRunListener& m_listener;
    Communication_Processus::CProcessMorvex m_process;
    Communication_Processus::CChildRun m_run{m_process, *this};
    CResultGuard m_guard;
    std::filesystem::path m_result;
    Outils_Temps::CDateTime m_utcReference = Outils_Temps::CDateTime::Invalid(); // of the run's parameters
    ERunOutcome m_outcome = ERunOutcome::none;
    std::vector<std::filesystem::path> m_temporaryFiles;
};

} // namespace Application_Tarvel
