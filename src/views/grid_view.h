// A grid on the screen: two columns, values edited in place. Enter, F2 or typing starts an edit, Tab goes to
// the next editable row, Esc gives up; a refused text keeps the editor open with the text marked. Plus and
// minus expand and collapse, Ctrl+C copies the selected row, a section with all its rows. UI thread.
#pragma once

#include "document/document_host.h"
#include "grid/grid_control.h"

#include <QTreeView>

namespace Application_Tarvel {

class CTrvGridModel;

class CTrvGridView final : public QTreeView {
    Q_OBJECT

  public:
    // Both must outlive the view, which is the grid's listener. `questions` shows refusals and asks for
    // files.
    CTrvGridView(Presentation_Tarvel_Grid::CHierarchicalGridControl& grid, IQuestions& questions,
                 QWidget* parent = nullptr);
    ~CTrvGridView() override;

    // The selected row; null for none.
    Presentation_Tarvel_Grid::CHGItem* GetSelected() const;
    // Expands what hides the row, selects and shows it.
    void Select(const Presentation_Tarvel_Grid::CHGItem& item);
    void SetItemExpanded(const Presentation_Tarvel_Grid::CHGItem& item, bool expanded);
    // Starts the edit of the row; false when it cannot be edited.
    bool EditRow(const Presentation_Tarvel_Grid::CHGItem& item);
    // Has the row take the text; a message box shows a refusal. For the editors.
    bool Write(Presentation_Tarvel_Grid::CHGItem& item, const QString& text);
    // True for an empty refusal; a message box shows any other.
    bool Accepts(const std::string& refusal);
    // Starts the edit of the next editable row, or of the previous one.
    void EditNext(bool forward);
    void SetFaultColor(const QColor& color);
    // The row as text: title and value, tab separated; of a section all its visible rows, indented.
    QString GetText(const Presentation_Tarvel_Grid::CHGItem& item) const;
    void ResizeTitles(int width);
    int GetTitleWidth() const;

  Q_SIGNALS:
    // A row of the kind `dialog` wants its dialog.
    void DialogRequested(Presentation_Tarvel_Grid::CHGItem* item);
    void RemoveRequested();
    void SelectionMoved();

  protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

  private:
    void HideRows(const QModelIndex& parent);
    bool StartDialog(Presentation_Tarvel_Grid::CHGItem& item);

    IQuestions& m_questions;
    CTrvGridModel* m_model; // Owned by the view.
};

} // namespace Application_Tarvel
