#include "document/engine_run.h"

#include "config/config_file.h"
#include "dataaccess/date_search.h"
#include "document/document_host.h"
#include "document/file_look.h"
#include "foundation/archive.h"
#include "foundation/files.h"
#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/data_file.h"
#include "model/simulation_parameters.h"
#include "processing/engine_command.h"
#include "processing/message_line.h"

#include <atomic>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

namespace Application_Tarvel {

using Communication_Processus::CChildRun;
using Metier_Tarvel::CTrvSimulationParameters;
using Outils_Configuration::Cnf;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr std::chrono::milliseconds kStopNowPatience(5000);

void RemoveTemporary(const std::filesystem::path& file) {
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
}

struct SInput {
    std::filesystem::path path;
    bool isRead = false; // by the engine; the others must only not be overwritten
};

std::vector<SInput> GetInputs(const CTrvSimulationParameters& parameters) {
    std::vector<SInput> inputs;
    for (const auto* file : parameters.GetDataFiles())
        if (file != parameters.outputFile.get()) inputs.push_back({file->path, file->IsReferenced()});
    return inputs;
}

// Why the engine could not read the input; `none` when it can.
EText FindFault(const SInput& input, const std::filesystem::path& result, const Outils::CEvent& cancel) {
    std::error_code error;
    if (Outils_Fichiers::SamePath(input.path, result) ||
        std::filesystem::equivalent(input.path, result, error))
        return EText::resultIsInput;
    if (!input.isRead) return EText::none;
    const EText fault = LookInto(input.path, Persistance_Xpf::EFileKind::tarin, cancel).fault;
    return fault == EText::fileVanished ? EText::inputMissing : fault;
}

// "2024-03-14T10:00:02.5Z" when the recording's UTC is known, else "2.5 s".
std::string FormatDate(Outils_Temps::CDateTimeSpan date, Outils_Temps::CDateTime utcReference) {
    // The UTC of a recording is known to a microsecond or so: rounded, not cut, to tenths.
    constexpr Outils_Temps::CDateTimeSpan half(Outils_Temps::kTicksPerSecond / 20);
    Outils_Temps::CalendarFields utc;
    if (!(utcReference + date + half).GetCalendar(utc))
        return Outils_Texte::FormatFixed(date.GetTotalSeconds(), 1) + " s";
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%dZ", utc.year, utc.month, utc.day,
                  utc.hour, utc.minute, utc.second, static_cast<int>(utc.ticks / 1'000'000));
    return text;
}

} // namespace

CEngineRun::CEngineRun(IDocumentHost& host, const Outils_Configuration::CTrvCnfConfigFile& configuration,
                       CFileLooks& looks, IEngineRunListener& listener)
    : m_host(host), m_configuration(configuration), m_looks(looks), m_listener(listener) {}

bool CEngineRun::Refuse(const std::string& text) {
    m_host.ShowMessage(text, EButtons::ok, EIcon::exclamation);
    return false;
}

bool CEngineRun::Refuse(EText text) { return Refuse(std::string(GetText(text))); }

// A project from elsewhere may name a recording as its result, or a link to one.
bool CEngineRun::CheckFiles(const CTrvSimulationParameters& parameters) {
    const std::filesystem::path& result = parameters.outputFile->path;
    const std::vector<SInput> inputs = GetInputs(parameters);
    // The input that is looked at; the one after the last is the result, the first to be looked at.
    const auto at = std::make_shared<std::atomic<std::size_t>>(inputs.size());
    const auto find = [inputs, result, at](const Outils::CEvent& cancel) {
        std::error_code error;
        [[maybe_unused]] const auto status = std::filesystem::status(result, error);
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            *at = i;
            const EText fault = FindFault(inputs[i], result, cancel);
            if (fault != EText::none) return fault;
        }
        return EText::none;
    };
    const auto fault = m_looks.Call(find, GetTimeForChosenFile(m_configuration));
    if (fault == EText::none) return true;
    const std::size_t named = *at;
    const std::string file = ToText(named < inputs.size() ? inputs[named].path : result);
    // Without an answer, the file that is looked at owes it.
    const std::string reason = FormatText(fault.value_or(EText::fileNotReadable), {file});
    return Refuse(fault && *fault != EText::resultIsInput ? FormatText(EText::runRefused, {reason}) : reason);
}

bool CEngineRun::Start(const CTrvSimulationParameters& parameters) {
    m_process.SetNotification(m_host.GetReceiver());
    m_result = parameters.outputFile->path;
    m_utcReference =
        parameters.hasUtcReference ? parameters.utcReference : Outils_Temps::CDateTime::Invalid();
    if (!TakeResult()) return false;
    std::filesystem::path parameterFile;
    if (WriteParameterFile(parameters, parameterFile) && SetResultAside()) {
        m_listener.OnResultRemoved(m_guard.HasSetAside());
        if (Launch(parameterFile)) return true;
    }
    if (!parameterFile.empty()) RemoveTemporary(parameterFile);
    m_guard.Cancel();
    return false;
}

// Not by a look: CheckFiles has just had an answer of this disk, and a mark that is made late would have no
// run.
bool CEngineRun::TakeResult() {
    m_looks.Wait(GetTimeForChosenFile(m_configuration), &m_guard); // it may be about to bring one back
    switch (m_guard.Take(m_result)) {
    case CResultGuard::ETake::busy: return Refuse(FormatText(EText::runBusy, {ToText(m_result)}));
    case CResultGuard::ETake::failed: return Refuse(FormatText(EText::resultNotWritable, {ToText(m_result)}));
    default: return true;
    }
}

bool CEngineRun::SetResultAside() {
    return m_guard.SetAside() || Refuse(FormatText(EText::resultNotMoved, {ToText(m_result)}));
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
    return written || Refuse(EText::noParameterFile);
}

bool CEngineRun::Launch(const std::filesystem::path& parameterFile) {
    const auto engine =
        (m_host.GetProgramFolder() / FromText(m_configuration.Get(Cnf<"process/morvex">))).lexically_normal();
    if (!m_run.Start(Communication_Processus::MakeEngineCommand(ToText(engine), ToText(parameterFile))))
        return Refuse(EText::noProcess);
    m_outcome = ERunOutcome::none;
    m_temporaryFiles.push_back(parameterFile);
    m_listener.OnRunStarted();
    m_host.SetProgress(0);
    m_host.ShowProgress(true);
    return true;
}

bool CEngineRun::Poll() {
    const auto state = m_run.Poll();
    if (state == CChildRun::ERunState::ended) End();
    return state == CChildRun::ERunState::running;
}

bool CEngineRun::Stop() {
    const auto state = m_run.Stop();
    if (state == CChildRun::ERunState::ended) End();
    return state != CChildRun::ERunState::idle;
}

void CEngineRun::StopNow() {
    if (m_run.StopNow(kStopNowPatience) == CChildRun::ERunState::ended) End();
    RemoveTemporaryFiles();
}

// What a run has left.
struct CEngineRun::SLeft {
    bool hasFinished = false;
    std::optional<Outils_Temps::CDateTimeSpan> reached;
    CResultGuard::ELeft left = CResultGuard::ELeft::none;
    bool hasFormer = false;
};

// Empty when the disk does not answer in time; the guard then does its work once it does.
std::optional<CEngineRun::SLeft> CEngineRun::ReleaseResult(bool succeeded) {
    const auto look = [guard = std::make_shared<CResultGuard>(std::exchange(m_guard, {})), result = m_result,
                       succeeded](const Outils::CEvent& cancel) {
        std::error_code error;
        SLeft end;
        end.hasFinished = succeeded && std::filesystem::exists(result, error);
        if (!end.hasFinished) end.reached = FindDateReached(result, &cancel);
        // A search that was broken off says nothing of the result.
        end.left = guard->Release(end.hasFinished, end.reached || cancel.IsSet());
        end.hasFormer = std::filesystem::exists(CResultGuard::GetFormerPath(result), error);
        return end;
    };
    return m_looks.Call(look, GetTimeForChosenFile(m_configuration));
}

void CEngineRun::End() {
    const bool succeeded = m_run.GetEnd().IsSuccess() && m_process.GetProgress() >= 100.0f;
    const auto left = ReleaseResult(succeeded);
    m_outcome = left && left->hasFinished ? ERunOutcome::finished
                : m_run.IsStopRequested() ? ERunOutcome::stopped
                                          : ERunOutcome::failed;
    // The engine's last progress may still wait for this thread, and comes too late once the bar is hidden.
    m_host.SetProgress(static_cast<int>(m_process.GetProgress()));
    m_listener.OnRunEnded();
    m_host.SetProgress(0);
    m_host.ShowProgress(false);
    if (m_outcome != ERunOutcome::finished) ReportEnd(left ? &*left : nullptr);
}

void CEngineRun::ReportEnd(const SLeft* end) {
    using namespace Communication_Interfaces;
    const std::string result = ToText(m_result);
    if (m_outcome == ERunOutcome::stopped)
        Report(levelWarning, EText::runStopped);
    else
        Report(levelError, EText::runFailed, {Communication_Processus::ToText(m_run.GetEnd())});
    if (!end)
        Report(levelWarning, EText::fileNotReadable, {result});
    else if (end->left != CResultGuard::ELeft::partial)
        Report(levelWarning, EText::noResult, {result});
    else if (end->reached)
        Report(levelWarning, EText::resultPartial, {result, FormatDate(*end->reached, m_utcReference)});
    else
        Report(levelWarning, EText::resultWasPartial, {result});
    if (end && end->left == CResultGuard::ELeft::former)
        Report(levelInformation, EText::resultRestored, {result});
    else if (end && end->hasFormer)
        Report(levelInformation, EText::formerKept, {ToText(CResultGuard::GetFormerPath(m_result))});
}

// The way of the engine's messages, so that the report comes after the last of them.
void CEngineRun::Report(Communication_Interfaces::EMessageLevel level, EText text,
                        std::initializer_list<std::string_view> arguments) {
    const std::string formatted = FormatText(text, arguments);
    if (auto* receiver = m_host.GetReceiver())
        receiver->OnMessage(level, 0, formatted);
    else
        m_host.AppendOutputText({Communication_Processus::FormatMessageLine(level, formatted), level});
}

void CEngineRun::ExamineResult(const std::filesystem::path& result) {
    m_looks.Ask(
        &m_guard, [result](const Outils::CEvent&) { return CResultGuard::Examine(result); },
        [this, result](CResultGuard::ELeft left) {
            const EText text = left == CResultGuard::ELeft::partial  ? EText::resultWasPartial
                               : left == CResultGuard::ELeft::former ? EText::resultRestored
                                                                     : EText::none;
            if (text != EText::none)
                m_host.AppendOutputText(
                    {FormatText(text, {ToText(result)}), Communication_Interfaces::levelWarning});
        });
}

Outils_Temps::CDateTime CEngineRun::GetTime() { return m_host.GetTime(); }

void CEngineRun::Sleep(std::chrono::milliseconds time) { m_host.Sleep(time); }

bool CEngineRun::AskToTerminate() {
    return m_host.ShowMessage(std::string(GetText(EText::frozen)), EButtons::okCancel, EIcon::exclamation) ==
           EAnswer::ok;
}

void CEngineRun::RemoveTemporaryFiles() {
    for (const auto& file : std::exchange(m_temporaryFiles, {})) RemoveTemporary(file);
}

} // namespace Application_Tarvel
