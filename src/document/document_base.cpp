#include "document/document_base.h"

#include "foundation/archive.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>

namespace Application_Tarvel {

using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

// Why no file can be made in the folder; none if that is not known.
EText FindFaultOf(const std::filesystem::path& folder) {
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) return EText::folderMissing;
    return Outils_Fichiers::CanWriteInto(folder) ? EText::none : EText::folderReadOnly;
}

} // namespace

void CDocumentEx::UpdateAllViews(IDocumentView* sender, EHint hint, const Outils_Objets::CObject* object) {
    // A view may add or remove views meanwhile, so the list is a copy, and removed views are skipped.
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
    const auto absolute = Outils_Fichiers::ToAbsolute(path);
    return SaveModified() && OpenFrom(absolute, absolute);
}

bool CDocumentEx::OpenFrom(const std::filesystem::path& source, const std::filesystem::path& path) {
    const bool opened = OnOpenDocument(source);
    SetPathName(opened ? path : std::filesystem::path());
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
    if (!replace) return OnSaveCopy(path);
    if (!OnSaveDocument(path)) return false;
    SetPathName(std::move(path));
    return true;
}

bool CDocumentEx::SaveModified() {
    if (!m_modified) return true;
    const std::string name =
        m_path.empty() ? std::string(GetText(EText::untitled)) : ToText(m_path.filename());
    switch (m_host.ShowMessage(FormatText(EText::saveChanges, {name}), EButtons::yesNoCancel,
                               EIcon::exclamation)) {
    case EAnswer::yes: return Save();
    case EAnswer::no: DiscardChanges(); return true;
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
        std::error_code error;
        const EText damaged =
            std::filesystem::is_regular_file(path, error) ? EText::projectDamaged : EText::failedToLoad;
        m_host.ShowMessage(FormatText(tooNew ? EText::projectTooNew : damaged, {ToText(path)}), EButtons::ok,
                           EIcon::exclamation);
        return false;
    }
    SetModifiedFlag(false);
    return true;
}

bool CDocumentEx::OnSaveDocument(const std::filesystem::path& path) {
    if (!StoreTo(path)) return ReportFailedSave(path);
    SetModifiedFlag(false);
    return true;
}

bool CDocumentEx::OnSaveCopy(const std::filesystem::path& path) {
    return StoreTo(path) || ReportFailedSave(path);
}

bool CDocumentEx::ReportFailedSave(const std::filesystem::path& path) {
    std::string message = FormatText(EText::failedToSave, {ToText(path)});
    if (const EText reason = FindFaultOf(path.parent_path()); reason != EText::none)
        message += "\n\n" + FormatText(reason, {ToText(path.parent_path())});
    m_host.AppendOutputText(
        {FormatText(EText::projectNotSaved, {ToText(path)}), Communication_Interfaces::levelError});
    m_host.ShowMessage(message, EButtons::ok, EIcon::exclamation);
    return false;
}

void CDocumentEx::DeleteContents() { m_actions.clear(); }

bool CDocumentEx::CanCloseFrame() { return SaveModified(); }

} // namespace Application_Tarvel
