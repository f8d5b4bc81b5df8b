#include "model/simulation_parameters.h"

#include "foundation/paths.h"
#include "model/loading.h"
#include "model/rules/rules.h"

#include <algorithm>

namespace Metier_Tarvel {

CTrvSimulationParameters::CTrvSimulationParameters()
    : heaveSeaState(1),
      referencePosition(48.3, -4.5, 0.0),
      nelixConfiguration(std::make_unique<CTrvNelixConfiguration>(this)),
      mainInputFile(std::make_unique<CTrvDataFile>(*this, std::filesystem::path())),
      outputFile(std::make_unique<CTrvDataFile>(*this, std::filesystem::path())),
      rules(Metier_Tarvel_Regles::CreateRules(*this)) {}

CTrvSimulationParameters::CTrvSimulationParameters(std::filesystem::path mainPath,
                                                   std::filesystem::path outputPath)
    : heaveAlgorithm(heaveKelvar),
      nelixConfiguration(std::make_unique<CTrvNelixConfiguration>(this)),
      mainInputFile(std::make_unique<CTrvDataFile>(*this, std::move(mainPath))),
      outputFile(std::make_unique<CTrvDataFile>(*this, std::move(outputPath))),
      rules(Metier_Tarvel_Regles::CreateRules(*this)) {
    mainInputFile->ReadChannels();
}

CTrvSimulationParameters::~CTrvSimulationParameters() = default;

bool CTrvSimulationParameters::Validate(Metier_Tarvel_Regles::CTrvRuleReport& report) const {
    bool valid = true;
    for (const auto& rule : rules) valid = rule->Validate(report) && valid;
    return valid;
}

void CTrvSimulationParameters::SetUtcReference(CDateTime first, CDateTimeSpan second) {
    utcReference = first - second;
    hasUtcReference = true;
}

// --- Data files

bool CTrvSimulationParameters::HasDataFile(const std::filesystem::path& path) const {
    const std::vector<CTrvDataFile*> files = GetDataFiles();
    return std::any_of(files.begin(), files.end(), [&path](const CTrvDataFile* file) {
        return Outils_Fichiers::SamePath(file->path, path);
    });
}

CTrvDataFile* CTrvSimulationParameters::AddDataFile(const std::filesystem::path& path) {
    if (HasDataFile(path)) return nullptr;
    auto file = std::make_unique<CTrvDataFile>(*this, path);
    if (!file->ReadChannels()) return nullptr;
    return AppendOwned(externalFiles, std::move(file));
}

bool CTrvSimulationParameters::RemoveDataFile(const CTrvDataFile* file) {
    const auto found = std::find_if(externalFiles.begin(), externalFiles.end(),
                                    [file](const auto& external) { return external.get() == file; });
    if (found == externalFiles.end() || (*found)->IsReferenced()) return false;
    externalFiles.erase(found);
    return true;
}

std::vector<CTrvDataFile*> CTrvSimulationParameters::GetDataFiles() const {
    std::vector<CTrvDataFile*> files;
    files.reserve(externalFiles.size() + 2);
    for (CTrvDataFile* file : {mainInputFile.get(), outputFile.get()})
        if (file) files.push_back(file);
    for (const auto& external : externalFiles) files.push_back(external.get());
    return files;
}

// --- Sensors

int CTrvSimulationParameters::CountSensors(ESensorKind kind) const {
    return static_cast<int>(std::count_if(sensors.begin(), sensors.end(), [kind](const auto& sensor) {
        return sensor->GetKind().kind == kind;
    }));
}

bool CTrvSimulationParameters::CanAddSensor(ESensorKind kind) const {
    return CountSensors(kind) < GetSensorKind(kind).maximum;
}

CTrvSensor* CTrvSimulationParameters::AddSensor(ESensorKind kind) {
    if (!CanAddSensor(kind)) return nullptr;
    std::unique_ptr<CTrvSensor> sensor = GetSensorKind(kind).create(this);
    sensor->channel = mainInputFile->FindChannelForSensor(*sensor);
    return sensor->channel ? AppendOwned(sensors, std::move(sensor)) : nullptr;
}

bool CTrvSimulationParameters::RemoveSensor(const CTrvSensor* sensor) { return EraseOwned(sensors, sensor); }

// --- Instructions

CTrvOutputRate* CTrvSimulationParameters::AddOutputRate() {
    return AppendOwned(outputRates, std::make_unique<CTrvOutputRate>());
}

CTrvZupt* CTrvSimulationParameters::AddZupt() { return AppendOwned(zupts, std::make_unique<CTrvZupt>()); }

CTrvAltitudeMode* CTrvSimulationParameters::AddAltitudeMode() {
    constexpr std::int32_t kWithoutAltitudeAid[] = {13, 14, 15, 18};
    const std::int32_t equipment = nelixConfiguration->type->equipment;
    if (std::find(std::begin(kWithoutAltitudeAid), std::end(kWithoutAltitudeAid), equipment) !=
        std::end(kWithoutAltitudeAid))
        return nullptr;
    return AppendOwned(altitudeModes, std::make_unique<CTrvAltitudeMode>());
}

bool CTrvSimulationParameters::RemoveOutputRate(const CTrvOutputRate* rate) {
    return EraseOwned(outputRates, rate);
}

bool CTrvSimulationParameters::RemoveZupt(const CTrvZupt* zupt) { return EraseOwned(zupts, zupt); }

bool CTrvSimulationParameters::RemoveAltitudeMode(const CTrvAltitudeMode* altitudeMode) {
    return EraseOwned(altitudeModes, altitudeMode);
}

} // namespace Metier_Tarvel
