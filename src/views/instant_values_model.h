// The list of instant values as a model of the window system: a row for each field, a column for each
// EValueColumn. UI thread.
#pragma once

#include "graph/instant_values.h"
#include "views/sync_model.h"

#include <QColor>

#include <vector>

namespace Application_Tarvel {

using Presentation_Tarvel_Graphics::CTrvInstantValue;
using Presentation_Tarvel_Graphics::CTrvInstantValues;
using Presentation_Tarvel_Graphics::EValueColumn;

class CInstantValuesModel final : public TSyncModel<QAbstractTableModel> {
    Q_OBJECT

  public:
    // `values` must outlive the model.
    explicit CInstantValuesModel(CTrvInstantValues& values, QObject* parent = nullptr);

    // Takes the rows of the list / the texts in the cells. To be called when the list reports a change.
    void FollowRows();
    void FollowValues();
    // Only compared; null for an index of none.
    const CTrvInstantValue* GetSaved(const QModelIndex& index) const;
    // On a dark palette the colours of the files are made lighter, on a light one darker.
    void SetDark(bool dark) { m_dark = dark; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

  private:
    CTrvInstantValues& m_values;
    std::vector<const CTrvInstantValue*> m_rows;
    bool m_dark = false;
};

} // namespace Application_Tarvel
