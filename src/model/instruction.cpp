#include "model/instruction.h"

#include "model/loading.h"
#include "model/sensors.h"

namespace Metier_Tarvel {

using Outils_Objets::CSchema;

void CTrvPeriod::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvObject::Serialize(archive);
    schema.Field(begin);
    schema.Field(end);
}

void CTrvOutputRate::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvPeriod::Serialize(archive);
    schema.Field(value);
}

void CTrvModePeriod::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvPeriod::Serialize(archive);
    schema.Field(mode);
}

void CTrvRejectionInstruction::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvPeriod::Serialize(archive);
    schema.Reference(group);
    schema.Field(mode);
}

CTrvRejectionInstruction* CTrvRejectionGroup::AddInstruction() {
    auto* added = AppendOwned(instructions, std::make_unique<CTrvRejectionInstruction>());
    added->group = this;
    return added;
}

bool CTrvRejectionGroup::RemoveInstruction(const CTrvRejectionInstruction* instruction) {
    return EraseOwned(instructions, instruction);
}

void CTrvRejectionGroup::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvObject::Serialize(archive);
    schema.Reference(sensor);
    schema.Field(name);
    schema.OwnedList(instructions);
}

void CTrvHorizontalFilteringInstruction::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvPeriod::Serialize(archive);
    schema.Reference(sensor);
    schema.Field(threshold);
}

} // namespace Metier_Tarvel
