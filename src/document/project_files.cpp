#include "document/project_files.h"

#include "config/config_file.h"
#include "dataaccess/file_indexes.h"
#include "document/document_host.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/imu_channel.h"

#include <algorithm>
#include <utility>

namespace Application_Tarvel {

using namespace Persistance_Xpf;
using Metier_Tarvel::CTrvSimulationParameters;
using Outils_Configuration::Cnf;
using Outils_Fichiers::ToText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

CProjectFiles::CProjectFiles(CTrvProject& project, const SFileServices& services,
                             IProjectFilesListener& listener)
    : m_project(project),
      m_services(services),
      m_listener(listener),
      m_port(std::make_shared<Outils::CMessagePort>(services.target)),
      m_analyses(
          services.target, services.ending, services.indexes,
          [this](const CTrvDataFile& file, std::uint16_t channel) { OnChannelFound(file, channel); },
          [this](const CTrvDataFile& file, std::int64_t position) { OnDamageFound(file, position); }) {}

CProjectFiles::~CProjectFiles() {
    m_port->Close();
    m_services.ending.Take(std::move(m_monitor), m_port);
    m_services.looks.ForgetAll();
}

void CProjectFiles::Open() {
    m_starting = true;
    for (const CTrvDataFile* file : GetFiles()) m_unchecked.insert(file);
    LookAtAll();
    CheckVersions(m_firstLooks);
    FollowFirstLooks();
    for (const CTrvDataFile* file : GetFiles()) StartAnalysis(*file);
    Watch();
    m_starting = false;
}

void CProjectFiles::Make() {
    m_starting = true;
    LookAtAll();
    FollowFirstLooks();
    StartAnalysis(*m_project.simulationParameters->mainInputFile);
    Watch();
    m_starting = false;
}

void CProjectFiles::Follow(CTrvDataFile& file) {
    StartAnalysis(file);
    if (m_monitor) m_monitor->Watch(&file, file.path);
}

void CProjectFiles::Forget(const CTrvDataFile& file) {
    StopAnalysis(file);
    Unwatch(file);
    ForgetContent(file.path);
}

void CProjectFiles::ForgetResult() {
    FollowResult();
    RefreshLayers(GetResult(), {});
}

void CProjectFiles::FollowResult() {
    StopAnalysis(GetResult());
    WatchAgain(GetResult());
    ForgetContent(GetResult().path);
}

SFirstData CProjectFiles::WaitForFirstData(const CTrvDataFile& file) {
    const int time = m_services.configuration.Get(Cnf<"general/utcSearch/timeout">);
    return m_analyses.WaitForFirstData(file, std::chrono::milliseconds(std::max(0, time)));
}

SChannelAddress CProjectFiles::GetAddress(const CTrvDataFile& file, std::uint16_t channel) const {
    return {file.path, IsResult(file) ? EFileKind::tarout : EFileKind::tarin, channel, &m_services.cache,
            m_services.indexes.get()};
}

CTrvDataFile* CProjectFiles::Find(const void* key) const {
    for (CTrvDataFile* file : GetFiles())
        if (file == key) return file;
    return nullptr;
}

void CProjectFiles::StopAnalysis(const CTrvDataFile& file) {
    if (m_analyses.Stop(file)) m_files[&file].channels.clear();
}

void CProjectFiles::ForgetContent(const std::filesystem::path& path) {
    m_services.cache.InvalidateFile(path);
    m_services.indexes->Forget(path);
}

void CProjectFiles::Watch() {
    m_monitor = std::make_unique<CTrvDataFileMonitorThread>(
        *m_port, [this](EFileChange change, const void* key) { OnFileChanged(change, key); });
    for (const CTrvDataFile* file : GetFiles()) m_monitor->Watch(file, file->path);
}

void CProjectFiles::WatchAgain(const CTrvDataFile& file) {
    Unwatch(file);
    if (m_monitor) m_monitor->Watch(&file, file.path);
}

void CProjectFiles::Unwatch(const CTrvDataFile& file) {
    if (m_monitor) m_monitor->Unwatch(&file);
    m_services.looks.Forget(&file);
    m_firstLooks.erase(&file);
    m_unchecked.erase(&file);
    m_files.erase(&file);
    // It may have been the last one for which the question about the versions waited.
    m_port->Post([this] { CheckLateVersions(); });
}

void CProjectFiles::RefreshLayers(CTrvDataFile& file,
                                  const Metier_Tarvel_DataModel::SFileDescription& description) {
    auto& model = *m_project.dataModel;
    const bool changed = model.Refresh(file, description, m_services.expertMode);
    for (const std::uint16_t channel : m_files[&file].channels) model.SetLayerHasData(&file, channel);
    if (changed && !m_starting) m_listener.OnLayersChanged(file);
}

void CProjectFiles::LookAtAll() {
    m_project.dataModel = std::make_unique<Metier_Tarvel_DataModel::CTrvDataModel>();
    for (CTrvDataFile* file : GetFiles()) {
        m_files[file].stage = EStage::first;
        LookAtFile(*file);
    }
    LookAtRecording();
    m_services.looks.Wait(m_services.host.GetPatience());
}

void CProjectFiles::LookAtFile(CTrvDataFile& file) {
    if (m_services.looks.IsAsked(&file)) {
        m_files[&file].lookAgain = true;
        return;
    }
    const EFileKind kind = IsResult(file) ? EFileKind::tarout : EFileKind::tarin;
    m_services.looks.Ask(
        &file,
        [path = file.path, kind](const Outils::CEvent& cancel) { return LookInto(path, kind, cancel); },
        [this, &file](SFileLook look) { OnLooked(file, std::move(look)); });
}

// Two questions: the first packet gives the cipher mode, but the frequency takes a hundred more, and a
// recording that has fewer is walked to its end.
void CProjectFiles::LookAtRecording() {
    CTrvSimulationParameters& parameters = *m_project.simulationParameters;
    const auto follow = [this] {
        if (!m_starting) m_listener.OnRecordingKnown();
    };
    const std::filesystem::path& path = parameters.mainInputFile->path;
    m_services.looks.Ask(
        parameters.nelixConfiguration.get(),
        [path](const Outils::CEvent& cancel) { return Metier_Tarvel::ReadImuCipherMode(path, &cancel); },
        [&parameters, follow](std::int32_t mode) {
            parameters.nelixConfiguration->imuCipherMode = mode;
            follow();
        });
    m_services.looks.Ask(
        &parameters,
        [path](const Outils::CEvent& cancel) {
            std::int32_t frequency = 0;
            Metier_Tarvel::MeasureImuFrequency(path, frequency, &cancel);
            return frequency;
        },
        [&parameters, follow](std::int32_t frequency) {
            parameters.imuFrequency = frequency;
            follow();
        });
}

void CProjectFiles::OnLooked(CTrvDataFile& file, SFileLook look) {
    if (std::exchange(m_files[&file].lookAgain, false)) {
        // A file that grows faster than its disk answers would have none but such looks.
        if (!m_starting) TakeHead(file, look);
        LookAtFile(file);
        return;
    }
    if (!m_starting) FollowLook(file, look);
    if (m_starting || m_unchecked.contains(&file)) m_firstLooks[&file] = std::move(look);
    CheckLateVersions();
}

void CProjectFiles::TakeHead(CTrvDataFile& file, const SFileLook& look) {
    SFile& state = m_files[&file];
    state.headIsWhole = look.fault == EText::none;
    if (state.stage != EStage::followed) RefreshLayers(file, look.description);
}

void CProjectFiles::FollowFirstLooks() {
    for (CTrvDataFile* file : GetFiles()) {
        const auto look = m_firstLooks.find(file);
        if (look == m_firstLooks.end()) continue;
        // One that came while the user was asked about the others has its own turn.
        if (m_unchecked.contains(file))
            LookAtFile(*file);
        else
            FollowLook(*file, look->second);
    }
    m_firstLooks.clear();
}

void CProjectFiles::FollowLook(CTrvDataFile& file, const SFileLook& look) {
    TakeHead(file, look);
    SFile& state = m_files[&file];
    const EStage stage = std::exchange(state.stage, EStage::followed);
    const bool missingIsNews = stage >= EStage::changed || (stage == EStage::first && !IsResult(file));
    if (!IsBeingWritten(file) && (look.fault != EText::fileVanished || missingIsNews)) {
        if (std::exchange(state.fault, look.fault) != look.fault && look.fault != EText::none)
            Report(look.fault, file);
        if (stage == EStage::replaced && look.fault == EText::none) Report(EText::fileReplaced, file);
    }
    if (stage != EStage::followed && !m_starting) m_listener.OnContentChanged(file);
}

void CProjectFiles::OnQueryFailed(const CTrvDataFile& file) {
    // The monitor reports a file that goes away; and saved graphs may show a result yet to be computed.
    CTrvDataFile* own = Find(&file);
    if (own && !IsBeingWritten(file) && !m_services.looks.IsAsked(&file)) LookAtFile(*own);
}

void CProjectFiles::CheckVersions(const std::map<const CTrvDataFile*, SFileLook>& looks) {
    IDocumentHost& host = m_services.host;
    std::vector<CTrvDataFile*> upgradable;
    for (CTrvDataFile* file : GetFiles()) {
        const auto look = looks.find(file);
        if (look == looks.end() || m_unchecked.erase(file) == 0) continue;
        const EText fault = look->second.fault;
        if (look->second.outdated)
            upgradable.push_back(file);
        else if (fault != EText::none && fault != EText::fileVanished)
            host.ShowMessage(FormatText(EText::failedToLoad, {ToText(file->path)}) + "\n\n" +
                                 FormatText(fault, {ToText(file->path)}),
                             EButtons::ok, EIcon::exclamation);
    }
    if (upgradable.empty()) return;
    const std::string question(GetText(EText::upgradeDataFiles));
    if (host.ShowMessage(question, EButtons::yesNo, EIcon::exclamation) != EAnswer::yes) return;
    for (CTrvDataFile* file : upgradable) Update(*file);
    if (m_starting) m_services.looks.Wait(host.GetPatience());
}

void CProjectFiles::Update(CTrvDataFile& file) {
    // What the updater does to the file is no news, and what it leaves is a new file in all respects. The
    // look that follows shows whether it succeeded.
    StopAnalysis(file);
    Unwatch(file);
    static_cast<void>(m_services.host.UpdateDataFile(file.path));
    ForgetContent(file.path);
    WatchAgain(file);
    m_files[&file].stage = EStage::changed;
    LookAtFile(file);
    if (!m_starting) StartAnalysis(file);
}

void CProjectFiles::Move(CTrvDataFile& file, const std::filesystem::path& path) {
    StopAnalysis(file);
    Unwatch(file);
    m_services.looks.Forget(&file); // at the former place
    file.path = path;
    ForgetContent(path);
    m_files[&file] = {};
    m_files[&file].stage = EStage::changed;
    m_unchecked.insert(&file);
    WatchAgain(file);
    LookAtFile(file);
    StartAnalysis(file);
    auto& parameters = *m_project.simulationParameters;
    if (&file != parameters.mainInputFile.get()) return;
    m_services.looks.Forget(parameters.nelixConfiguration.get());
    m_services.looks.Forget(&parameters);
    LookAtRecording();
}

std::vector<CTrvDataFile*> CProjectFiles::GetMissing() const {
    std::vector<CTrvDataFile*> missing;
    for (CTrvDataFile* file : GetFiles())
        if (const auto state = m_files.find(file);
            !IsResult(*file) && state != m_files.end() && state->second.fault == EText::fileVanished)
            missing.push_back(file);
    return missing;
}

void CProjectFiles::CheckLateVersions() {
    const auto isAwaited = [this](const CTrvDataFile* file) {
        return m_unchecked.contains(file) && m_services.looks.IsAsked(file);
    };
    // The loop of an open box delivers further answers: they wait for its end.
    if (m_starting || std::exchange(m_isAsking, true)) return;
    while (!m_firstLooks.empty()) {
        const auto files = GetFiles();
        if (std::any_of(files.begin(), files.end(), isAwaited)) break;
        CheckVersions(std::exchange(m_firstLooks, {}));
    }
    m_isAsking = false;
}

void CProjectFiles::OnChannelFound(const CTrvDataFile& key, std::uint16_t channel) {
    CTrvDataFile* file = Find(&key);
    if (!file) return;
    m_files[file].channels.insert(channel);
    m_project.dataModel->SetLayerHasData(file, channel);
    m_listener.OnChannelFound(*file, channel);
}

void CProjectFiles::OnDamageFound(const CTrvDataFile& file, std::int64_t position) {
    if (!Find(&file) || IsBeingWritten(file) || std::exchange(m_files[&file].damage, position) == position)
        return;
    m_services.host.AppendOutputText(
        {FormatText(EText::fileDamaged, {ToText(file.path), std::to_string(position)}),
         Communication_Interfaces::levelWarning, &file});
}

void CProjectFiles::OnFileChanged(EFileChange change, const void* key) {
    CTrvDataFile* file = Find(key);
    if (!file) return;
    SFile& state = m_files[file];
    EStage stage = std::max(state.stage, EStage::changed);
    if (change == EFileChange::grew) {
        m_services.cache.InvalidateLast(file->path);
        StartAnalysis(*file);
        // A file seen before its header was whole, or written again between two looks, lacks layers yet.
        if (m_project.dataModel->HasLayers(file) && state.headIsWhole) {
            m_listener.OnContentChanged(*file);
            return;
        }
    } else if (change == EFileChange::appeared) {
        m_analyses.Pause(*file);
        StartAnalysis(*file);
    } else {
        state.damage = -1;
        StopAnalysis(*file);
        ForgetContent(file->path);
        stage = change == EFileChange::shrank ? EStage::replaced : EStage::changed;
        if (change == EFileChange::shrank) StartAnalysis(*file);
    }
    state.headIsWhole = false;
    state.stage = stage;
    LookAtFile(*file);
}

void CProjectFiles::Report(EText text, const CTrvDataFile& file) {
    m_services.host.AppendOutputText(
        {FormatText(text, {ToText(file.path)}), Communication_Interfaces::levelWarning, &file});
}

} // namespace Application_Tarvel
