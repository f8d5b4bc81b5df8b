#include "document/user_action.h"

#include "document/document.h"

namespace Application_Tarvel {

CTrvProject* CTrvUserAction::FindProject() const { return m_document.GetProject(); }

} // namespace Application_Tarvel
