#include "model/sensor.h"

#include "foundation/serialize.h"
#include "foundation/texts.h"
#include "model/configuration_values.h"
#include "model/data_file.h"
#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"
#include "model/simulation_parameters.h"

namespace Metier_Tarvel {

using Outils_Texte::EText;

using Outils_Objets::CSchema;

namespace {

constexpr double kPercent = 100.0;

// Heading, roll, pitch and the scale factor in percent.
bool ReadCalibration(CTrvSensor& sensor, std::string_view list) {
    const auto values = GetListNumbers<4>(list);
    if (!values) return false;
    Assign(*sensor.GetMisalignment(), {(*values)[0], (*values)[1], (*values)[2]});
    *sensor.GetScaleFactor() = (*values)[3] / kPercent;
    return true;
}

template <class Sensor>
std::unique_ptr<CTrvSensor> Make(CTrvSimulationParameters* owner) {
    return std::make_unique<Sensor>(owner);
}

constexpr EText kGroupHorizontal = EText::rejectionsHorizontal;
constexpr EText kGroupBottomSpeed = EText::rejectionsBottomSpeed;
constexpr EText kGroupWatermassSpeed = EText::rejectionsWatermassSpeed;
constexpr EText kGroup = EText::rejections;

template <class Sensor>
constexpr SSensorKind Row(ESensorKind kind, EText label, int maximum, std::uint16_t channelType,
                          std::array<EText, 2> groups) {
    return {kind, Sensor::kClassName, label, maximum, channelType, groups, Make<Sensor>};
}

constexpr SSensorKind kKinds[] = {
    Row<CTrvSensorGps>(ESensorKind::gps, EText::gps, 3, 3, {kGroupHorizontal}),
    Row<CTrvSensorDvl>(ESensorKind::dvl, EText::dvl, 1, 1, {kGroupBottomSpeed, kGroupWatermassSpeed}),
    Row<CTrvSensorEMLog>(ESensorKind::emLog, EText::emLog, 1, 2, {kGroup}),
    Row<CTrvSensorDepth>(ESensorKind::depth, EText::depth, 1, 4, {kGroup}),
    Row<CTrvSensorUsbl>(ESensorKind::usbl, EText::usbl, 3, 5, {kGroup}),
    Row<CTrvSensorLbl>(ESensorKind::lbl, EText::lbl, 1, 6, {kGroup}),
    Row<CTrvSensorOdometer>(ESensorKind::odometer, EText::odometer, 1, 8, {kGroup}),
    Row<CTrvSensorEventMarker>(ESensorKind::eventMarker, EText::eventMarker, 4, 9, {}),
    Row<CTrvSensorPlatformOrientation>(ESensorKind::platformOrientation, EText::gyroStabilizedMount, 1, 16,
                                       {}),
};
static_assert(std::size(kKinds) == kSensorKindCount);

} // namespace

std::span<const SSensorKind> GetSensorKinds() { return kKinds; }

const SSensorKind& GetSensorKind(ESensorKind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

const SSensorKind* FindSensorKind(std::string_view className) {
    for (const SSensorKind& kind : kKinds)
        if (kind.className == className) return &kind;
    return nullptr;
}

const SSensorKind* FindSensorKindOfChannel(std::uint16_t channelType) {
    for (const SSensorKind& kind : kKinds)
        if (kind.channelType == channelType) return &kind;
    return nullptr;
}

void CTrvSensor::Create(CTrvSimulationParameters* parameters) {
    owner = parameters;
    for (const EText name : GetKind().rejectionGroups)
        if (name != EText::none)
            rejectionGroups.push_back(
                std::make_unique<CTrvRejectionGroup>(*this, std::string(Outils_Texte::GetText(name))));
}

void CTrvSensor::Attach(CTrvSimulationParameters& parameters) {
    owner = &parameters;
    for (const auto& group : rejectionGroups) {
        group->sensor = this;
        for (const auto& instruction : group->instructions) instruction->group = group.get();
    }
}

void CTrvSensor::Serialize(CArchive& archive) {
    CSchema schema(archive, 2);
    if (archive.IsLoading()) {
        rejectionGroups.clear();
        synchronizedOutput = false;
    }
    CTrvObject::Serialize(archive);
    schema.Reference(owner);
    schema.Reference(channel);
    schema.Field(timeOffset);
    schema.OwnedList(rejectionGroups);
    schema.Since(2).Field(synchronizedOutput);
}

bool CTrvSensor::ReadFromIniFile(const CIniFile& file, std::string_view section) {
    if (CLeverArm* leverArm = GetLeverArm();
        leverArm && !ReadLeverArm(*leverArm, file.GetString(section, "LvArm")))
        return false;
    return !GetMisalignment() || ReadCalibration(*this, file.GetString(section, "Mesalign"));
}

bool CTrvSensor::ReadFromWebConfiguration(const CInsWebConfigurationFile& file, int sensorIndex) {
    if (CLeverArm* leverArm = GetLeverArm()) ReadTriple(*leverArm, file.GetLeverArm(sensorIndex));
    if (GetMisalignment()) ReadCalibration(*this, file.GetCalibration(sensorIndex));
    return true;
}

} // namespace Metier_Tarvel
