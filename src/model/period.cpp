#include "model/period.h"

#include "model/loading.h"

namespace Metier_Tarvel {

using Outils_Objets::SerializeUnchanged;

void CTrvPeriod::Serialize(CArchive& archive) { SerializeUnchanged<CTrvObject>(archive, *this, begin, end); }

void CTrvOutputRate::Serialize(CArchive& archive) { SerializeUnchanged<CTrvPeriod>(archive, *this, value); }

void CTrvModePeriod::Serialize(CArchive& archive) { SerializeUnchanged<CTrvPeriod>(archive, *this, mode); }

} // namespace Metier_Tarvel
