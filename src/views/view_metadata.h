// The panel Variables: what the files of the project offer, as a tree with a filter, from which fields are
// dragged or sent by keys to the graphs and the instant values. UI thread.
//
// Keys in the tree: Enter adds the selected fields to the selected graph, with Shift to a new graph, with
// Ctrl to the instant values; letters go to the filter, Esc clears it and ends a drag.
#pragma once

#include "graph/instant_values.h"
#include "graph/variables.h"
#include "views/field_drag.h"
#include "views/variables_model.h"

#include <QPersistentModelIndex>
#include <QTreeView>

#include <functional>
#include <memory>
#include <vector>

class QLineEdit;

namespace Application_Tarvel {

class CTrvView1D;
using Presentation_Tarvel_Graphics::CTrvInstantValues;
using Presentation_Tarvel_Graphics::CViewState;

// The tree of the panel: forwards its gestures, paints what an empty tree has to say.
class CVariablesTree final : public QTreeView {
    Q_OBJECT

  public:
    // Both must outlive the tree.
    CVariablesTree(CFieldDrag& drag, QWidget* parent);

    void SetNotice(const QString& notice);

  Q_SIGNALS:
    void DragRequested();
    void AddRequested(Qt::KeyboardModifiers modifiers);
    void Typed(const QString& text);

  protected:
    bool event(QEvent* event) override;
    void startDrag(Qt::DropActions) override { Q_EMIT DragRequested(); }
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    CFieldDrag& m_drag;
    QString m_notice;
};

class CTrvViewMetadata final : public QWidget {
    Q_OBJECT

  public:
    // All must outlive the panel.
    CTrvViewMetadata(CTrvDocument& document, CViewState& state, const Outils_Valeurs::CTrvAdaptors& adaptors,
                     QWidget* parent = nullptr);
    ~CTrvViewMetadata() override;

    // Where keys and menu send fields. Both must outlive the panel.
    void SetReceivers(CTrvView1D& graphs, CTrvInstantValues& values);
    // Where drags end; the first that is under the mouse.
    void AddTarget(std::unique_ptr<ITrvViewMetadataDropTarget> target) {
        m_drag.AddTarget(std::move(target));
    }

    CTrvVariables& GetVariables() { return m_variables; }
    // The fields that are selected, in the order of the tree.
    Fields GetSelectedFields() const;
    void ShowValues(bool show);
    bool AreValuesShown() const { return m_showValues; }
    // Takes labels and units from the settings again.
    void Reformat();

  protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void OnTreeChanged();
    void OnFilterChanged(const QString& text);
    void FollowValues();
    void Add(Qt::KeyboardModifiers modifiers);
    void ShowMenu(QPoint position);
    void UpdateIcons();
    void ForEachExpanded(const std::function<void(const QModelIndex& source)>& visit) const;

    CTrvVariables m_variables;
    CVariablesModel m_model;
    CVariablesFilter m_filter;
    CFieldDrag m_drag;
    QLineEdit* m_box;                      // belongs to the panel
    CVariablesTree* m_tree;                // belongs to the panel
    CTrvView1D* m_graphs = nullptr;        // not owned
    CTrvInstantValues* m_values = nullptr; // not owned
    bool m_showValues = false;
    std::vector<QPersistentModelIndex> m_expanded; // before there was a filter; of the model
};

} // namespace Application_Tarvel
