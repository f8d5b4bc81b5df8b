// What a single-document application offers any document: its path, the modified mark, the views, the
// questions of New, Open, Save and Close, and the way of a user action. GUI thread only.
#pragma once

#include "document/document_host.h"
#include "document/hints.h"
#include "document/user_action.h"
#include "foundation/object.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace Application_Tarvel {

// Shows the document's content. Registers itself with AddView and must remove itself before it goes.
class IDocumentView {
  public:
    virtual ~IDocumentView() = default;
    // `object` may have been destroyed already when the hint reports a removal: compare it by identity only.
    virtual void OnUpdate(EHint hint, const Outils_Objets::CObject* object) = 0;
};

class CDocumentEx {
  public:
    // `host` must outlive the document.
    explicit CDocumentEx(IDocumentHost& host) : m_host(host) {}
    virtual ~CDocumentEx() = default;
    CDocumentEx(const CDocumentEx&) = delete;
    CDocumentEx& operator=(const CDocumentEx&) = delete;

    // Empty for a document that was never saved.
    const std::filesystem::path& GetPathName() const { return m_path; }
    bool IsModified() const { return m_modified; }
    void SetModifiedFlag(bool modified) { m_modified = modified; }

    void AddView(IDocumentView* view) { m_views.push_back(view); }
    void RemoveView(IDocumentView* view) { std::erase(m_views, view); }
    // Informs every view but the sender, before it returns.
    void UpdateAllViews(IDocumentView* sender, EHint hint, const Outils_Objets::CObject* object = nullptr);

    // Runs the action. An action that cannot be undone ends the undo history.
    bool DoAction(std::unique_ptr<CUserAction> action);

    // The user's commands. Each first offers to save what is modified; false when the user cancelled or it
    // failed.
    bool NewDocument(); // an empty document
    bool OpenDocument(const std::filesystem::path& path);
    bool Save(); // under a name to be asked for, if it has none
    bool SaveAs();
    bool SaveCopyAs(); // path and modified mark stay
    bool CloseDocument();

    // Saves under `path`, or asks for a name when that is empty. With `replace` the document takes the new
    // path; without, it keeps path and modified mark.
    bool DoSave(std::filesystem::path path, bool replace);
    // Offers to save a modified document; false when the user cancelled or the save failed.
    bool SaveModified();

    virtual bool OnNewDocument();
    virtual bool OnOpenDocument(const std::filesystem::path& path);
    virtual bool OnSaveDocument(const std::filesystem::path& path);
    // Writes a copy; changes nothing of the document.
    virtual bool OnSaveCopy(const std::filesystem::path& path);
    // The user does not want to keep the changes. The document may stay open for all that.
    virtual void DiscardChanges() {}
    virtual void DeleteContents();
    virtual bool CanCloseFrame();

  protected:
    // Replaces the document's content by the file's; throws CArchiveException, and the content may then be
    // anything.
    virtual void LoadFrom(const std::filesystem::path& path) = 0;
    // Writes the content to the file as one step; false on failure, and an existing file is as it was.
    virtual bool StoreTo(const std::filesystem::path& path) = 0;

    // Opens what `source` holds as the document of `path`, which is empty for one that was never saved. Asks
    // nothing about the present one.
    bool OpenFrom(const std::filesystem::path& source, const std::filesystem::path& path);
    // Says that the file was not saved, and why if that is known; returns false.
    bool ReportFailedSave(const std::filesystem::path& path);

    IDocumentHost& GetHost() const { return m_host; }
    void SetPathName(std::filesystem::path path) { m_path = std::move(path); }

  private:
    IDocumentHost& m_host;
    std::filesystem::path m_path;
    bool m_modified = false;
    std::vector<IDocumentView*> m_views;                 // Not owned.
    std::vector<std::unique_ptr<CUserAction>> m_actions; // kept for undo
};

} // namespace Application_Tarvel
