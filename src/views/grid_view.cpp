#include "views/grid_view.h"

#include "foundation/paths.h"
#include "foundation/text_id.h"
#include "plot/text.h"
#include "views/grid_model.h"

#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>

#include <algorithm>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Grid;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

constexpr int kLongestText = 4096; // a pasted file is no value

// Whether the value is chosen in a dialog and not in the row.
bool HasDialog(const CHGItem& item) {
    return item.GetKind() == ERowKind::dialog || item.GetKind() == ERowKind::color ||
           item.GetKind() == ERowKind::file;
}

// The editors of the value column. A text that the row refuses keeps its editor open.
class CGridDelegate final : public QStyledItemDelegate {
  public:
    CGridDelegate(CTrvGridView& view, CTrvGridModel& model)
        : QStyledItemDelegate(&view), m_view(view), m_model(model) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                          const QModelIndex& index) const override {
        const CHGItem* item = m_model.GetItem(index);
        QWidget* editor = item->GetKind() == ERowKind::list ? MakeList(parent, *item) : MakeText(parent);
        editor->setAccessibleName(ToQString(item->GetTitle()));
        editor->setToolTip(ToQString(item->GetHelp()));
        m_edited = index;
        return editor;
    }

    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        const CHGItem* item = m_model.GetItem(index);
        if (auto* list = qobject_cast<QComboBox*>(editor))
            list->setCurrentIndex(item->GetChoice());
        else if (auto* text = qobject_cast<QLineEdit*>(editor); text && !text->isModified())
            text->setText(ToQString(item->GetValue()));
    }

    // What closes an editor by itself, as another edit does.
    void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override {
        Take(editor, index);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* editor = qobject_cast<QWidget*>(watched);
        if (editor && event->type() == QEvent::FocusOut && editor->isVisible())
            if (auto* text = qobject_cast<QLineEdit*>(editor)) {
                LeaveText(*text, static_cast<QFocusEvent*>(event)->reason());
                return false; // the editor's own business goes on
            }
        if (!editor || event->type() != QEvent::KeyPress)
            return QStyledItemDelegate::eventFilter(watched, event);
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (MoveInList(editor, *static_cast<QKeyEvent*>(event))) return true;
        const bool isTab = key == Qt::Key_Tab || key == Qt::Key_Backtab;
        if (!isTab && key != Qt::Key_Return && key != Qt::Key_Enter)
            return QStyledItemDelegate::eventFilter(watched, event);
        if (Take(editor, m_edited)) {
            Close(*editor);
            m_view.setFocus();
            if (isTab) m_view.EditNext(key == Qt::Key_Tab);
        } else if (auto* text = qobject_cast<QLineEdit*>(editor)) {
            text->setFocus();
            text->selectAll();
        }
        return true;
    }

  private:
    void Close(QWidget& editor) {
        if (auto* text = qobject_cast<QLineEdit*>(&editor)) text->setModified(false);
        Q_EMIT closeEditor(&editor, NoHint);
    }
    // The focus goes elsewhere: a text that is refused calls it back after the message.
    void LeaveText(QLineEdit& text, Qt::FocusReason reason) {
        // Another window is in front for a while, or the context menu.
        if (m_isTaking || reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason) return;
        if (Take(&text, m_edited)) return Close(text);
        QMetaObject::invokeMethod(
            &text,
            [&text] {
                text.setFocus();
                text.selectAll();
            },
            Qt::QueuedConnection);
    }
    static QWidget* MakeText(QWidget* parent) {
        auto* text = new QLineEdit(parent);
        text->setFrame(false);
        text->setMaxLength(kLongestText);
        text->setAutoFillBackground(true);
        return text;
    }
    QWidget* MakeList(QWidget* parent, const CHGItem& item) const {
        auto* list = new QComboBox(parent);
        for (const std::string& word : item.GetChoices()) list->addItem(ToQString(word));
        connect(list, &QComboBox::activated, this, [this, list] {
            auto* self = const_cast<CGridDelegate*>(this);
            if (Take(list, m_edited)) Q_EMIT self->closeEditor(list, NoHint);
        });
        return list;
    }

    // The arrows only move in a list that is not open: by itself it would be done with the first step.
    static bool MoveInList(QWidget* editor, const QKeyEvent& event) {
        auto* list = qobject_cast<QComboBox*>(editor);
        const int step = event.key() == Qt::Key_Down ? 1 : event.key() == Qt::Key_Up ? -1 : 0;
        if (!list || step == 0 || (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return false;
        list->setCurrentIndex(std::clamp(list->currentIndex() + step, 0, list->count() - 1));
        return true;
    }

    // True when the row has taken what the editor holds.
    bool Take(QWidget* editor, const QModelIndex& index) const {
        CHGItem* item = m_model.GetItem(index);
        if (!item || m_isTaking) return false;
        const QScopedValueRollback guard(m_isTaking, true); // the message takes the focus from the editor
        if (const auto* list = qobject_cast<QComboBox*>(editor)) {
            return list->currentIndex() == item->GetChoice() ||
                   m_view.Accepts(item->Choose(list->currentIndex()));
        }
        const auto* text = qobject_cast<QLineEdit*>(editor);
        return !text || !text->isModified() || m_view.Write(*item, text->text());
    }

    CTrvGridView& m_view;
    CTrvGridModel& m_model;
    mutable bool m_isTaking = false;
    mutable QPersistentModelIndex m_edited; // the value in the editor
};

} // namespace

CTrvGridView::CTrvGridView(CHierarchicalGridControl& grid, IQuestions& questions, QWidget* parent)
    : QTreeView(parent), m_questions(questions), m_model(new CTrvGridModel(grid, this)) {
    setModel(m_model);
    setItemDelegate(new CGridDelegate(*this, *m_model));
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setSelectionBehavior(SelectRows);
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
    setTabKeyNavigation(false); // Tab leaves the grid
    setExpandsOnDoubleClick(true);
    setIndentation(fontMetrics().height());
    header()->setStretchLastSection(true);
    header()->setSectionsMovable(false);
    connect(m_model, &CTrvGridModel::RowsChanged, this, [this] { HideRows({}); });
    setTextElideMode(Qt::ElideMiddle); // both ends of a path or a numbered title say more than its middle
    HideRows({});
}

CTrvGridView::~CTrvGridView() = default;

CHGItem* CTrvGridView::GetSelected() const { return m_model->GetItem(currentIndex()); }

void CTrvGridView::Select(const CHGItem& item) {
    for (const CHGItem* above = item.GetParent(); above && above->GetParent(); above = above->GetParent())
        setExpanded(m_model->GetIndex(*above), true);
    const QModelIndex index = m_model->GetIndex(item);
    setCurrentIndex(index);
    // With what is under it, as far as there is room.
    if (const CHGItem* last = item.GetChild(item.GetChildCount() - 1); last && isExpanded(index))
        scrollTo(m_model->GetIndex(*last));
    scrollTo(index);
}

void CTrvGridView::SetItemExpanded(const CHGItem& item, bool expanded) {
    setExpanded(m_model->GetIndex(item), expanded);
}

bool CTrvGridView::EditRow(const CHGItem& item) {
    Select(item);
    return edit(m_model->GetIndex(item, CTrvGridModel::kValue), AllEditTriggers, nullptr);
}

bool CTrvGridView::Write(CHGItem& item, const QString& text) {
    return Accepts(item.Write(text.toStdString()));
}

bool CTrvGridView::Accepts(const std::string& refusal) {
    if (refusal.empty()) return true;
    m_questions.ShowMessage(refusal, EButtons::ok, EIcon::exclamation);
    return false;
}

void CTrvGridView::EditNext(bool forward) {
    for (QModelIndex index = currentIndex(); index.isValid();) {
        index = forward ? indexBelow(index) : indexAbove(index);
        const CHGItem* item = m_model->GetItem(index);
        // No dialog opens by itself.
        if (!item || !item->IsEditable() || HasDialog(*item)) continue;
        EditRow(*item);
        return;
    }
}

void CTrvGridView::SetFaultColor(const QColor& color) {
    m_model->SetFaultColor(color);
    viewport()->update();
}

QString CTrvGridView::GetText(const CHGItem& item) const {
    QString text;
    const auto add = [&](const auto& self, const CHGItem& row, int depth) -> void {
        if (!row.IsVisible()) return;
        text += QString(depth * 2, ' ') + ToQString(row.GetTitle());
        const std::string value = row.GetShown();
        if (!value.empty()) text += '\t' + ToQString(value);
        text += '\n';
        for (std::size_t i = 0; const CHGItem* child = row.GetChild(i); ++i) self(self, *child, depth + 1);
    };
    add(add, item, 0);
    text.chop(1);
    return text;
}

void CTrvGridView::ResizeTitles(int width) { header()->resizeSection(CTrvGridModel::kTitle, width); }
int CTrvGridView::GetTitleWidth() const { return header()->sectionSize(CTrvGridModel::kTitle); }

bool CTrvGridView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    CHGItem* item = m_model->GetItem(index);
    if (!item || trigger == NoEditTriggers || trigger == CurrentChanged) return false;
    if (!item->IsEditable()) return false;
    if (!HasDialog(*item))
        return QTreeView::edit(m_model->GetIndex(*item, CTrvGridModel::kValue), trigger, event);
    if (!(trigger == AllEditTriggers || (editTriggers() & trigger)) || trigger == AnyKeyPressed) return false;
    return StartDialog(*item);
}

bool CTrvGridView::StartDialog(CHGItem& item) {
    if (item.GetKind() == ERowKind::dialog) {
        Q_EMIT DialogRequested(&item);
    } else if (item.GetKind() == ERowKind::color) {
        const QColor chosen =
            QColorDialog::getColor(QColor(ToQString(item.GetValue())), this, ToQString(item.GetTitle()),
                                   QColorDialog::ShowAlphaChannel);
        if (chosen.isValid()) Write(item, chosen.name(QColor::HexArgb));
    } else if (const SPathQuestion* question = item.GetPathQuestion()) {
        SPathQuestion asked = *question;
        if (asked.proposed.empty()) asked.proposed = Outils_Fichiers::FromText(item.GetValue());
        const auto paths = m_questions.AskPath(asked);
        if (!paths.empty()) Accepts(item.WritePaths(paths));
    }
    return true;
}

void CTrvGridView::keyPressEvent(QKeyEvent* event) {
    CHGItem* item = GetSelected();
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (event->matches(QKeySequence::Copy)) {
        if (item) QApplication::clipboard()->setText(GetText(*item));
        return;
    }
    if (item && plain) {
        switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (item->IsEditable())
                EditRow(*item);
            else
                setExpanded(currentIndex().siblingAtColumn(0),
                            !isExpanded(currentIndex().siblingAtColumn(0)));
            return;
        case Qt::Key_Plus:
        case Qt::Key_Minus:
            if (item->IsEditable()) break; // the sign of a number
            setExpanded(currentIndex().siblingAtColumn(0), event->key() == Qt::Key_Plus);
            return;
        case Qt::Key_Delete: Q_EMIT RemoveRequested(); return;
        default: break;
        }
    }
    if (item && item->GetKind() == ERowKind::list && event->key() == Qt::Key_Down &&
        event->modifiers() == Qt::AltModifier) {
        if (EditRow(*item))
            if (auto* list =
                    qobject_cast<QComboBox*>(indexWidget(m_model->GetIndex(*item, CTrvGridModel::kValue))))
                list->showPopup();
        return;
    }
    QTreeView::keyPressEvent(event);
}

// One click on a value edits it, when its row was selected before.
void CTrvGridView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->pos());
    const bool wasSelected = index.isValid() && m_model->GetItem(index) == GetSelected();
    QTreeView::mousePressEvent(event);
    if (wasSelected && event->button() == Qt::LeftButton && index.column() == CTrvGridModel::kValue &&
        state() != EditingState)
        edit(index, AllEditTriggers, event);
}

void CTrvGridView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeView::currentChanged(current, previous);
    Q_EMIT SelectionMoved();
}

// Brings hidden rows in line with the values, without a new layout when nothing has changed.
void CTrvGridView::HideRows(const QModelIndex& parent) {
    for (int row = 0; row < m_model->rowCount(parent); ++row) {
        const QModelIndex index = m_model->index(row, 0, parent);
        const CHGItem& item = *m_model->GetItem(index);
        const bool hidden = !item.IsVisible();
        if (hidden != isRowHidden(row, parent)) setRowHidden(row, parent, hidden);
        // A heading without a value has the whole line.
        if (item.GetKind() == ERowKind::section) setFirstColumnSpanned(row, parent, item.GetShown().empty());
        HideRows(index);
    }
}

} // namespace Application_Tarvel
