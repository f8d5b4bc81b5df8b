#include "views/view_metadata.h"

#include "foundation/texts.h"
#include "graph/field_adding.h"
#include "plot/text.h"
#include "views/view_1d.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <set>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

constexpr int kMargin = 12;         // pixels about a notice
constexpr int kDarkLightness = 128; // of 255: below it a palette is dark

// The ways of fields to graphs and values: key, text, and what their row of the menu shows.
struct SAddRow {
    Qt::KeyboardModifiers modifiers;
    EText text;
    const char* key;
};
const SAddRow kAdds[] = {{Qt::NoModifier, EText::addToGraph, "Return"},
                         {Qt::ShiftModifier, EText::addToNewGraph, "Shift+Return"},
                         {Qt::ControlModifier, EText::addToValues, "Ctrl+Return"}};

} // namespace

// --- The tree

CVariablesTree::CVariablesTree(CFieldDrag& drag, QWidget* parent) : QTreeView(parent), m_drag(drag) {
    setSelectionMode(ExtendedSelection);
    setDragEnabled(true);
    setUniformRowHeights(true);
    setFrameShape(NoFrame);
    setEditTriggers(NoEditTriggers);
    setTextElideMode(Qt::ElideRight);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setAccessibleName(Text(EText::variablesTitle));
    setAccessibleDescription(Text(EText::variablesHelp));
}

void CVariablesTree::SetNotice(const QString& notice) {
    m_notice = notice;
    viewport()->update();
}

bool CVariablesTree::event(QEvent* event) {
    // The window system took the mouse away, or the panel is hidden under it.
    if (event->type() == QEvent::UngrabMouse || event->type() == QEvent::Hide ||
        event->type() == QEvent::WindowDeactivate)
        m_drag.Cancel();
    // Esc ends a drag before it is anybody's shortcut.
    if (event->type() == QEvent::ShortcutOverride && m_drag.IsActive()) event->accept();
    return QTreeView::event(event);
}

void CVariablesTree::mouseMoveEvent(QMouseEvent* event) {
    if (!m_drag.IsActive()) return QTreeView::mouseMoveEvent(event);
    if (event->buttons() & Qt::LeftButton)
        m_drag.Move(event->globalPosition().toPoint());
    else
        m_drag.Cancel();
}

void CVariablesTree::mouseReleaseEvent(QMouseEvent* event) {
    if (!m_drag.IsActive()) return QTreeView::mouseReleaseEvent(event);
    m_drag.Drop(event->globalPosition().toPoint());
}

void CVariablesTree::keyPressEvent(QKeyEvent* event) {
    if (m_drag.IsActive()) {
        if (event->key() == Qt::Key_Escape) m_drag.Cancel();
        return;
    }
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter) {
        Q_EMIT AddRequested(event->modifiers() & ~Qt::KeypadModifier);
        return;
    }
    const bool isText = !event->text().isEmpty() && event->text()[0].isPrint() &&
                        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) &&
                        !QStringLiteral("+-* ").contains(event->text()[0]);
    if (isText || event->key() == Qt::Key_Escape)
        Q_EMIT Typed(isText ? event->text() : QString());
    else
        QTreeView::keyPressEvent(event);
}

void CVariablesTree::focusOutEvent(QFocusEvent* event) {
    m_drag.Cancel();
    QTreeView::focusOutEvent(event);
}

void CVariablesTree::paintEvent(QPaintEvent* event) {
    QTreeView::paintEvent(event);
    if (model()->rowCount() > 0) return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
    const QRect room = viewport()->rect().adjusted(kMargin, kMargin, -kMargin, -kMargin);
    painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, m_notice);
}

// --- The panel

CTrvViewMetadata::CTrvViewMetadata(CTrvDocument& document, CViewState& state,
                                   const Outils_Valeurs::CTrvAdaptors& adaptors, QWidget* parent)
    : QWidget(parent),
      m_variables(document, state, adaptors),
      m_model(m_variables),
      m_filter(m_model),
      m_box(new QLineEdit(this)),
      m_tree(new CVariablesTree(m_drag, this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_box);
    layout->addWidget(m_tree, 1);
    m_box->setPlaceholderText(Text(EText::filterVariables));
    m_box->setAccessibleName(Text(EText::filterVariables));
    m_box->setClearButtonEnabled(true);
    m_box->installEventFilter(this);
    m_tree->setModel(&m_filter);
    m_tree->header()->setSectionResizeMode(CVariablesModel::kName, QHeaderView::Stretch);
    m_tree->header()->setSectionResizeMode(CVariablesModel::kValue, QHeaderView::ResizeToContents);
    m_tree->header()->setStretchLastSection(false);
    ShowValues(false);
    UpdateIcons();

    connect(m_box, &QLineEdit::textChanged, this, &CTrvViewMetadata::OnFilterChanged);
    connect(m_tree, &CVariablesTree::AddRequested, this, &CTrvViewMetadata::Add);
    connect(m_tree, &CVariablesTree::Typed, this, [this](const QString& text) {
        if (text.isEmpty()) return m_box->clear();
        m_box->setFocus();
        m_box->insert(text);
    });
    connect(m_tree, &CVariablesTree::DragRequested, this, [this] {
        if (GetSelectedFields().empty()) return;
        m_drag.Begin([this] { return GetSelectedFields(); });
    });
    connect(m_tree, &QWidget::customContextMenuRequested, this, &CTrvViewMetadata::ShowMenu);
    for (auto signal : {&QTreeView::expanded, &QTreeView::collapsed})
        connect(m_tree, signal, this, [this] { FollowValues(); });
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { FollowValues(); });
    m_variables.SetOnChanged([this] { OnTreeChanged(); }, [this] { m_model.FollowValues(); });
    OnTreeChanged();
}

CTrvViewMetadata::~CTrvViewMetadata() {
    m_variables.SetOnChanged({}, {});
    delete m_tree; // before the model that it shows
}

void CTrvViewMetadata::SetReceivers(CTrvView1D& graphs, CTrvInstantValues& values) {
    m_graphs = &graphs;
    m_values = &values;
}

Fields CTrvViewMetadata::GetSelectedFields() const {
    QModelIndexList rows = m_tree->selectionModel()->selectedRows();
    // In the order of the tree: by the rows on the way to it.
    const auto path = [](QModelIndex index) {
        std::vector<int> numbers;
        for (; index.isValid(); index = index.parent()) numbers.insert(numbers.begin(), index.row());
        return numbers;
    };
    std::ranges::sort(rows, {}, path);
    Fields fields;
    for (const QModelIndex& row : rows)
        if (const auto* variable = m_model.GetVariable(m_filter.mapToSource(row)))
            if (const auto* field = m_variables.FindField(*variable)) fields.push_back(field);
    return fields;
}

void CTrvViewMetadata::ShowValues(bool show) {
    m_showValues = show;
    m_tree->setColumnHidden(CVariablesModel::kValue, !show);
    m_tree->setHeaderHidden(!show);
    FollowValues();
}

void CTrvViewMetadata::Reformat() { m_variables.Reformat(); }

void CTrvViewMetadata::OnTreeChanged() {
    const QPersistentModelIndex first(m_model.index(0, CVariablesModel::kName));
    m_model.FollowTree();
    if (!first.isValid()) { // another project
        m_tree->expandToDepth(0);
        m_tree->setCurrentIndex(m_filter.index(0, 0));
    }
    m_tree->SetNotice(ToQString(m_variables.GetNotice(m_filter.GetFilter())));
    FollowValues();
}

void CTrvViewMetadata::ForEachExpanded(const std::function<void(const QModelIndex&)>& visit) const {
    const std::function<void(const QModelIndex&)> walk = [&](const QModelIndex& parent) {
        for (int row = 0; row < m_filter.rowCount(parent); ++row) {
            const QModelIndex index = m_filter.index(row, 0, parent);
            if (!m_tree->isExpanded(index)) continue;
            visit(m_filter.mapToSource(index));
            walk(index);
        }
    };
    walk({});
}

void CTrvViewMetadata::OnFilterChanged(const QString& text) {
    const std::string filter = text.trimmed().toStdString();
    if (m_filter.GetFilter().empty() && !filter.empty()) {
        m_expanded.clear();
        ForEachExpanded([this](const QModelIndex& index) { m_expanded.emplace_back(index); });
    }
    m_filter.SetFilter(filter);
    if (!filter.empty()) {
        m_tree->expandAll();
    } else {
        m_tree->collapseAll();
        for (const auto& index : m_expanded) m_tree->expand(m_filter.mapFromSource(index));
        m_expanded.clear();
        m_tree->scrollTo(m_tree->currentIndex());
    }
    m_tree->SetNotice(ToQString(m_variables.GetNotice(filter)));
    FollowValues();
}

// The samples of what is seen: of open channels while the column of values shows, and of the current row for
// its tool tip.
void CTrvViewMetadata::FollowValues() {
    std::set<SChannelKey> channels;
    if (m_showValues)
        ForEachExpanded([&](const QModelIndex& index) {
            const SVariable* variable = m_model.GetVariable(index);
            if (variable->kind == EVariable::channel) channels.insert(variable->channel);
        });
    const SVariable* current = m_model.GetVariable(m_filter.mapToSource(m_tree->currentIndex()));
    if (current && current->IsField()) channels.insert(current->channel);
    m_variables.ShowValuesOf(channels);
}

void CTrvViewMetadata::Add(Qt::KeyboardModifiers modifiers) {
    const Fields fields = GetSelectedFields();
    const QModelIndex current = m_tree->currentIndex();
    if (fields.empty()) return m_tree->setExpanded(current, !m_tree->isExpanded(current));
    if (!m_graphs || !m_values) return;
    if (modifiers & Qt::ControlModifier) {
        for (const auto* field : fields) m_values->Add(*field);
    } else if (modifiers & Qt::ShiftModifier) {
        AddToNewGraphs(m_graphs->GetLoader(), fields);
    } else {
        AddToSelectedGraph(m_graphs->GetLoader(), fields);
    }
}

void CTrvViewMetadata::ShowMenu(QPoint position) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool hasFields = !GetSelectedFields().empty();
    for (const SAddRow& row : kAdds) {
        QAction* action = menu->addAction(Text(row.text), this, [this, &row] { Add(row.modifiers); });
        action->setShortcut(QKeySequence(QString::fromLatin1(row.key)));
        action->setEnabled(hasFields);
    }
    menu->addSeparator();
    QAction* values =
        menu->addAction(Text(EText::showCursorValues), this, [this] { ShowValues(!m_showValues); });
    values->setCheckable(true);
    values->setChecked(m_showValues);
    menu->popup(m_tree->viewport()->mapToGlobal(position));
}

void CTrvViewMetadata::UpdateIcons() {
    m_model.MakeIcons(palette().color(QPalette::Base).lightness() < kDarkLightness);
    m_tree->viewport()->update();
}

void CTrvViewMetadata::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) UpdateIcons();
    QWidget::changeEvent(event);
}

bool CTrvViewMetadata::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_box || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
    case Qt::Key_Escape: m_box->clear(); return true;
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        m_tree->setFocus();
        if (!m_tree->currentIndex().isValid()) m_tree->setCurrentIndex(m_filter.index(0, 0));
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        // To the first field that the filter has left, unless one is selected already.
        if (GetSelectedFields().empty())
            for (QModelIndex index = m_filter.index(0, 0); index.isValid();
                 index = m_tree->indexBelow(index)) {
                const SVariable* variable = m_model.GetVariable(m_filter.mapToSource(index));
                if (!variable || !variable->IsField()) continue;
                m_tree->setCurrentIndex(index);
                break;
            }
        if (!GetSelectedFields().empty()) Add(key->modifiers() & ~Qt::KeypadModifier);
        return true;
    }
    default: return false;
    }
}

} // namespace Application_Tarvel
