// A grid as a model of the window system: column 0 has the titles, column 1 the values. Nothing is computed
// for a row that nobody asks for. UI thread.
#pragma once

#include "grid/grid_control.h"

#include <QAbstractItemModel>
#include <QColor>
#include <QIcon>

namespace Application_Tarvel {

using Presentation_Tarvel_Grid::CHGItem;

class CTrvGridModel final : public QAbstractItemModel, private Presentation_Tarvel_Grid::IGridListener {
    Q_OBJECT

  public:
    static constexpr int kTitle = 0;
    static constexpr int kValue = 1;

    // `grid` must outlive the model, which is its listener.
    explicit CTrvGridModel(Presentation_Tarvel_Grid::CHierarchicalGridControl& grid,
                           QObject* parent = nullptr);
    ~CTrvGridModel() override;

    // Null for an index of none.
    CHGItem* GetItem(const QModelIndex& index) const;
    QModelIndex GetIndex(const CHGItem& item, int column = kTitle) const;
    // Of values at fault; on a dark palette a lighter one.
    void SetFaultColor(const QColor& color) { m_faultColor = color; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex&) const override { return 2; }
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  Q_SIGNALS:
    // The rows at and under the item may be shown or hidden now.
    void RowsChanged();

  private:
    void OnInserting(const CHGItem& parent, std::size_t index) override;
    void OnInserted() override;
    void OnRemoving(const CHGItem& item) override;
    void OnRemoved() override;
    void OnChanged(const CHGItem& item) override;
    void OnResetting() override { beginResetModel(); }
    void OnReset() override;
    bool IsLeaving(const CHGItem* item) const;

    Presentation_Tarvel_Grid::CHierarchicalGridControl& m_grid;
    const CHGItem* m_leaving = nullptr; // its object may have gone: nothing of it is read any more
    QColor m_faultColor{Qt::red};
    QIcon m_faultIcon;
};

} // namespace Application_Tarvel
