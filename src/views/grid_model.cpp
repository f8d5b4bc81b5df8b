#include "views/grid_model.h"

#include "foundation/texts.h"
#include "plot/text.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QStyle>

#include <algorithm>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

constexpr int kLight = 180; // of 255: on a dark ground

// The colour, lighter where the palette is dark.
QColor GetReadable(const QColor& color) {
    if (QApplication::palette("QTreeView").color(QPalette::Base).lightness() >= 128) return color;
    return QColor::fromHsl(std::max(color.hslHue(), 0), color.hslSaturation(),
                           std::max(color.lightness(), kLight));
}

} // namespace

CTrvGridModel::CTrvGridModel(Presentation_Tarvel_Grid::CHierarchicalGridControl& grid, QObject* parent)
    : QAbstractItemModel(parent),
      m_grid(grid),
      m_faultIcon(QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning)) {
    m_grid.SetListener(this);
}

CTrvGridModel::~CTrvGridModel() { m_grid.SetListener(nullptr); }

CHGItem* CTrvGridModel::GetItem(const QModelIndex& index) const {
    return index.isValid() ? static_cast<CHGItem*>(index.internalPointer()) : nullptr;
}

QModelIndex CTrvGridModel::GetIndex(const CHGItem& item, int column) const {
    if (!item.GetParent()) return {};
    return createIndex(static_cast<int>(item.GetIndex()), column, const_cast<CHGItem*>(&item));
}

QModelIndex CTrvGridModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column < 0 || column > kValue || (parent.isValid() && parent.column() != kTitle))
        return {};
    const CHGItem* owner = parent.isValid() ? GetItem(parent) : &m_grid.GetRoot();
    CHGItem* item = owner->GetChild(static_cast<std::size_t>(row));
    return item ? createIndex(row, column, item) : QModelIndex();
}

QModelIndex CTrvGridModel::parent(const QModelIndex& index) const {
    const CHGItem* item = GetItem(index);
    return item && item->GetParent() ? GetIndex(*item->GetParent()) : QModelIndex();
}

int CTrvGridModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid() && parent.column() != kTitle) return 0;
    const CHGItem* owner = parent.isValid() ? GetItem(parent) : &m_grid.GetRoot();
    return static_cast<int>(owner->GetChildCount());
}

QVariant CTrvGridModel::data(const QModelIndex& index, int role) const {
    const CHGItem* item = GetItem(index);
    if (!item || IsLeaving(item)) return {};
    const bool isValue = index.column() == kValue;
    switch (role) {
    case Qt::DisplayRole: return ToQString(isValue ? item->GetShown() : item->GetTitle());
    case Qt::EditRole: return ToQString(isValue ? item->GetValue() : item->GetTitle());
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole: {
        std::string text = item->GetFault();
        if (text.empty() && !isValue && item->HasFaultBelow()) text = GetText(EText::gridFaultsBelow);
        const auto add = [&text](const std::string& line) { text += (text.empty() ? "" : "\n") + line; };
        // The row may be cut on the screen.
        if (role == Qt::ToolTipRole) {
            const std::string value = item->GetShown();
            add(value.empty() ? item->GetTitle() : item->GetTitle() + ": " + value);
        }
        if (const std::string help = item->GetHelp(); !help.empty()) add(help);
        return ToQString(text);
    }
    case Qt::AccessibleTextRole: {
        const QString title = ToQString(item->GetTitle());
        return isValue ? title + ": " + data(index, Qt::DisplayRole).toString() : title;
    }
    case Qt::ForegroundRole:
        if (!item->GetFault().empty()) return GetReadable(m_faultColor);
        // A note is no value.
        if (!isValue || item->GetKind() != Presentation_Tarvel_Grid::ERowKind::section ||
            !item->GetValue().empty())
            return {};
        return QApplication::palette("QTreeView").color(QPalette::Disabled, QPalette::Text);
    case Qt::DecorationRole:
        if (isValue && item->GetKind() == Presentation_Tarvel_Grid::ERowKind::color)
            return QColor(ToQString(item->GetValue()));
        return !isValue && (!item->GetFault().empty() || item->HasFaultBelow()) ? QVariant(m_faultIcon)
                                                                                : QVariant();
    case Qt::FontRole: {
        if (isValue || item->GetParent() != &m_grid.GetRoot()) return {};
        QFont font = QApplication::font("QTreeView");
        font.setBold(true);
        return font;
    }
    default: return {};
    }
}

QVariant CTrvGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return Text(section == kTitle ? EText::gridTitleColumn : EText::gridValueColumn);
}

Qt::ItemFlags CTrvGridModel::flags(const QModelIndex& index) const {
    const CHGItem* item = GetItem(index);
    if (!item || IsLeaving(item)) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == kValue && item->IsEditable()) flags |= Qt::ItemIsEditable;
    return flags;
}

void CTrvGridModel::OnInserting(const CHGItem& parent, std::size_t index) {
    const int row = static_cast<int>(index);
    beginInsertRows(GetIndex(parent), row, row);
}
void CTrvGridModel::OnInserted() {
    endInsertRows();
    Q_EMIT RowsChanged();
}

void CTrvGridModel::OnRemoving(const CHGItem& item) {
    m_leaving = &item;
    const int row = static_cast<int>(item.GetIndex());
    beginRemoveRows(GetIndex(*item.GetParent()), row, row);
}
void CTrvGridModel::OnRemoved() {
    endRemoveRows();
    m_leaving = nullptr;
}

void CTrvGridModel::OnChanged(const CHGItem& item) {
    if (rowCount(GetIndex(item)) > 0)
        Q_EMIT dataChanged(index(0, kTitle, GetIndex(item)),
                           index(rowCount(GetIndex(item)) - 1, kValue, GetIndex(item)));
    if (item.GetParent()) Q_EMIT dataChanged(GetIndex(item), GetIndex(item, kValue));
    Q_EMIT RowsChanged();
}

void CTrvGridModel::OnReset() {
    endResetModel();
    Q_EMIT RowsChanged();
}

bool CTrvGridModel::IsLeaving(const CHGItem* item) const {
    if (!m_leaving) return false;
    while (item && item != m_leaving) item = item->GetParent();
    return item != nullptr;
}

} // namespace Application_Tarvel
