#include "views/instant_values_model.h"

#include "foundation/texts.h"
#include "plot/pens.h"
#include "plot/text.h"

#include <QFont>
#include <QGuiApplication>
#include <QMimeData>
#include <QPalette>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using Outils_Plot2D::ToQString;

namespace {

const QString kRowsType = QStringLiteral("application/x-varne-value-rows");
constexpr int kLighter = 130, kDarker = 180; // percent

} // namespace

CInstantValuesModel::CInstantValuesModel(CTrvInstantValues& values, QObject* parent)
    : TSyncModel(parent), m_values(values) {
    FollowRows();
}

void CInstantValuesModel::FollowRows() {
    SyncRows(
        {}, m_rows, m_values.GetRows(),
        [](const CTrvInstantValue* saved, const SValueRow& row) { return saved == row.saved; },
        [](const SValueRow& row) { return row.saved; });
}

void CInstantValuesModel::FollowValues() {
    if (!m_rows.empty()) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

const CTrvInstantValue* CInstantValuesModel::GetSaved(const QModelIndex& index) const {
    return index.isValid() ? m_rows[static_cast<std::size_t>(index.row())] : nullptr;
}

int CInstantValuesModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int CInstantValuesModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(EValueColumn::end);
}

QVariant CInstantValuesModel::data(const QModelIndex& index, int role) const {
    const SValueRow* row = index.isValid() ? m_values.Find(GetSaved(index)) : nullptr;
    if (!row) return {};
    const auto column = static_cast<EValueColumn>(index.column());
    switch (role) {
    case Qt::DisplayRole: return ToQString(m_values.GetCell(*row, column).text);
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole: {
        const SValueCell cell = m_values.GetCell(*row, column);
        return ToQString(cell.why.empty()    ? cell.text
                         : cell.text.empty() ? cell.why
                                             : cell.text + '\n' + cell.why);
    }
    case Qt::ForegroundRole: {
        if (m_values.GetCell(*row, column).isOld)
            return QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text);
        const QColor colour = Outils_Plot2D::ToNative(row->colour);
        return m_dark ? colour.lighter(kLighter) : colour.darker(kDarker);
    }
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (column == EValueColumn::field ? Qt::AlignLeft : Qt::AlignRight));
    default: return {};
    }
}

QVariant CInstantValuesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return ToQString(CTrvInstantValues::GetHeading(static_cast<EValueColumn>(section)));
}

Qt::ItemFlags CInstantValuesModel::flags(const QModelIndex& index) const {
    // A row is dropped between rows, never onto one.
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
}

QStringList CInstantValuesModel::mimeTypes() const { return {kRowsType}; }

// Only row numbers: a drag ends in the list where it began.
QMimeData* CInstantValuesModel::mimeData(const QModelIndexList& indexes) const {
    QStringList rows;
    for (const QModelIndex& index : indexes)
        if (const QString row = QString::number(index.row()); !rows.contains(row)) rows << row;
    auto* data = new QMimeData;
    data->setData(kRowsType, rows.join(u' ').toLatin1());
    return data;
}

bool CInstantValuesModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                       const QModelIndex& parent) {
    if (action != Qt::MoveAction || !data->hasFormat(kRowsType)) return false;
    int place = row >= 0 ? row : parent.isValid() ? parent.row() : rowCount();
    std::vector<const CTrvInstantValue*> moved;
    const auto texts = QString::fromLatin1(data->data(kRowsType)).split(u' ');
    for (const QString& text : texts) {
        const int from = text.toInt();
        if (from < 0 || from >= rowCount()) return false;
        moved.push_back(m_rows[static_cast<std::size_t>(from)]);
    }
    for (const CTrvInstantValue* saved : moved) {
        const auto from = static_cast<int>(std::find(m_rows.begin(), m_rows.end(), saved) - m_rows.begin());
        if (from >= rowCount()) break;
        // A row from above leaves its place to those after it.
        if (from < place) --place;
        m_values.Move(*saved, static_cast<std::size_t>(place));
        ++place;
    }
    // The rows have moved already: the view must not remove the dragged ones.
    return false;
}

} // namespace Application_Tarvel
