// The edits of graphs and instant values that are more than values.
#pragma once

#include "document/actions/action.h"

namespace Application_Tarvel {

// The makers of the additions; null when the field cannot be shown there, or is of no file.
namespace Creation {
Metier_Tarvel_Graphics::CTrv1DGraph* AddMeasureGraph(CTrvProject& project,
                                                     const Metier_Tarvel_DataModel::CTrvMeasureDef& measure);
Metier_Tarvel_Graphics::CTrv1DGraph* AddEnumGraph(CTrvProject& project,
                                                  const Metier_Tarvel_DataModel::CTrvEnumDef& enumeration);
// A curve only joins curves of its kind.
Metier_Tarvel_Graphics::CTrv1DCurve* AddCurve(CTrvProject& project,
                                              Metier_Tarvel_Graphics::CTrv1DGraphMeasure& graph,
                                              const Metier_Tarvel_DataModel::CTrvMeasureDef& measure);
Metier_Tarvel_InstantValues::CTrvInstantValuesMeasure*
AddInstantMeasure(CTrvProject& project, const Metier_Tarvel_DataModel::CTrvMeasureDef& measure);
Metier_Tarvel_InstantValues::CTrvInstantValuesEnum*
AddInstantEnum(CTrvProject& project, const Metier_Tarvel_DataModel::CTrvEnumDef& enumeration);
} // namespace Creation

// Removes a curve, and its graph when it was the last one.
class CTrvActRemove1DCurve final : public CTrvTableAction {
  public:
    CTrvActRemove1DCurve(CTrvDocument& document, const Metier_Tarvel_Graphics::CTrv1DCurve& curve)
        : CTrvTableAction(document, EAction::remove1DCurve), m_curve(curve) {}

  private:
    bool Perform(CTrvProject& project) override;

    const Metier_Tarvel_Graphics::CTrv1DCurve& m_curve;
};

} // namespace Application_Tarvel
