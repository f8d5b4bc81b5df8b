// One edit of the project as an object. It holds plain pointers to model objects and copies of small values.
#pragma once

namespace Metier_Tarvel {
class CTrvProject;
}

namespace Application_Tarvel {

class CTrvDocument;

class CUserAction {
  public:
    virtual ~CUserAction() = default;
    // Changes the model, marks the document modified and informs the views; false leaves everything as it
    // was.
    virtual bool Do() = 0;
    virtual bool Undo() { return true; }
    virtual bool CanUndo() const { return false; }
};

class CTrvUserAction : public CUserAction {
  public:
    // `document` must outlive the object.
    explicit CTrvUserAction(CTrvDocument& document) : m_document(document) {}

  protected:
    // Null for the empty document.
    Metier_Tarvel::CTrvProject* FindProject() const;

    CTrvDocument& m_document;
};

} // namespace Application_Tarvel
