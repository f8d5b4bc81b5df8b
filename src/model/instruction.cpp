#include "model/instruction.h"

#include "model/loading.h"
#include "model/sensors.h"

namespace Metier_Tarvel {

using Outils_Objets::SerializeUnchanged;

void CTrvRejectionInstruction::Serialize(CArchive& archive) {
    SerializeUnchanged<CTrvPeriod>(archive, *this, group, mode);
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
    SerializeUnchanged<CTrvObject>(archive, *this, sensor, name, instructions);
}

void CTrvHorizontalFilteringInstruction::Serialize(CArchive& archive) {
    SerializeUnchanged<CTrvPeriod>(archive, *this, sensor, threshold);
}

} // namespace Metier_Tarvel
