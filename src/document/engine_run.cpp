#include "document/engine_run.h"

#include "config/config_file.h"
#include "document/document_host.h"
#include "foundation/archive.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "model/data_file.h"
#include "model/simulation_parameters.h"
#include "processing/command_line.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

namespace Application_Tarvel {

using Metier_Tarvel::CTrvSimulationParameters;
using Outils_Configuration::Cnf;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr Outils_Temps::CDateTimeSpan kFreezeTime(5 * Outils_Temps::kTicksPerSecond);

} // namespace

CEngineRun::CEngineRun(IDocumentHost& host, const Outils_Configuration::CTrvCnfConfigFile& configuration,
                       CFileLooks& looks, IEngineRunListener& listener)
    : m_host(host), m_configuration(configuration), m_looks(looks), m_listener(listener) {}

bool CEngineRun::Refuse(EText text) {
    m_host.ShowMessage(std::string(GetText(text)), EButtons::ok, EIcon::exclamation);
    return false;
}

// A project from elsewhere may name a recording as its result, or a link to one.
bool CEngineRun::CheckFiles(const CTrvSimulationParameters& parameters) {
    const auto* output = parameters.outputFile.get();
    std::vector<std::filesystem::path> files{output->path};
    for (const auto* file : parameters.GetDataFiles())
        if (file != output) files.push_back(file->path);
    // Walks to the first input whose place the result would take. Without an answer, the file at `at` owes
    // it.
    const auto at = std::make_shared<std::atomic<std::size_t>>(0);
    const auto find = [files, at](const Outils::CEvent&) {
        std::error_code error;
        [[maybe_unused]] const auto status = std::filesystem::status(files[0], error);
        while (++*at < files.size()) {
            const std::filesystem::path& input = files[*at];
            if (Outils_Fichiers::SamePath(input, files[0]) ||
                std::filesystem::equivalent(input, files[0], error))
                return true;
        }
        return false;
    };
    const auto found = m_looks.Call(find, GetTimeForChosenFile(m_configuration));
    if (found && !*found) return true;
    const std::filesystem::path& named = files[std::min<std::size_t>(*at, files.size() - 1)];
    const EText text = found ? EText::resultIsInput : EText::fileNotReadable;
    m_host.ShowMessage(FormatText(text, {ToText(named)}), EButtons::ok, EIcon::exclamation);
    return false;
}

bool CEngineRun::Start(const CTrvSimulationParameters& parameters) {
    m_process.SetNotification(m_host.GetReceiver());
    if (m_process.ProcessId() != 0) {
        m_process.WaitForReceivers();
        m_process.Close();
    }
    std::filesystem::path parameterFile;
    if (!WriteParameterFile(parameters, parameterFile)) return false;
    RemoveResult(parameters.outputFile->path);
    return Launch(parameterFile);
}

bool CEngineRun::WriteParameterFile(const CTrvSimulationParameters& parameters, std::filesystem::path& path) {
    if (m_configuration.Get(Cnf<"simulation/useTempFileName">)) {
        const auto temporary = Outils_Fichiers::CreateTemporaryFile("SIM");
        if (!temporary) return Refuse(EText::noParameterPath);
        path = *temporary;
    } else {
        std::error_code error;
        const auto folder = std::filesystem::temp_directory_path(error);
        if (error) return Refuse(EText::noParameterPath);
        path = folder / FromText(m_configuration.Get(Cnf<"simulation/fixedFileName">));
    }
    Outils_Objets::CMemoryStream stream;
    bool written = false;
    try {
        using Outils_Objets::CArchive;
        CArchive archive(stream, CArchive::store, nullptr, path);
        archive.WriteObject(&parameters);
        archive.Close();
        written = Outils_Fichiers::WriteWholeFile(path, stream.GetBytes());
    } catch (const Outils_Objets::CArchiveException&) {
    }
    if (written) return true;
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    return Refuse(EText::noParameterFile);
}

void CEngineRun::RemoveResult(const std::filesystem::path& result) {
    std::error_code error;
    const bool existed = std::filesystem::exists(result, error);
    if (existed) std::filesystem::remove(result, error);
    m_listener.OnResultRemoved(existed);
}

bool CEngineRun::Launch(const std::filesystem::path& parameterFile) {
    const auto engine =
        (m_host.GetProgramFolder() / FromText(m_configuration.Get(Cnf<"process/morvex">))).lexically_normal();
    using namespace Communication_Processus;
    const std::string commandLine =
        QuoteProgram(ToText(engine)) + " /remote /autostart off " + QuoteArgument(ToText(parameterFile));
    m_stopRequests = 0;
    if (!m_process.Open(commandLine, false)) {
        std::error_code ignored;
        std::filesystem::remove(parameterFile, ignored);
        return Refuse(EText::noProcess);
    }
    m_process.Start();
    m_temporaryFiles.push_back(parameterFile);
    m_active = true;
    m_listener.OnRunStarted();
    m_host.SetProgress(0);
    m_host.ShowProgress(true);
    return true;
}

bool CEngineRun::Poll() {
    if (m_process.IsRunning()) return true;
    End();
    return false;
}

void CEngineRun::End() {
    if (!std::exchange(m_active, false)) return;
    // The engine's last output is on its way to the receiver: it belongs to this run.
    m_process.WaitForReceivers();
    m_listener.OnRunEnded();
    m_host.SetProgress(0);
    m_host.ShowProgress(false);
}

bool CEngineRun::Stop() {
    if (!m_process.IsRunning()) return false;
    if (m_stopRequests == 0) m_firstStopTime = m_host.GetTime();
    m_process.Stop();
    m_host.Sleep(std::chrono::milliseconds(200));
    ++m_stopRequests;
    if (m_stopRequests > 1 && m_host.GetTime() - m_firstStopTime > kFreezeTime) {
        const auto answer =
            m_host.ShowMessage(std::string(GetText(EText::frozen)), EButtons::okCancel, EIcon::exclamation);
        if (answer == EAnswer::ok && m_process.IsRunning()) m_process.Terminate();
    }
    if (!m_process.IsRunning()) End();
    return true;
}

void CEngineRun::RemoveTemporaryFiles() {
    for (const auto& file : std::exchange(m_temporaryFiles, {})) {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
    }
}

} // namespace Application_Tarvel
