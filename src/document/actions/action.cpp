#include "document/actions/action.h"

#include "document/document.h"
#include "foundation/texts.h"

namespace Application_Tarvel {

using Outils_Texte::EText;

bool CTrvTableAction::Do() {
    CTrvProject* project = m_document.GetProject();
    return project && Perform(*project);
}

bool CTrvTableAction::Changed(const CObject* object) {
    m_document.ProjectChanged(m_row.hint, object);
    return true;
}

bool CTrvTableAction::Refuse(EText text) {
    if (text != EText::none)
        m_document.GetHost().ShowMessage(std::string(Outils_Texte::GetText(text)), EButtons::ok,
                                         EIcon::exclamation);
    return false;
}

} // namespace Application_Tarvel
