// The document's part in the life of the data files: their analysers, the monitor, and what both report.
#include "document/document.h"

#include "config/config_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>
#include <utility>

namespace Application_Tarvel {

using namespace Metier_Tarvel;
using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

std::vector<CTrvDataFile*> CTrvDocument::GetDataFiles() const {
    if (!m_pProject) return {};
    return m_pProject->simulationParameters->GetDataFiles();
}

CTrvDataFile* CTrvDocument::FindDataFile(const void* key) const {
    for (CTrvDataFile* file : GetDataFiles())
        if (file == key) return file;
    return nullptr;
}

bool CTrvDocument::IsResultFile(const CTrvDataFile& file) const {
    return m_pProject && &file == m_pProject->simulationParameters->outputFile.get();
}

void CTrvDocument::RefreshDataLayers(CTrvDataFile& file,
                                     const Metier_Tarvel_DataModel::SFileDescription& description) {
    auto& model = *m_pProject->dataModel;
    const bool changed = model.Refresh(file, description, m_configuration.Get(Cnf<"general/expertMode">));
    for (const std::uint16_t channel : m_fileStates[&file].channels) model.SetLayerHasData(&file, channel);
    if (changed && !m_bSettingUp) UpdateAllViews(nullptr, hintDataLayersRebuilt, &file);
}

void CTrvDocument::StartAnalysis(CTrvDataFile& file) {
    auto& [port, analyzer] = m_analyzers[&file];
    if (!analyzer) {
        port = std::make_shared<Outils::CMessagePort>(m_target);
        const auto report = [this, key = &file](std::uint16_t channel) { OnChannelFound(key, channel); };
        const auto damage = [this, key = &file](std::int64_t position) { OnDamageFound(key, position); };
        if (IsResultFile(file))
            analyzer = std::make_unique<CTrvDataFileAnalyzerThread>(file.path, *port, report, damage);
        else
            analyzer = std::make_unique<CTrvTarinDataFileAnalyzerThread>(file.path, *port, report, damage);
    }
    analyzer->Start();
}

bool CTrvDocument::IsAnalysing() const {
    return m_fileLooks.IsBusy() || std::any_of(m_analyzers.begin(), m_analyzers.end(), [](const auto& entry) {
               return entry.second.thread->IsAlive();
           });
}

void CTrvDocument::StopAnalysis(const CTrvDataFile& file, bool reset) {
    const auto place = m_analyzers.find(&file);
    if (place == m_analyzers.end()) return;
    if (!reset) {
        place->second.thread->Stop();
        return;
    }
    Retire(place->second);
    m_analyzers.erase(place);
    m_fileStates[&file].channels.clear();
}

void CTrvDocument::Retire(SAnalysis& analysis) {
    analysis.port->Close();
    m_endingThreads.Take(std::move(analysis.thread), std::move(analysis.port));
}

void CTrvDocument::ForgetContent(CTrvDataFile& file) {
    StopAnalysis(file, true);
    WatchAnew(file);
    m_fileCache.InvalidateFile(file.path);
    RefreshDataLayers(file, {});
}

void CTrvDocument::WatchFiles() {
    m_fileMonitor = std::make_unique<CTrvDataFileMonitorThread>(
        *m_messageWnd, [this](EFileChange change, const void* key) { OnFileChanged(change, key); });
    for (CTrvDataFile* file : GetDataFiles()) m_fileMonitor->Watch(file, file->path);
}

void CTrvDocument::WatchAnew(const CTrvDataFile& file) {
    Unwatch(file);
    if (m_fileMonitor) m_fileMonitor->Watch(&file, file.path);
}

void CTrvDocument::Unwatch(const CTrvDataFile& file) {
    if (m_fileMonitor) m_fileMonitor->Unwatch(&file);
    m_fileLooks.Forget(&file);
    m_firstLooks.erase(&file);
    m_fileStates.erase(&file);
    // It may have been the last one for which the question about the versions waited.
    m_messageWnd->Post([this] { CheckLateVersions(); });
}

void CTrvDocument::StopThreads() {
    // All are asked to end, and none is waited for: a disk that does not answer may hold any of them. From
    // here on they are not heard, and they use nothing that goes with the project.
    m_messageWnd->Close();
    m_endingThreads.Take(std::move(m_fileMonitor), m_messageWnd);
    for (auto& [file, analysis] : m_analyzers) Retire(analysis);
    m_analyzers.clear();
    m_fileLooks.ForgetAll();
    m_firstLooks.clear();
    m_queryManager.Stop();
    m_messageWnd = std::make_shared<Outils::CMessagePort>(m_target);
}

void CTrvDocument::FollowDataFile(CTrvDataFile& file) {
    StartAnalysis(file);
    if (m_fileMonitor) m_fileMonitor->Watch(&file, file.path);
}

void CTrvDocument::ForgetDataFile(const CTrvDataFile& file) {
    StopAnalysis(file, true);
    Unwatch(file);
    m_fileCache.InvalidateFile(file.path);
}

SFirstData CTrvDocument::WaitForFirstData(const CTrvDataFile& file) {
    const auto place = m_analyzers.find(&file);
    auto* analyzer = place == m_analyzers.end()
                         ? nullptr
                         : dynamic_cast<CTrvTarinDataFileAnalyzerThread*>(place->second.thread.get());
    if (!analyzer) return {};
    return analyzer->WaitForFirstData(
        std::chrono::milliseconds(m_configuration.Get(Cnf<"general/utcSearch/timeout">)));
}

void CTrvDocument::SearchFirstData() {
    auto& parameters = *m_pProject->simulationParameters;
    const SFirstData data = WaitForFirstData(*parameters.mainInputFile);
    if (data.hasUtc && data.utcOrigin.IsValid())
        parameters.SetUtcReference(data.utcOrigin, Outils_Temps::CDateTimeSpan());
    auto& reference = parameters.referencePosition;
    if (data.hasPosition && reference.latitude == 0.0 && reference.longitude == 0.0)
        reference = data.position;
}

void CTrvDocument::OnChannelFound(const void* key, std::uint16_t channel) {
    CTrvDataFile* file = FindDataFile(key);
    if (!file) return;
    m_fileStates[file].channels.insert(channel);
    m_pProject->dataModel->SetLayerHasData(file, channel);
    UpdateAllViews(nullptr, hintChannelFound, file);
    if (m_bAutoAddSensors) AddSensorAutomatically(*file, channel);
}

namespace {

// The kinds of sensor that need no choice of the user, and what is told when one was added.
struct SAutomaticKind {
    ESensorKind kind;
    EText message;
};
constexpr SAutomaticKind kAutomaticKinds[] = {
    {ESensorKind::eventMarker, EText::eventMarkerAdded},
    {ESensorKind::platformOrientation, EText::mountAdded},
};

// The first of the four event channels has the number 15 and gives the event "1".
constexpr int kChannelBeforeEvents = 14;

} // namespace

void CTrvDocument::AddSensorAutomatically(CTrvDataFile& file, std::uint16_t number) {
    CTrvDataFileChannel* channel = file.FindChannel(number);
    if (!channel) return;
    auto& parameters = *m_pProject->simulationParameters;
    const auto uses = [channel](const auto& sensor) { return sensor->channel == channel; };
    const std::string key = Outils_Fichiers::ToText(file.path) + " - " + channel->name;
    for (const auto& [kind, message] : kAutomaticKinds) {
        if (channel->sensorClass != GetSensorKind(kind).className || m_autoAddedKeys.contains(key)) continue;
        if (std::any_of(parameters.sensors.begin(), parameters.sensors.end(), uses)) continue;
        CTrvSensor* sensor = parameters.AddSensor(kind);
        if (!sensor) continue;
        sensor->channel = channel;
        if (auto* marker = dynamic_cast<CTrvSensorEventMarker*>(sensor))
            marker->eventId = std::to_string(number - kChannelBeforeEvents);
        ProjectChanged(hintSensorAdded, sensor);
        m_autoAddedKeys.insert(key);
        GetHost().AppendOutputText(std::string(GetText(message)));
    }
}

void CTrvDocument::OnFileChanged(EFileChange change, const void* key) {
    CTrvDataFile* file = FindDataFile(key);
    if (!file) return;
    SFileState& state = m_fileStates[file];
    if (change == EFileChange::grew) {
        m_fileCache.InvalidateLast(file->path);
        StartAnalysis(*file);
        // A file seen before its header was whole, or written anew between two looks, lacks layers yet.
        if (m_pProject->dataModel->HasLayers(file) && state.headIsWhole) {
            UpdateAllViews(nullptr, hintDataFileContentChanged, file);
            return;
        }
    } else if (change == EFileChange::appeared) {
        StopAnalysis(*file, false);
        StartAnalysis(*file);
    } else {
        state.damage = -1;
        StopAnalysis(*file, true);
        m_fileCache.InvalidateFile(file->path);
        state.tellReplaced = change == EFileChange::shrank;
        if (change == EFileChange::shrank) StartAnalysis(*file);
    }
    state.headIsWhole = false;
    state.followFile = state.tellMissing = true;
    LookAtFile(*file);
}

void CTrvDocument::OnDamageFound(const void* key, std::int64_t position) {
    const CTrvDataFile* file = FindDataFile(key);
    if (!file || IsBeingWritten(*file) || std::exchange(m_fileStates[file].damage, position) == position)
        return;
    GetHost().AppendOutputText(
        FormatText(EText::fileDamaged, {Outils_Fichiers::ToText(file->path), std::to_string(position)}));
}

} // namespace Application_Tarvel
