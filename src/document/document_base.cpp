#include "document/document_base.h"

#include "foundation/archive.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>

namespace Application_Tarvel {

using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

void CDocumentEx::UpdateAllViews(IDocumentView* sender, EHint hint, const Outils_Objets::CObject* object) {
    // A view may add or remove views while it is told, so the list is a copy, and who is gone is left out.
    const auto views = m_views;
    for (IDocumentView* view : views)
        if (view != sender && std::find(m_views.begin(), m_views.end(), view) != m_views.end())
            view->OnUpdate(hint, object);
}

bool CDocumentEx::DoAction(std::unique_ptr<CUserAction> action) {
    if (!action->Do()) return false;
    if (action->CanUndo())
        m_actions.push_back(std::move(action));
    else
        m_actions.clear();
    return true;
}

bool CDocumentEx::NewDocument() { return SaveModified() && OnNewDocument(); }

bool CDocumentEx::OpenDocument(const std::filesystem::path& path) {
    if (!SaveModified()) return false;
    const auto absolute = Outils_Fichiers::ToAbsolute(path);
    const bool opened = OnOpenDocument(absolute);
    SetPathName(opened ? absolute : std::filesystem::path());
    // A document that could not be opened is empty: there is nothing that a later question could save.
    if (!opened) SetModifiedFlag(false);
    UpdateAllViews(nullptr, hintRefresh);
    return opened;
}

bool CDocumentEx::Save() { return DoSave(m_path, true); }

bool CDocumentEx::SaveAs() { return DoSave({}, true); }

bool CDocumentEx::SaveCopyAs() { return DoSave({}, false); }

bool CDocumentEx::CloseDocument() {
    if (!SaveModified()) return false;
    DeleteContents();
    SetPathName({});
    SetModifiedFlag(false);
    UpdateAllViews(nullptr, hintRefresh);
    return true;
}

bool CDocumentEx::DoSave(std::filesystem::path path, bool replace) {
    if (path.empty()) {
        const auto asked = m_host.AskPath({EPathKind::save, EText::saveTitle, EText::projectFilter,
                                           GetText(EText::projectExtension).substr(1), m_path});
        if (asked.empty()) return false;
        path = asked.front();
    }
    const bool modified = m_modified;
    if (!OnSaveDocument(path)) return false;
    if (replace)
        SetPathName(std::move(path));
    else
        m_modified = modified;
    return true;
}

bool CDocumentEx::SaveModified() {
    if (!m_modified) return true;
    const std::string name =
        m_path.empty() ? std::string(GetText(EText::untitled)) : ToText(m_path.filename());
    switch (m_host.ShowMessage(FormatText(EText::saveChanges, {name}), EButtons::yesNoCancel,
                               EIcon::exclamation)) {
    case EAnswer::yes: return Save();
    case EAnswer::no: return true;
    default: return false;
    }
}

bool CDocumentEx::OnNewDocument() {
    DeleteContents();
    SetPathName({});
    SetModifiedFlag(false);
    return true;
}

bool CDocumentEx::OnOpenDocument(const std::filesystem::path& path) {
    DeleteContents();
    SetModifiedFlag(true);
    try {
        LoadFrom(path);
    } catch (const Outils_Objets::CArchiveException& exception) {
        DeleteContents();
        const bool tooNew = exception.GetCause() == Outils_Objets::CArchiveException::badSchema;
        m_host.ShowMessage(FormatText(tooNew ? EText::projectTooNew : EText::failedToLoad, {ToText(path)}),
                           EButtons::ok, EIcon::exclamation);
        return false;
    }
    SetModifiedFlag(false);
    return true;
}

bool CDocumentEx::OnSaveDocument(const std::filesystem::path& path) {
    if (!StoreTo(path)) {
        m_host.AppendOutputText(FormatText(EText::projectNotSaved, {ToText(path)}));
        m_host.ShowMessage(FormatText(EText::failedToSave, {ToText(path)}), EButtons::ok, EIcon::exclamation);
        return false;
    }
    SetModifiedFlag(false);
    return true;
}

void CDocumentEx::DeleteContents() { m_actions.clear(); }

bool CDocumentEx::CanCloseFrame() { return SaveModified(); }

} // namespace Application_Tarvel
