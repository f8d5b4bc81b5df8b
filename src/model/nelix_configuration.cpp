#include "model/nelix_configuration.h"

#include "foundation/numbers.h"
#include "foundation/texts.h"
#include "model/configuration_values.h"
#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"
#include "model/loading.h"

#include <cstdio>

namespace Metier_Tarvel {

using Outils_Texte::EText;

using Outils_Objets::CSchema;

namespace {

constexpr std::string_view kZero = "0.0,0.0,0.0";

struct SEquipment {
    std::int32_t code;
    std::int32_t housing;
    std::int32_t fog;
    std::int32_t accelerometers;
    std::int32_t saturation;
    std::int32_t algorithm;
};

constexpr SEquipment kEquipments[] = {
    {1, 2, 1, 1, 2, 1},  {2, 2, 2, 1, 2, 1},  {3, 2, 2, 1, 2, 1},  {4, 1, 1, 1, 2, 1},  {5, 2, 2, 1, 2, 1},
    {6, 5, 3, 3, 2, 1},  {7, 1, 1, 1, 2, 1},  {8, 2, 2, 1, 2, 1},  {9, 2, 2, 1, 2, 1},  {10, 2, 2, 1, 2, 1},
    {11, 2, 2, 1, 2, 1}, {12, 1, 1, 1, 2, 1}, {13, 6, 2, 1, 1, 1}, {14, 6, 2, 1, 3, 1}, {15, 1, 1, 1, 1, 1},
    {16, 1, 1, 1, 2, 1}, {17, 7, 4, 6, 2, 1}, {18, 8, 4, 6, 3, 2}, {19, 8, 4, 6, 2, 2},
};
static_assert(std::size(kEquipments) == 19);

// The words of each field: value 1 has the first text.
struct STypeWords {
    std::int32_t CTrvNelixType::*field;
    EText firstText;
    int count;
};

constexpr STypeWords kTypeWords[CTrvNelixType::kFieldCount] = {
    {&CTrvNelixType::equipment, EText::equipmentInsModel1, 19},
    {&CTrvNelixType::housing, EText::housing1, 8},
    {&CTrvNelixType::fog, EText::fog90, 4},
    {&CTrvNelixType::accelerometers, EText::accelerometerModel1, 8},
    {&CTrvNelixType::saturation, EText::saturationLand, 3},
    {&CTrvNelixType::algorithm, EText::nelixAlgorithmIns, 3},
};
constexpr EText kTextUnknown = EText::unknownCode;

} // namespace

void CTrvNelixType::SetFromEquipment(std::int32_t equipmentCode) {
    SEquipment row{};
    for (const SEquipment& candidate : kEquipments)
        if (candidate.code == equipmentCode) row = candidate;
    equipment = row.code;
    housing = row.housing;
    fog = row.fog;
    accelerometers = row.accelerometers;
    saturation = row.saturation;
    algorithm = row.algorithm;
}

std::int32_t CTrvNelixType::GetField(EField field) const { return this->*kTypeWords[field].field; }

std::string CTrvNelixType::GetFieldText(EField field) const {
    const std::int32_t value = GetField(field);
    const STypeWords& words = kTypeWords[field];
    if (value >= 1 && value <= words.count)
        return std::string(Outils_Texte::GetText(words.firstText + (value - 1)));
    char code[16];
    std::snprintf(code, sizeof code, "%04X", static_cast<unsigned>(value));
    return Outils_Texte::FormatText(kTextUnknown, {code});
}

void CTrvNelixType::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvObject::Serialize(archive);
    for (const STypeWords& words : kTypeWords) schema.Field(this->*words.field);
}

CTrvNelixConfiguration::CTrvNelixConfiguration(CTrvSimulationParameters* parameters) : owner(parameters) {
    CreateMembers();
}

void CTrvNelixConfiguration::CreateMembers() {
    for (auto* misalignment : {&factoryMisalignment, &fineMisalignment, &userMisalignment})
        *misalignment = std::make_unique<CMisalignment>();
    for (auto* leverArm :
         {&primaryLeverArm, &secondaryLeverArmA, &secondaryLeverArmB, &secondaryLeverArmC, &cogLeverArm})
        *leverArm = std::make_unique<CLeverArm>();
    roughMisalignment = 0;
    currentModeling = std::make_unique<CTrvCurrentModeling>();
    type = std::make_unique<CTrvNelixType>();
}

void CTrvNelixConfiguration::Serialize(CArchive& archive) {
    CSchema schema(archive, 4);
    if (archive.IsLoading()) CreateMembers();
    CTrvObject::Serialize(archive);
    RequiredMember(schema, factoryMisalignment);
    schema.Since(2).Field(roughMisalignment);
    RequiredMember(schema, fineMisalignment);
    RequiredMember(schema.Since(4), userMisalignment);
    RequiredMember(schema, primaryLeverArm);
    RequiredMember(schema, secondaryLeverArmA);
    RequiredMember(schema, secondaryLeverArmB);
    RequiredMember(schema, secondaryLeverArmC);
    RequiredMember(schema, currentModeling);
    RequiredMember(schema, type);
    RequiredMember(schema.Since(3), cogLeverArm);
}

bool CTrvNelixConfiguration::ReadIni(const CIniFile& file) {
    if (!ReadTriple(*factoryMisalignment, file.GetString("Usine", "CRT", kZero)) ||
        !ReadTriple(*fineMisalignment, file.GetString("System", "bias")) ||
        !ReadTriple(*primaryLeverArm, file.GetString("System", "PriLvArm", kZero)) ||
        !ReadTriple(*secondaryLeverArmA, file.GetString("System", "SecLvArmA", kZero)) ||
        !ReadTriple(*secondaryLeverArmB, file.GetString("System", "SecLvArmB", kZero)) ||
        !ReadTriple(*secondaryLeverArmC, file.GetString("System", "SecLvArmC", kZero)))
        return false;
    const auto rough = Outils_Texte::ParseInt(file.GetString("System", "Axisor"));
    if (!rough) return false;
    roughMisalignment = *rough;
    type->SetFromEquipment(file.GetInt("Info", "Type"));
    return ReadTriple(*cogLeverArm, file.GetString("Cog", "LvArm", kZero));
}

bool CTrvNelixConfiguration::ReadWebConfiguration(const CInsWebConfigurationFile& file) {
    const std::string_view leverArms = file.GetList("LVA");
    std::int32_t rough = 0;
    if (!ReadTriple(*fineMisalignment, file.GetList("MesaCrt")) ||
        !ReadTriple(*primaryLeverArm, leverArms, 0) || !ReadTriple(*secondaryLeverArmA, leverArms, 3) ||
        !ReadTriple(*secondaryLeverArmB, leverArms, 6) || !ReadTriple(*secondaryLeverArmC, leverArms, 9) ||
        !file.GetIntegerField("MesaOrient", 0, rough))
        return false;
    if (rough >= 0 && rough < kRoughMisalignmentCount) roughMisalignment = rough;
    return ReadTriple(*cogLeverArm, file.GetList("COG"));
}

} // namespace Metier_Tarvel
