// The panel of the project: all its values as a grid, and the Process button at its foot. UI thread.
#pragma once

#include "document/document_base.h"
#include "graph/channel_extents.h"
#include "grid/processing_tree.h"

#include <QBasicTimer>
#include <QWidget>

#include <functional>

class QMenu;
class QPushButton;

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}

namespace Application_Tarvel {

class CTrvDocument;
class CTrvGridView;

// Hidden while there is no project.
class CTrvViewProcessing final : public QWidget, public IDocumentView {
    Q_OBJECT

  public:
    // All three must outlive the view, which keeps the width of its first column in `configuration`.
    CTrvViewProcessing(CTrvDocument& document, Outils_Configuration::CTrvCnfConfigFile& configuration,
                       const Outils_Valeurs::CTrvAdaptors& adaptors, QWidget* parent = nullptr);
    ~CTrvViewProcessing() override;

    Presentation_Tarvel_Grid::CProcessingTree& GetTree() { return m_tree; }
    const Presentation_Tarvel_Grid::CProcessingTree& GetTree() const { return m_tree; }
    CTrvGridView& GetGrid() const { return *m_grid; }
    // The selected row; null for none.
    Presentation_Tarvel_Grid::CHGItem* GetSelected() const;
    bool CanRemoveSelected() const { return m_tree.CanRemove(GetSelected()); }
    void RemoveSelected() { m_tree.Remove(GetSelected()); }
    // Calls `add`, and selects the row of what it has added to the project.
    void Add(const std::function<void()>& add);
    // Goes to the next value at fault, round the whole tree; does nothing without one.
    void SelectNextFault();
    void SelectFirstFault();
    // Goes to the row of the object, or to the value in it that is at fault; does nothing for an object that
    // the tree does not show, as after it was removed.
    void ShowObject(const Outils_Objets::CObject* object);
    // Takes units and notations of the settings again.
    void Reformat();
    // Must outlive the view; null for none.
    void SetContextMenu(QMenu* menu) { m_menu = menu; }

    // What the button does: starts a run, or asks the one under way to stop. A run that a broken rule refuses
    // shows the first value at fault.
    void ToggleProcess();
    void OnUpdate(EHint hint, const Outils_Objets::CObject* object) override;

  Q_SIGNALS:
    // Another row is selected, or the number of faults is another.
    void StateChanged();
    // A row is about to be selected that the user must see.
    void ShowRequested();
    // The value of this row is chosen in a dialog.
    void DialogRequested(Presentation_Tarvel_Grid::CHGItem* item);

  protected:
    void timerEvent(QTimerEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void UpdateButton(bool running);
    void Show(const Presentation_Tarvel_Grid::CHGItem& item);
    void PaintRows();
    void FollowSensors();
    void ShowProject();
    void Expand(const Presentation_Tarvel_Grid::CHGItem& item);

    CTrvDocument& m_document;
    Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    Presentation_Tarvel_Grid::CProcessingTree m_tree;
    CTrvGridView* m_grid;  // Owned by the view.
    QPushButton* m_button; // Owned by the view.
    QMenu* m_menu = nullptr;
    QBasicTimer m_poll;                                         // sees the end of a run
    Presentation_Tarvel_Graphics::CTrvChannelExtents m_extents; // of the sensors' channels
};

} // namespace Application_Tarvel
