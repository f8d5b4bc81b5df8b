#include "views/variables_model.h"

#include "foundation/texts.h"
#include "plot/pens.h"
#include "plot/text.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

#include <iterator>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

struct SIconRow {
    const char* letter;
    int hue; // of the ground; below zero for grey
    bool isRound;
};
// By EVariable.
constexpr SIconRow kIcons[] = {
    {"F", -1, false},  // file
    {"C", 210, false}, // channel
    {"φ", 140, true},  // place
    {"h", 30, true},   // height
    {"∠", 280, true},  // angle
    {"v", 200, true},  // speed
    {"a", 350, true},  // acceleration
    {"ω", 310, true},  // turn rate
    {"T", 10, true},   // temperature
    {"d", 60, true},   // distance
    {"t", 180, true},  // time
    {"σ", 240, true},  // deviation
    {"#", -1, true},   // number
    {"≡", 90, false},  // state
};
static_assert(std::size(kIcons) == static_cast<std::size_t>(EVariable::count));

constexpr int kIconSize = 16; // pixels
constexpr int kIconScale = 2; // for dense screens
constexpr int kSaturation = 150;
constexpr int kLightValue = 235, kDarkValue = 130;

} // namespace

QIcon MakeVariableIcon(EVariable kind, bool dark) {
    const SIconRow& row = kIcons[static_cast<std::size_t>(kind)];
    QPixmap picture(QSize(kIconSize, kIconSize) * kIconScale);
    picture.setDevicePixelRatio(kIconScale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const int saturation = row.hue < 0 ? 0 : dark ? kSaturation : kSaturation / 2;
    painter.setBrush(QColor::fromHsv(std::max(row.hue, 0), saturation, dark ? kDarkValue : kLightValue));
    painter.setPen(dark ? QColor(Qt::white) : QColor(Qt::darkGray));
    const QRectF ground(0.5, 0.5, kIconSize - 1, kIconSize - 1);
    if (row.isRound)
        painter.drawEllipse(ground);
    else
        painter.drawRoundedRect(ground, 2, 2);
    QFont font = Outils_Plot2D::DefaultFont();
    font.setPixelSize(11);
    painter.setFont(font);
    painter.setPen(dark ? Qt::white : Qt::black);
    painter.drawText(ground, Qt::AlignCenter, QString::fromUtf8(row.letter));
    return QIcon(picture);
}

struct CVariablesModel::SNode {
    SVariable variable;
    SNode* parent = nullptr; // not owned
    Nodes children;
};

CVariablesModel::CVariablesModel(CTrvVariables& variables, QObject* parent)
    : TSyncModel(parent), m_variables(variables), m_root(std::make_unique<SNode>()) {
    MakeIcons(false);
    FollowTree();
}

CVariablesModel::~CVariablesModel() = default;

void CVariablesModel::MakeIcons(bool dark) {
    m_icons.clear();
    for (std::size_t kind = 0; kind < std::size(kIcons); ++kind)
        m_icons.push_back(MakeVariableIcon(static_cast<EVariable>(kind), dark));
}

std::unique_ptr<CVariablesModel::SNode> CVariablesModel::MakeNode(SNode& parent, const SVariableNode& from) {
    auto node = std::make_unique<SNode>();
    node->variable = from.variable;
    node->parent = &parent;
    for (const SVariableNode& child : from.children) node->children.push_back(MakeNode(*node, child));
    return node;
}

void CVariablesModel::FollowTree() { Follow(*m_root, m_variables.GetTree()); }

void CVariablesModel::Follow(SNode& node, const std::vector<SVariableNode>& wanted) {
    SyncRows(
        IndexOf(node, kName), node.children, wanted,
        // An address may come again with another object.
        [](const std::unique_ptr<SNode>& row, const SVariableNode& value) {
            return row->variable.object == value.variable.object &&
                   row->variable.IsField() == value.variable.IsField();
        },
        [&node](const SVariableNode& value) { return MakeNode(node, value); });
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        SNode& child = *node.children[i];
        Follow(child, wanted[i].children);
        if (child.variable == wanted[i].variable) continue;
        child.variable = wanted[i].variable;
        Q_EMIT dataChanged(IndexOf(child, kName), IndexOf(child, kValue));
    }
}

void CVariablesModel::FollowValues() { ValuesChanged(*m_root); }

void CVariablesModel::ValuesChanged(const SNode& node) {
    if (node.children.empty()) return;
    if (node.children.front()->variable.IsField())
        Q_EMIT dataChanged(IndexOf(*node.children.front(), kValue), IndexOf(*node.children.back(), kValue),
                           {Qt::DisplayRole});
    for (const auto& child : node.children) ValuesChanged(*child);
}

CVariablesModel::SNode& CVariablesModel::NodeOf(const QModelIndex& index) const {
    return index.isValid() ? *static_cast<SNode*>(index.internalPointer()) : *m_root;
}

QModelIndex CVariablesModel::IndexOf(const SNode& node, int column) const {
    if (!node.parent) return {};
    const Nodes& rows = node.parent->children;
    const auto place =
        std::find_if(rows.begin(), rows.end(), [&node](const auto& row) { return row.get() == &node; });
    return createIndex(static_cast<int>(place - rows.begin()), column, &node);
}

const SVariable* CVariablesModel::GetVariable(const QModelIndex& index) const {
    return index.isValid() ? &NodeOf(index).variable : nullptr;
}

QModelIndex CVariablesModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    return createIndex(row, column, NodeOf(parent).children[static_cast<std::size_t>(row)].get());
}

QModelIndex CVariablesModel::parent(const QModelIndex& index) const {
    const SNode* parent = index.isValid() ? NodeOf(index).parent : nullptr;
    return parent ? IndexOf(*parent, kName) : QModelIndex();
}

int CVariablesModel::rowCount(const QModelIndex& parent) const {
    return parent.column() > kName ? 0 : static_cast<int>(NodeOf(parent).children.size());
}

QVariant CVariablesModel::data(const QModelIndex& index, int role) const {
    const SVariable* variable = GetVariable(index);
    if (!variable) return {};
    const bool isValue = index.column() == kValue;
    std::string why;
    switch (role) {
    case Qt::DisplayRole:
        return isValue ? ToQString(m_variables.GetValue(*variable, why)) : ToQString(variable->label);
    case Qt::ToolTipRole: {
        if (isValue && m_variables.GetValue(*variable, why).empty() && !why.empty()) return ToQString(why);
        const std::string sample = m_variables.DescribeSample(*variable);
        return ToQString(sample.empty() ? variable->tip : variable->tip + '\n' + sample);
    }
    case Qt::DecorationRole:
        return isValue ? QVariant() : QVariant(m_icons[static_cast<std::size_t>(variable->kind)]);
    case Qt::ForegroundRole:
        if (!variable->isSilent) return {};
        return QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter | (isValue ? Qt::AlignRight : Qt::AlignLeft));
    default: return {};
    }
}

QVariant CVariablesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return Text(section == kName ? EText::columnVariable : EText::columnCursorValue);
}

Qt::ItemFlags CVariablesModel::flags(const QModelIndex& index) const {
    const SVariable* variable = GetVariable(index);
    if (!variable) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (variable->IsField()) flags |= Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
    return flags;
}

CVariablesFilter::CVariablesFilter(CVariablesModel& model, QObject* parent)
    : QSortFilterProxyModel(parent), m_model(model) {
    setRecursiveFilteringEnabled(true);
    setSourceModel(&model);
}

void CVariablesFilter::SetFilter(const std::string& filter) {
    if (m_filter == filter) return;
    m_filter = filter;
    invalidateFilter();
}

bool CVariablesFilter::filterAcceptsRow(int row, const QModelIndex& parent) const {
    if (m_filter.empty()) return true;
    const QModelIndex index = m_model.index(row, CVariablesModel::kName, parent);
    // A row with others under it shows as soon as one of them does.
    return m_model.rowCount(index) == 0 && MatchesFilter(m_filter, m_model.GetVariable(index)->words);
}

} // namespace Application_Tarvel
