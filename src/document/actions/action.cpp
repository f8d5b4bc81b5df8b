#include "document/actions/action.h"

#include "document/document.h"
#include "foundation/texts.h"

namespace Application_Tarvel {

bool CTrvTableAction::Do() {
    CTrvProject* project = m_document.GetProject();
    return project && Perform(*project);
}

bool CTrvTableAction::Changed(const CObject* object) {
    m_document.ProjectChanged(m_row.hint, object);
    return true;
}

bool CTrvTableAction::Refuse(int text) {
    if (text != 0)
        m_document.GetHost().ShowMessage(std::string(Outils_Texte::GetText(text)), EButtons::ok,
                                         EIcon::exclamation);
    return false;
}

} // namespace Application_Tarvel
