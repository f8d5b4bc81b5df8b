#include "document/edits.h"

namespace Application_Tarvel {

using Metier_Tarvel_Proprietes::CPropertyValue;
using Metier_Tarvel_Proprietes::SProperty;

namespace {

const SEditRow* FindEditOf(const CObject& target, const CObject& owner, const SProperty& property) {
    return property.set ? FindEdit(target, property.address(owner)) : nullptr;
}

// Reports the change of one property by the row of the edit that it is a part of.
class CTrvActChangeProperty final : public CTrvUserAction {
  public:
    CTrvActChangeProperty(CTrvDocument& document, const SEditRow& row, CObject& target, CObject& owner,
                          const SProperty& property, const CPropertyValue& value)
        : CTrvUserAction(document),
          m_row(row),
          m_target(target),
          m_owner(owner),
          m_property(property),
          m_value(value) {}

    bool Do() override {
        CTrvProject* project = FindProject();
        if (!project) return false;
        m_property.set(m_owner, m_value);
        return CEdit(m_document, *project, m_row).Changed(&m_target);
    }

  private:
    const SEditRow& m_row;
    CObject& m_target;
    CObject& m_owner;
    const SProperty& m_property;
    CPropertyValue m_value;
};

} // namespace

bool CTrvDocumentEdits::CanChange(const CObject& target, const CObject& owner, const SProperty& property) {
    return FindEditOf(target, owner, property) != nullptr;
}

bool CTrvDocumentEdits::Change(CObject& target, CObject& owner, const SProperty& property,
                               const CPropertyValue& value) {
    const SEditRow* row = FindEditOf(target, owner, property);
    return row && m_document.DoAction(std::make_unique<CTrvActChangeProperty>(m_document, *row, target, owner,
                                                                              property, value));
}

} // namespace Application_Tarvel
