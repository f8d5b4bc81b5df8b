// What the document learns of the data files by looks into their heads, each on a thread of its own: their
// layers, versions and faults, and the facts of the recording.
#include "config/config_file.h"
#include "document/document.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/imu_channel.h"

#include <algorithm>
#include <utility>

namespace Application_Tarvel {

using namespace Persistance_Xpf;
using Metier_Tarvel::CTrvSimulationParameters;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

void CTrvDocument::LookAtFiles(bool checkVersions) {
    m_pProject->dataModel = std::make_unique<Metier_Tarvel_DataModel::CTrvDataModel>();
    for (CTrvDataFile* file : GetDataFiles()) {
        SFileState& state = m_fileStates[file];
        state.checkVersion = checkVersions;
        state.followFile = true;
        // A result that is not there was not computed yet.
        state.tellMissing = !IsResultFile(*file);
        LookAtFile(*file);
    }
    LookAtRecording();
    m_fileLooks.Wait(GetHost().GetPatience());
}

void CTrvDocument::LookAtFile(CTrvDataFile& file) {
    if (m_fileLooks.IsAsked(&file)) {
        m_fileStates[&file].lookAgain = true;
        return;
    }
    const EFileKind kind = IsResultFile(file) ? EFileKind::tarout : EFileKind::tarin;
    m_fileLooks.Ask(
        &file,
        [path = file.path, kind](const Outils::CEvent& cancel) { return LookInto(path, kind, cancel); },
        [this, &file](SFileLook look) { OnLooked(file, std::move(look)); });
}

// Two questions: the first packet tells the cipher mode, but the frequency takes a hundred behind it, and a
// recording that has fewer is walked to its end.
void CTrvDocument::LookAtRecording() {
    CTrvSimulationParameters& parameters = *m_pProject->simulationParameters;
    const auto follow = [this, &parameters] {
        if (!m_bSettingUp) UpdateAllViews(nullptr, hintSimulationParametersChanged, &parameters);
    };
    const std::filesystem::path& path = parameters.mainInputFile->path;
    m_fileLooks.Ask(
        parameters.nelixConfiguration.get(),
        [path](const Outils::CEvent& cancel) { return Metier_Tarvel::ReadImuCipherMode(path, &cancel); },
        [&parameters, follow](std::int32_t mode) {
            parameters.nelixConfiguration->imuCipherMode = mode;
            follow();
        });
    m_fileLooks.Ask(
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

void CTrvDocument::OnLooked(CTrvDataFile& file, SFileLook look) {
    SFileState& state = m_fileStates[&file];
    if (std::exchange(state.lookAgain, false)) {
        // A file that grows faster than its disk answers would have none but such looks.
        if (!m_bSettingUp) TakeHead(file, look);
        LookAtFile(file);
        return;
    }
    if (!m_bSettingUp) FollowLook(file, look);
    if (m_bSettingUp || state.checkVersion) m_firstLooks[&file] = std::move(look);
    CheckLateVersions();
}

void CTrvDocument::TakeHead(CTrvDataFile& file, const SFileLook& look) {
    SFileState& state = m_fileStates[&file];
    state.headIsWhole = look.fault == EText::none;
    if (state.followFile) RefreshDataLayers(file, look.description);
}

void CTrvDocument::FollowFirstLooks() {
    for (CTrvDataFile* file : GetDataFiles()) {
        const auto look = m_firstLooks.find(file);
        if (look == m_firstLooks.end()) continue;
        // One that came while the user was asked about the others has its own turn.
        if (m_fileStates[file].checkVersion)
            LookAtFile(*file);
        else
            FollowLook(*file, look->second);
    }
    m_firstLooks.clear();
}

void CTrvDocument::FollowLook(CTrvDataFile& file, const SFileLook& look) {
    SFileState& state = m_fileStates[&file];
    TakeHead(file, look);
    const bool follows = std::exchange(state.followFile, false);
    const bool missing = std::exchange(state.tellMissing, false);
    const bool replaced = std::exchange(state.tellReplaced, false);
    if (!IsBeingWritten(file) && (look.fault != EText::fileVanished || missing)) {
        if (std::exchange(state.fault, look.fault) != look.fault && look.fault != EText::none)
            Tell(look.fault, file);
        if (replaced && look.fault == EText::none) Tell(EText::fileReplaced, file);
    }
    if (follows && !m_bSettingUp) UpdateAllViews(nullptr, hintDataFileContentChanged, &file);
}

void CTrvDocument::OnQueryFailed(const CTrvDataFile& file) {
    // The monitor tells of a file that goes away; and saved graphs may show a result yet to be computed.
    CTrvDataFile* own = FindDataFile(&file);
    if (own && !IsBeingWritten(file) && !m_fileLooks.IsAsked(&file)) LookAtFile(*own);
}

void CTrvDocument::CheckDataFileVersions(const std::map<const CTrvDataFile*, SFileLook>& looks) {
    std::vector<CTrvDataFile*> upgradable;
    for (CTrvDataFile* file : GetDataFiles()) {
        const auto look = looks.find(file);
        if (look == looks.end() || !std::exchange(m_fileStates[file].checkVersion, false)) continue;
        const EText fault = look->second.fault;
        if (look->second.outdated)
            upgradable.push_back(file);
        else if (fault != EText::none && fault != EText::fileVanished)
            GetHost().ShowMessage(FormatText(EText::failedToLoad, {ToText(file->path)}), EButtons::ok,
                                  EIcon::exclamation);
    }
    if (upgradable.empty()) return;
    const std::string question(GetText(EText::upgradeDataFiles));
    if (GetHost().ShowMessage(question, EButtons::yesNo, EIcon::exclamation) != EAnswer::yes) return;
    for (CTrvDataFile* file : upgradable) {
        // What the updater does to it is no news, and what it leaves is a new file in all respects.
        StopAnalysis(*file, true);
        Unwatch(*file);
        // Whether it succeeded shows in the look that follows.
        static_cast<void>(GetHost().UpdateDataFile(file->path));
        m_fileCache.InvalidateFile(file->path);
        WatchAnew(*file);
        m_fileStates[file].followFile = m_fileStates[file].tellMissing = true;
        LookAtFile(*file);
        if (!m_bSettingUp) StartAnalysis(*file);
    }
    if (m_bSettingUp) m_fileLooks.Wait(GetHost().GetPatience());
}

void CTrvDocument::CheckLateVersions() {
    const auto isAwaited = [this](CTrvDataFile* file) {
        return m_fileStates[file].checkVersion && m_fileLooks.IsAsked(file);
    };
    // The loop of an open box delivers further answers: they wait for its end.
    if (m_bSettingUp || std::exchange(m_bCheckingVersions, true)) return;
    while (!m_firstLooks.empty()) {
        const auto files = GetDataFiles();
        if (std::any_of(files.begin(), files.end(), isAwaited)) break;
        CheckDataFileVersions(std::exchange(m_firstLooks, {}));
    }
    m_bCheckingVersions = false;
}

void CTrvDocument::Tell(EText text, const CTrvDataFile& file) {
    GetHost().AppendOutputText(FormatText(text, {ToText(file.path)}));
}

} // namespace Application_Tarvel
