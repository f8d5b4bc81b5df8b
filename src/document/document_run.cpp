// A run of the engine: how it is prepared, started, noticed to have ended, and stopped.
#include "document/document.h"

#include "config/config_file.h"
#include "exchange/parameter_file.h"
#include "foundation/archive.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/rules/rule.h"
#include "processing/command_line.h"

#include <algorithm>
#include <atomic>
#include <memory>

namespace Application_Tarvel {

using namespace Outils_Objets;
using namespace Outils_Temps;
using Outils_Configuration::Cnf;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::GetText;

namespace {

constexpr CDateTimeSpan kFreezeTime(5 * kTicksPerSecond);

} // namespace

bool CTrvDocument::IsSimulationRunning() {
    if (m_process.IsRunning()) return true;
    EndRun();
    return false;
}

void CTrvDocument::EndRun() {
    if (!m_bSimulationRunning) return;
    m_bSimulationRunning = false;
    // What the engine wrote last is on its way to the receiver: the run's last messages belong to the run.
    m_process.WaitForReceivers();
    UpdateAllViews(nullptr, hintRunEnded);
    // What the monitor saw of the result while it was written was no fault. Now it may be one. It is a new
    // file in all respects: the engine may have begun it anew since the last look.
    if (m_pProject) {
        CTrvDataFile& output = *m_pProject->simulationParameters->outputFile;
        StopAnalysis(output, true);
        m_fileCache.InvalidateFile(output.path);
        WatchAnew(output);
    }
    GetHost().SetProgress(0);
    GetHost().ShowProgress(false);
}

bool CTrvDocument::StartSimulation() {
    const CWaitCursor wait(GetHost());
    if (!m_pProject || IsSimulationRunning()) return false;
    m_process.SetNotification(GetHost().GetReceiver());
    if (!ValidateProject(EText::parametersWrongLine, EText::parametersWrongRun)) return false;
    // Again behind the save, which may have given the result another name.
    if (RefuseResultOverInput() || !SaveBeforeRun() || RefuseResultOverInput()) return false;
    if (m_process.ProcessId() != 0) {
        m_process.WaitForReceivers();
        m_process.Close();
    }
    std::filesystem::path parameterFile;
    if (!WriteParameterFile(parameterFile)) return false;
    RemoveResult();
    return LaunchEngine(parameterFile);
}

// The engine's result takes the place of the file of its name. A project from elsewhere may name a recording
// there, or a link to one.
bool CTrvDocument::RefuseResultOverInput() {
    std::vector<std::filesystem::path> files{m_pProject->simulationParameters->outputFile->path};
    for (const CTrvDataFile* file : GetDataFiles())
        if (!IsResultFile(*file)) files.push_back(file->path);
    // Goes through the files to the first of the inputs whose place the result would take. While there is no
    // answer, the file that it is at owes it.
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
    // Where a disk does not answer, none is said to be free of it.
    const auto found = m_fileLooks.Call(find, GetTimeForChosenFile(m_configuration));
    if (found && !*found) return false;
    const std::filesystem::path& named = files[std::min<std::size_t>(*at, files.size() - 1)];
    const EText text = found ? EText::resultIsInput : EText::fileNotReadable;
    GetHost().ShowMessage(Outils_Texte::FormatText(text, {ToText(named)}), EButtons::ok, EIcon::exclamation);
    return true;
}

bool CTrvDocument::ValidateProject(EText line, EText message) {
    Metier_Tarvel_Regles::CTrvRuleReport report;
    if (m_pProject->simulationParameters->Validate(report)) return true;
    if (line != EText::none) GetHost().AppendOutputText(std::string(GetText(line)));
    for (const auto& violation : report.GetViolations())
        GetHost().AppendOutputText(std::string(violation.rule->GetMessage()));
    GetHost().ShowMessage(std::string(GetText(message)), EButtons::ok, EIcon::information);
    return false;
}

bool CTrvDocument::PrepareBatchCommandFile() {
    if (!m_pProject || !ValidateProject(EText::parametersWrongLine, EText::parametersWrongBatch))
        return false;
    const std::filesystem::path proposed =
        FromText(ToText(std::filesystem::path(GetPathName()).replace_extension()) +
                 std::string(GetText(EText::parametersSuffix)) + std::string(GetText(EText::xmlExtension)));
    const auto path = GetHost().AskCommandFilePath(proposed, std::string(GetText(EText::xmlFilter)));
    if (!path) return false;
    // The file hides the factory misalignment of a ciphered recording.
    const CFileLooks::Key cipher = m_pProject->simulationParameters->nelixConfiguration.get();
    {
        const CWaitCursor wait(GetHost());
        m_fileLooks.Wait(GetTimeForChosenFile(m_configuration), cipher);
    }
    if (m_fileLooks.IsAsked(cipher)) {
        const std::string recording = ToText(m_pProject->simulationParameters->mainInputFile->path);
        GetHost().ShowMessage(Outils_Texte::FormatText(EText::cipherUnknown, {recording}), EButtons::ok,
                              EIcon::exclamation);
        return false;
    }
    if (Persistance_Parametres::WriteParameterFile(*path, *m_pProject->simulationParameters)) return true;
    GetHost().ShowMessage(std::string(GetText(EText::parametersNotWritten)), EButtons::ok,
                          EIcon::exclamation);
    return false;
}

bool CTrvDocument::SaveBeforeRun() {
    if (!m_bParametersChanged) return true;
    std::error_code error;
    const auto& result = m_pProject->simulationParameters->outputFile->path;
    if (!std::filesystem::exists(result, error)) {
        const std::string question(GetText(EText::mustSaveBeforeRun));
        return GetHost().ShowMessage(question, EButtons::okCancel, EIcon::question) == EAnswer::ok && Save();
    }
    switch (GetHost().ShowMessage(std::string(GetText(EText::resultExists)), EButtons::yesNoCancel,
                                  EIcon::question)) {
    case EAnswer::yes: return Save();
    case EAnswer::no: return SaveAs();
    default: return false;
    }
}

bool CTrvDocument::WriteParameterFile(std::filesystem::path& path) {
    const auto refuse = [this](EText text) {
        GetHost().ShowMessage(std::string(GetText(text)), EButtons::ok, EIcon::exclamation);
        return false;
    };
    if (m_configuration.Get(Cnf<"simulation/useTempFileName">)) {
        const auto temporary = Outils_Fichiers::CreateTemporaryFile("SIM");
        if (!temporary) return refuse(EText::noParameterPath);
        path = *temporary;
    } else {
        std::error_code error;
        const auto folder = std::filesystem::temp_directory_path(error);
        if (error) return refuse(EText::noParameterPath);
        path = folder / FromText(m_configuration.Get(Cnf<"simulation/fixedFileName">));
    }
    CMemoryStream stream;
    bool written = false;
    try {
        CArchive archive(stream, CArchive::store, nullptr, path);
        archive.WriteObject(m_pProject->simulationParameters.get());
        archive.Close();
        written = Outils_Fichiers::WriteWholeFile(path, stream.GetBytes());
    } catch (const CArchiveException&) {
    }
    if (written) return true;
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    return refuse(EText::noParameterFile);
}

void CTrvDocument::RemoveResult() {
    CTrvDataFile& output = *m_pProject->simulationParameters->outputFile;
    std::error_code error;
    if (std::filesystem::exists(output.path, error)) {
        std::filesystem::remove(output.path, error);
        // The removal is no news, and what the engine writes is a new file, even if it is longer than this
        // one at the next look.
        ForgetContent(output);
    }
    UpdateAllViews(nullptr, hintDataFileContentChanged, &output);
}

bool CTrvDocument::LaunchEngine(const std::filesystem::path& parameterFile) {
    const auto engine = (GetHost().GetProgramFolder() / FromText(m_configuration.Get(Cnf<"process/morvex">)))
                            .lexically_normal();
    using namespace Communication_Processus;
    const std::string commandLine =
        QuoteProgram(ToText(engine)) + " /remote /autostart off " + QuoteArgument(ToText(parameterFile));
    m_stopRequests = 0;
    if (!m_process.Open(commandLine, false)) {
        std::error_code ignored;
        std::filesystem::remove(parameterFile, ignored);
        GetHost().ShowMessage(std::string(GetText(EText::noProcess)), EButtons::ok, EIcon::exclamation);
        return false;
    }
    m_process.Start();
    m_temporaryFiles.push_back(parameterFile);
    m_bSimulationRunning = true;
    UpdateAllViews(nullptr, hintRunStarted);
    GetHost().SetProgress(0);
    GetHost().ShowProgress(true);
    return true;
}

bool CTrvDocument::StopSimulation() {
    const CWaitCursor wait(GetHost());
    if (!m_pProject || !m_process.IsRunning()) return false;
    if (m_stopRequests == 0) m_firstStopTime = GetHost().GetTime();
    m_process.Stop();
    GetHost().Sleep(std::chrono::milliseconds(200));
    ++m_stopRequests;
    if (m_stopRequests > 1 && GetHost().GetTime() - m_firstStopTime > kFreezeTime) {
        const auto answer = GetHost().ShowMessage(std::string(GetText(EText::frozen)), EButtons::okCancel,
                                                  EIcon::exclamation);
        if (answer == EAnswer::ok && m_process.IsRunning()) m_process.Terminate();
    }
    if (!m_process.IsRunning()) EndRun();
    return true;
}

} // namespace Application_Tarvel
