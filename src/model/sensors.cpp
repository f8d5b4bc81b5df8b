#include "model/sensors.h"

#include "model/configuration_values.h"
#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"
#include "model/loading.h"
#include "model/simulation_parameters.h"

namespace Metier_Tarvel {

using Outils_Objets::CSchema;

namespace {

bool ReadCurrentModeling(CTrvCurrentModeling& modeling, std::string_view list) {
    const auto values = GetListNumbers<2>(list);
    if (!values) return false;
    modeling.time = (*values)[0];
    modeling.sigma = (*values)[1];
    return true;
}

} // namespace

void CTrvCurrentModeling::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvObject::Serialize(archive);
    schema.Field(time);
    schema.Field(sigma);
}

// --- GPS

void CTrvSensorGps::Serialize(CArchive& archive) {
    CSchema schema(archive, 3);
    if (archive.IsLoading()) {
        CreateMembers();
        stdDevThreshold = std::make_unique<CTrvGpsStdDevThreshold>();
    }
    CTrvSensor::Serialize(archive);
    RequiredMember(schema, leverArm);
    RequiredMember(schema.Since(2), stdDevInstruction);
    RequiredMember(schema.Since(3), stdDevThreshold);
}

// --- DVL

CTrvSensorDvl::CTrvSensorDvl(CTrvSimulationParameters* parameters) {
    Create(parameters);
    CreateMembers();
}

void CTrvSensorDvl::CreateMembers() {
    leverArm = std::make_unique<CLeverArm>();
    misalignment = std::make_unique<CMisalignment>();
    currentModeling = std::make_unique<CTrvCurrentModeling>();
    speedBias = std::make_unique<CTrvSpeedBias>();
    for (auto* instruction : {&bottomTrackStdDevInstruction, &waterTrackStdDevInstruction}) {
        *instruction = std::make_unique<CTrvDvlStdDevInstruction>();
        (*instruction)->isDefault = true;
        (*instruction)->sensor = this;
    }
}

void CTrvSensorDvl::Attach(CTrvSimulationParameters& parameters) {
    CTrvSensor::Attach(parameters);
    bottomTrackStdDevInstruction->sensor = this;
    waterTrackStdDevInstruction->sensor = this;
}

void CTrvSensorDvl::Serialize(CArchive& archive) {
    CSchema schema(archive, 3);
    if (archive.IsLoading()) CreateMembers();
    CTrvSensor::Serialize(archive);
    RequiredMember(schema, leverArm);
    RequiredMember(schema, misalignment);
    schema.Field(scaleFactor);
    RequiredMember(schema, currentModeling);
    RequiredMember(schema.Since(2), speedBias);
    RequiredMember(schema.Since(3), bottomTrackStdDevInstruction);
    RequiredMember(schema.Since(3), waterTrackStdDevInstruction);
}

bool CTrvSensorDvl::ReadFromIniFile(const CIniFile& file, std::string_view section) {
    return CTrvSensor::ReadFromIniFile(file, section) &&
           ReadCurrentModeling(*currentModeling, file.GetString("System", "ModeleCourrant", "0,0"));
}

bool CTrvSensorDvl::ReadFromWebConfiguration(const CInsWebConfigurationFile& file, int sensorIndex) {
    file.GetFloatField("DVLTAM", 0, currentModeling->time);
    file.GetFloatField("DVLTAM", 1, currentModeling->sigma);
    return CTrvSensor::ReadFromWebConfiguration(file, sensorIndex);
}

// --- EM log, depth sensor, LBL

template <class Self, ESensorKind Kind, class StdDev>
void TTrvScalarSensor<Self, Kind, StdDev>::Serialize(CArchive& archive) {
    CSchema schema(archive, 2);
    if (archive.IsLoading()) this->CreateMembers();
    CTrvSensor::Serialize(archive);
    RequiredMember(schema, this->leverArm);
    RequiredMember(schema.Since(2), this->stdDevInstruction);
}

template class TTrvScalarSensor<CTrvSensorEMLog, ESensorKind::emLog, CTrvEMLogStdDevInstruction>;
template class TTrvScalarSensor<CTrvSensorDepth, ESensorKind::depth, CTrvDepthStdDevInstruction>;
template class TTrvScalarSensor<CTrvSensorLbl, ESensorKind::lbl, CTrvLblStdDevInstruction>;

// --- USBL

CTrvHorizontalFilteringInstruction* CTrvSensorUsbl::AddFilteringInstruction() {
    auto* added = AppendOwned(filteringInstructions, std::make_unique<CTrvHorizontalFilteringInstruction>());
    added->sensor = this;
    return added;
}

bool CTrvSensorUsbl::RemoveFilteringInstruction(const CTrvHorizontalFilteringInstruction* instruction) {
    return EraseOwned(filteringInstructions, instruction);
}

void CTrvSensorUsbl::Attach(CTrvSimulationParameters& parameters) {
    CTrvSensor::Attach(parameters);
    for (const auto& instruction : filteringInstructions) instruction->sensor = this;
}

void CTrvSensorUsbl::Serialize(CArchive& archive) {
    CSchema schema(archive, 3);
    if (archive.IsLoading()) {
        CreateMembers();
        filteringInstructions.clear();
    }
    CTrvSensor::Serialize(archive);
    schema.Field(reserved);
    RequiredMember(schema, leverArm);
    schema.Field(transponderCode);
    RequiredMember(schema.Since(2), stdDevInstruction);
    schema.Since(3).OwnedList(filteringInstructions);
}

bool CTrvSensorUsbl::ReadFromIniFile(const CIniFile& file, std::string_view section) {
    if (!CTrvSensor::ReadFromIniFile(file, section)) return false;
    transponderCode = file.GetString(section, "TpCode");
    return true;
}

bool CTrvSensorUsbl::ReadFromWebConfiguration(const CInsWebConfigurationFile& file, int sensorIndex) {
    if (const std::string_view code = file.GetTransponder(sensorIndex); !code.empty()) transponderCode = code;
    return CTrvSensor::ReadFromWebConfiguration(file, sensorIndex);
}

// --- Odometer

void CTrvSensorOdometer::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvSensor::Serialize(archive);
    RequiredMember(schema, leverArm);
    RequiredMember(schema, misalignment);
    schema.Field(scaleFactor);
    RequiredMember(schema, stdDevInstruction);
}

// --- Event marker

CTrvSensorEventMarker::CTrvSensorEventMarker(CTrvSimulationParameters* parameters) { Create(parameters); }

void CTrvSensorEventMarker::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvSensor::Serialize(archive);
    schema.Field(eventId);
}

// --- Gyro-stabilised mount

CTrvSensorPlatformOrientation::CTrvSensorPlatformOrientation(CTrvSimulationParameters* parameters)
    : insLeverArm(std::make_unique<CLeverArm>()),
      vehicleLeverArm(std::make_unique<CLeverArm>()),
      insMisalignment(std::make_unique<CMisalignment>()),
      vehicleMisalignment(std::make_unique<CMisalignment>()) {
    Create(parameters);
}

void CTrvSensorPlatformOrientation::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvSensor::Serialize(archive);
    RequiredMember(schema, insLeverArm);
    RequiredMember(schema, insMisalignment);
    RequiredMember(schema, vehicleLeverArm);
    RequiredMember(schema, vehicleMisalignment);
}

bool CTrvSensorPlatformOrientation::ReadFromIniFile(const CIniFile& file, std::string_view section) {
    return ReadLeverArm(*insLeverArm, file.GetString(section, "INSLvArm")) &&
           ReadLeverArm(*vehicleLeverArm, file.GetString(section, "PlatformLvArm")) &&
           ReadTriple(*insMisalignment, file.GetString(section, "INSMesalign")) &&
           ReadTriple(*vehicleMisalignment, file.GetString(section, "PlatformMesalign"));
}

} // namespace Metier_Tarvel
