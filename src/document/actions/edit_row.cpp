#include "document/actions/edit_row.h"

#include "document/document.h"
#include "foundation/texts.h"

namespace Application_Tarvel {

bool CEdit::Changed(const CObject* object) const {
    m_document.ProjectChanged(m_row.hint, object);
    return true;
}

bool CEdit::Refuse(EText text) const {
    if (text != EText::none)
        m_document.GetHost().ShowMessage(std::string(Outils_Texte::GetText(text)), EButtons::ok,
                                         EIcon::exclamation);
    return false;
}

} // namespace Application_Tarvel
