#include "model/simulation_parameters.h"

#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "model/configuration_values.h"
#include "model/imu_channel.h"
#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"
#include "model/loading.h"
#include "model/rules/rule.h"
#include "model/rules/rules.h"

#include <algorithm>
#include <cmath>

namespace Metier_Tarvel {

using Outils_Objets::AfxThrowArchiveException;
using Outils_Objets::CArchiveException;
using Outils_Objets::CObject;
using Outils_Objets::CSchema;

namespace {

struct SIniSensor {
    std::string_view section;
    ESensorKind kind;
    bool countsByContent; // on the equipment whose sections carry no port
};

// In the order of creation.
constexpr SIniSensor kIniSensors[] = {
    {"Gps", ESensorKind::gps, true},       {"Gps2", ESensorKind::gps, false},
    {"LochEM", ESensorKind::emLog, false}, {"Dvl", ESensorKind::dvl, false},
    {"Usbl0", ESensorKind::usbl, false},   {"Usbl1", ESensorKind::usbl, false},
    {"Usbl2", ESensorKind::usbl, false},   {"Lbl", ESensorKind::lbl, false},
    {"Depth", ESensorKind::depth, false},  {"Odo", ESensorKind::odometer, true},
};
constexpr std::int32_t kEquipmentWithoutPorts = 15;

struct SWebSensor {
    int index;
    ESensorKind kind;
};

constexpr SWebSensor kWebSensors[] = {
    {1, ESensorKind::gps},   {2, ESensorKind::gps},       {3, ESensorKind::depth}, {4, ESensorKind::dvl},
    {6, ESensorKind::emLog}, {7, ESensorKind::lbl},       {8, ESensorKind::usbl},  {9, ESensorKind::usbl},
    {10, ESensorKind::usbl}, {11, ESensorKind::odometer},
};

// Down to 180 and below by whole turns.
double BringBelow180(double longitude) {
    return longitude > 180.0 ? longitude - 360.0 * std::ceil((longitude - 180.0) / 360.0) : longitude;
}

} // namespace

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

bool CTrvSimulationParameters::HasAltitudeAid() const {
    constexpr std::int32_t kWithoutAltitudeAid[] = {13, 14, 15, 18};
    return std::ranges::find(kWithoutAltitudeAid, nelixConfiguration->type->equipment) ==
           std::end(kWithoutAltitudeAid);
}

CTrvAltitudeMode* CTrvSimulationParameters::AddAltitudeMode() {
    if (!HasAltitudeAid()) return nullptr;
    return AppendOwned(altitudeModes, std::make_unique<CTrvAltitudeMode>());
}

bool CTrvSimulationParameters::RemoveOutputRate(const CTrvOutputRate* rate) {
    return EraseOwned(outputRates, rate);
}

bool CTrvSimulationParameters::RemoveZupt(const CTrvZupt* zupt) { return EraseOwned(zupts, zupt); }

bool CTrvSimulationParameters::RemoveAltitudeMode(const CTrvAltitudeMode* altitudeMode) {
    return EraseOwned(altitudeModes, altitudeMode);
}

bool CTrvSimulationParameters::ReadTimeSpan(CDateTimeSpan& first, CDateTimeSpan& last,
                                            const Outils::CEvent* interrupt) const {
    CImuChannel imu;
    CDateTimeSpan firstDate, lastDate;
    if (!imu.Open(mainInputFile->path, interrupt) || !imu.ReadFirst() || !imu.GetDate(firstDate) ||
        !imu.ReadLast() || !imu.GetDate(lastDate))
        return false;
    first = firstDate;
    last = lastDate;
    return true;
}

bool CTrvSimulationParameters::ReadEquipmentCode(std::int32_t& code, const Outils::CEvent* interrupt) const {
    return ReadImuEquipment(mainInputFile->path, code, interrupt);
}

bool CTrvSimulationParameters::ImportIniConfiguration(const std::filesystem::path& path) {
    CIniFile file;
    if (!file.Open(path)) return false;
    const auto position = GetListNumbers<3>(file.GetString("System", "Position", "0,0,0"));
    if (!position) return false;
    referencePosition = CPosition((*position)[0], BringBelow180((*position)[1]), (*position)[2]);
    constexpr std::int32_t kSeaStates = 4; // that an INS knows
    if (const auto seaState = Outils_Texte::ParseInt(file.GetString("System", "SeaState"));
        seaState && *seaState >= 0 && *seaState < kSeaStates)
        heaveSeaState = *seaState;
    if (!nelixConfiguration->ReadIni(file)) return false;

    const bool withoutPorts = nelixConfiguration->type->equipment == kEquipmentWithoutPorts;
    for (const SIniSensor& row : kIniSensors) {
        const bool connected = file.GetInt(row.section, "Port") != 0;
        if (!connected && !(withoutPorts && row.countsByContent && file.HasContent(row.section))) continue;
        CTrvSensor* sensor = AddSensor(row.kind);
        if (sensor && !sensor->ReadFromIniFile(file, row.section)) return false;
    }
    return true;
}

bool CTrvSimulationParameters::ImportWebConfiguration(const CInsWebConfigurationFile& file) {
    if (const auto position = GetListNumbers<3>(file.GetList("MANPOS")))
        referencePosition = CPosition((*position)[0], (*position)[1], (*position)[2]);
    if (std::int32_t heave = 0; file.GetIntegerField("HeaveConf", 0, heave)) {
        if (heave == 0 || heave == 1) heaveSeaState = heave;
        if (heave == 3) heaveSeaState = 2;
    }
    if (!nelixConfiguration->ReadWebConfiguration(file)) return false;

    for (const SWebSensor& row : kWebSensors) {
        std::int32_t port = 0;
        if (!file.GetPort(row.index, port) || port == 0) continue;
        CTrvSensor* sensor = AddSensor(row.kind);
        if (sensor && !sensor->ReadFromWebConfiguration(file, row.index)) return false;
    }
    return true;
}

void CTrvSimulationParameters::Clear() {
    externalFiles.clear();
    outputFile.reset();
    mainInputFile.reset();
    nelixConfiguration.reset();
    sensors.clear();
    altitudeModes.clear();
    zupts.clear();
    outputRates.clear();
    m_kept.clear();
}

void CTrvSimulationParameters::Serialize(CArchive& archive) {
    CSchema schema(archive, 4);
    if (archive.IsLoading()) {
        Clear();
        heaveAlgorithm = heaveNone;
        heaveSeaState = 1;
        gpsAltitudeReference = altitudeGeoid;
    }
    CTrvObject::Serialize(archive);
    schema.Field(algorithm);
    schema.Since(4).Field(heaveAlgorithm);
    schema.Since(4).Field(heaveSeaState);
    schema.Since(3).Field(gpsAltitudeReference);
    schema.InPlace(referencePosition);
    schema.Field(defaultOutputRate);
    schema.Field(begin);
    schema.Field(end);
    schema.OwnedList(outputRates);
    schema.OwnedList(zupts);
    schema.Since(2).OwnedList(altitudeModes);
    schema.OwnedList(sensors);
    RequiredMember(schema, nelixConfiguration);
    RequiredMember(schema, mainInputFile);
    RequiredMember(schema, outputFile);
    schema.OwnedList(externalFiles);
    schema.Field(hasUtcReference);
    schema.Field(utcReference);
}

std::unique_ptr<CTrvSimulationParameters> CTrvSimulationParameters::Load(CArchive& archive) {
    auto* root = archive.ReadObject<CTrvSimulationParameters>();
    if (!root) return nullptr;
    archive.Claim(root).release();
    std::unique_ptr<CTrvSimulationParameters> parameters(root);
    parameters->Settle(archive.TakeUnclaimed());
    return parameters;
}

void CTrvSimulationParameters::Settle(std::vector<std::unique_ptr<CObject>> unclaimed) {
    std::vector<CTrvDataFile*> files = GetDataFiles();
    CTrvDataFile::CUnclaimed rest;
    for (auto& object : unclaimed) {
        if (object->IsKindOf(CTrvDataFile::Class()))
            files.push_back(static_cast<CTrvDataFile*>(object.get()));
        const CObject* address = object.get();
        rest.emplace(address, std::move(object));
    }
    for (CTrvDataFile* file : files) {
        file->AdoptChannels(rest);
        file->owner = this;
    }
    for (auto& [address, object] : rest) m_kept.push_back(std::move(object));

    nelixConfiguration->owner = this;
    for (const auto& sensor : sensors) {
        sensor->Attach(*this);
        const CTrvDataFileChannel* channel = sensor->channel;
        if (channel && (!channel->file || channel->file->owner != this))
            AfxThrowArchiveException(CArchiveException::badIndex);
    }
}

} // namespace Metier_Tarvel
