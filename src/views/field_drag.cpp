#include "views/field_drag.h"

#include "foundation/texts.h"
#include "plot/text.h"

#include <QGuiApplication>
#include <QToolTip>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace Application_Tarvel {

namespace {

const QPoint kHintPlace(16, 20); // pixels from the mouse

bool IsOver(const ITrvViewMetadataDropTarget& target, QPoint global) {
    const QWidget& window = target.GetWindow();
    return window.isVisible() && window.rect().contains(window.mapFromGlobal(global));
}

} // namespace

void CFieldDrag::Begin(std::function<Fields()> find) {
    if (IsActive()) return;
    m_find = std::move(find);
    QGuiApplication::setOverrideCursor(Qt::ForbiddenCursor);
}

ITrvViewMetadataDropTarget* CFieldDrag::FindTarget(QPoint global) const {
    if (m_current && IsOver(*m_current, global)) return m_current;
    const auto place =
        std::ranges::find_if(m_targets, [&](const auto& target) { return IsOver(*target, global); });
    return place == m_targets.end() ? nullptr : place->get();
}

void CFieldDrag::SetCurrent(ITrvViewMetadataDropTarget* target) {
    if (m_current && m_current != target) m_current->DragLeave();
    m_current = target;
}

void CFieldDrag::Move(QPoint global) {
    if (!IsActive()) return;
    const Fields fields = m_find();
    if (fields.empty()) return Cancel();
    ITrvViewMetadataDropTarget* target = FindTarget(global);
    if (target != m_current) SetCurrent(nullptr);
    const QPoint point = target ? target->GetWindow().mapFromGlobal(global) : QPoint();
    const bool canDrop = target && target->CanDrop(point, fields);
    if (canDrop) target->DragOver(point, fields);
    SetCurrent(canDrop ? target : nullptr);
    QGuiApplication::changeOverrideCursor(canDrop ? Qt::DragCopyCursor : Qt::ForbiddenCursor);
    QToolTip::showText(global + kHintPlace, target ? target->GetHint(point, fields)
                                                   : Outils_Plot2D::Text(Outils_Texte::EText::dropNowhere));
}

void CFieldDrag::Drop(QPoint global) {
    if (!IsActive()) return;
    const Fields fields = m_find();
    SetCurrent(nullptr);
    ITrvViewMetadataDropTarget* target = FindTarget(global);
    End(); // before the drop, which may ask a question
    if (!target || fields.empty()) return;
    const QPoint point = target->GetWindow().mapFromGlobal(global);
    if (target->CanDrop(point, fields)) target->Drop(point, fields);
}

void CFieldDrag::Cancel() {
    if (!IsActive()) return;
    SetCurrent(nullptr);
    End();
}

void CFieldDrag::End() {
    m_find = {};
    QGuiApplication::restoreOverrideCursor();
    QToolTip::hideText();
}

} // namespace Application_Tarvel
