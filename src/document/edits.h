// The one way in which tree items, views and commands change the model: each edit is a row of
// document/actions/rows.h. UI thread only.
//
//     document.GetEdits().Do(kChangeZupt, zupt, {mode, begin, end});
//
//     const SReading reading = Read(row, context, dvl, "2.5 m/s");
//     if (reading.value) document.GetEdits().Change(dvl, *dvl.speedBias, row, *reading.value);
//
// Each is true when the edit was made: the document is then modified and the views know. Without a project it
// does nothing and says nothing; after a refusal, which a message box shows, all is as it was.
#pragma once

#include "document/actions/rows.h"
#include "document/document.h"

#include <memory>
#include <utility>

namespace Application_Tarvel {

class CTrvDocumentEdits {
  public:
    // `document` must outlive the object.
    explicit CTrvDocumentEdits(CTrvDocument& document) : m_document(document) {}

    template <class... Arguments>
    bool Do(const TEditRow<Arguments...>& row, std::type_identity_t<Arguments>... arguments) {
        return m_document.DoAction(std::make_unique<TEditAction<Arguments...>>(
            m_document, row, std::forward<Arguments>(arguments)...));
    }
    bool AddSensor(ESensorKind kind) { return Do(*Edits::kAddSensor[static_cast<std::size_t>(kind)]); }

    // Whether Change can write the property of `owner`, an object that is `target` or belongs to it.
    static bool CanChange(const CObject& target, const CObject& owner,
                          const Metier_Tarvel_Proprietes::SProperty& property);
    // Writes one property by the edit that has it among its values; the views hear of `target`. False, and
    // nothing happens, when no edit has it. REQUIRES: a value that Read gave for the property.
    bool Change(CObject& target, CObject& owner, const Metier_Tarvel_Proprietes::SProperty& property,
                const Metier_Tarvel_Proprietes::CPropertyValue& value);

  private:
    CTrvDocument& m_document;
};

} // namespace Application_Tarvel
