// The document's part in the life of the data files: their analysers, the monitor, and what both report.
#include "document/document.h"

#include "config/config_file.h"
#include "document/text_ids.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "xpf/file.h"

namespace Application_Tarvel {

using namespace Persistance_Xpf;
using Outils_Configuration::Cnf;

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

void CTrvDocument::RebuildDataModel() {
    m_pProject->RebuildDataModel(m_configuration.Get(Cnf<"general/expertMode">));
}

void CTrvDocument::RefreshDataLayers(CTrvDataFile& file) {
    if (m_pProject->dataModel->RefreshFromFile(file, m_configuration.Get(Cnf<"general/expertMode">)))
        UpdateAllViews(nullptr, hintDataLayersRebuilt, &file);
}

void CTrvDocument::StartAnalysis(CTrvDataFile& file) {
    auto& analyzer = m_analyzers[&file];
    if (!analyzer) {
        const auto report = [this, key = &file](std::uint16_t channel) { OnChannelFound(key, channel); };
        if (IsResultFile(file))
            analyzer = std::make_unique<CTrvDataFileAnalyzerThread>(file.path, m_messageWnd, report);
        else
            analyzer = std::make_unique<CTrvTarinDataFileAnalyzerThread>(file.path, m_messageWnd, report);
    }
    analyzer->Start();
}

void CTrvDocument::StopAnalysis(const CTrvDataFile& file, bool reset) {
    const auto place = m_analyzers.find(&file);
    if (place == m_analyzers.end()) return;
    place->second->Kill();
    if (reset) m_analyzers.erase(place);
}

void CTrvDocument::DropFromCache(const CTrvDataFile& file) {
    m_fileCache.InvalidateFirst(file.path);
    m_fileCache.InvalidateLast(file.path);
    m_fileCache.InvalidateDates(file.path);
}

void CTrvDocument::WatchFiles() {
    m_fileMonitor = std::make_unique<CTrvDataFileMonitorThread>(
        m_messageWnd, [this](EFileChange change, const void* key) { OnFileChanged(change, key); });
    for (CTrvDataFile* file : GetDataFiles()) m_fileMonitor->Watch(file, file->path);
}

void CTrvDocument::StopThreads() {
    // All are asked before the first is waited for, so that they wind down side by side.
    if (m_fileMonitor) m_fileMonitor->Stop();
    for (auto& [file, analyzer] : m_analyzers) analyzer->Stop();
    m_queryManager.Stop();
    m_fileMonitor.reset();
    m_analyzers.clear();
}

void CTrvDocument::FollowDataFile(CTrvDataFile& file) {
    StartAnalysis(file);
    if (m_fileMonitor) m_fileMonitor->Watch(&file, file.path);
}

void CTrvDocument::ForgetDataFile(const CTrvDataFile& file) {
    StopAnalysis(file, true);
    if (m_fileMonitor) m_fileMonitor->Unwatch(&file);
    DropFromCache(file);
}

SFirstData CTrvDocument::WaitForFirstData(const CTrvDataFile& file) {
    const auto place = m_analyzers.find(&file);
    auto* analyzer = place == m_analyzers.end()
                         ? nullptr
                         : dynamic_cast<CTrvTarinDataFileAnalyzerThread*>(place->second.get());
    if (!analyzer) return {};
    return analyzer->WaitForFirstData(
        std::chrono::milliseconds(std::max(0, m_configuration.Get(Cnf<"general/utcSearch/timeout">))));
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

void CTrvDocument::ReadRecordingFacts() {
    auto& parameters = *m_pProject->simulationParameters;
    parameters.nelixConfiguration->ReadCipherMode();
    GetHost().UpdateMenuForEquipment(parameters.nelixConfiguration->type->equipment);
}

void CTrvDocument::CheckDataFileVersions() {
    for (const CTrvDataFile* file : GetDataFiles()) {
        std::error_code error;
        if (!std::filesystem::exists(file->path, error)) continue;
        bool outdated = false;
        const EFileKind kind = IsResultFile(*file) ? EFileKind::tarout : EFileKind::tarin;
        if (OpenXpfFile(file->path, kind, outdated) || outdated) continue;
        GetHost().ShowMessage(
            Outils_Texte::FormatText(textFailedToLoad, {Outils_Fichiers::ToText(file->path)}), EButtons::ok,
            EIcon::exclamation);
    }
}

void CTrvDocument::OnChannelFound(const void* key, std::uint16_t channel) {
    CTrvDataFile* file = FindDataFile(key);
    if (!file) return;
    m_pProject->dataModel->SetLayerHasData(file, channel);
    UpdateAllViews(nullptr, hintChannelFound, file);
}

void CTrvDocument::OnFileChanged(EFileChange change, const void* key) {
    CTrvDataFile* file = FindDataFile(key);
    if (!file) return;
    switch (change) {
    case EFileChange::appeared:
        StopAnalysis(*file, false);
        RefreshDataLayers(*file);
        StartAnalysis(*file);
        break;
    case EFileChange::grew:
        m_fileCache.InvalidateLast(file->path);
        StartAnalysis(*file);
        break;
    case EFileChange::shrank:
    case EFileChange::disappeared:
        StopAnalysis(*file, true);
        RefreshDataLayers(*file);
        DropFromCache(*file);
        if (change == EFileChange::shrank) StartAnalysis(*file);
        break;
    }
    UpdateAllViews(nullptr, hintDataFileContentChanged, file);
}

} // namespace Application_Tarvel
