#include "views/plan_view.h"

#include "foundation/paths.h"
#include "foundation/texts.h"
#include "graph/plan_picture.h"
#include "plot/text.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using Outils_Plot2D::Text;
using Outils_Texte::EText;

namespace {

constexpr double kZoomStep = 0.5;   // of the ground for one notch
constexpr double kNotch = 120;      // eighths of a degree
constexpr float kMoveStep = 40;     // pixels
constexpr int kDarkLightness = 128; // of 255: below it a palette is dark
constexpr int kLeastSize = 120;     // pixels

SPoint ToPoint(QPointF position) {
    return {static_cast<float>(position.x()), static_cast<float>(position.y())};
}

} // namespace

CTrvPlanView::CTrvPlanView(CTrvDocument& document, CViewState& state,
                           const Outils_Valeurs::CTrvAdaptors& adaptors, QWidget* parent)
    : QWidget(parent), m_plan(document, state, adaptors) {
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(kLeastSize, kLeastSize);
    setAccessibleName(Text(EText::planTitle));
    setAccessibleDescription(Text(EText::planHelp));
    setContextMenuPolicy(Qt::ActionsContextMenu);
    const auto add = [this](EText text, const char* key, auto run) {
        auto* action = new QAction(Text(text), this);
        action->setShortcut(QKeySequence(QString::fromLatin1(key)));
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, run);
        addAction(action);
    };
    add(EText::planShowAll, "F", [this] { m_plan.ShowAll(); });
    add(EText::planCopy, "Ctrl+C", [this] { CopyPicture(); });
    add(EText::savePicture, "", [this] { SavePicture(); });
    m_plan.SetOnChanged([this] { update(); });
}

CTrvPlanView::~CTrvPlanView() { m_plan.SetOnChanged({}); }

SPictureData CTrvPlanView::GetPicture() const {
    const SSize pixels{static_cast<float>(width()), static_cast<float>(height())};
    return {size(), [this, pixels](QPainter& painter) { DrawPlan(m_plan, painter, pixels); }};
}

void CTrvPlanView::CopyPicture() { Application_Tarvel::CopyPicture(GetPicture()); }

void CTrvPlanView::SavePicture() {
    CTrvDocument& document = m_plan.GetDocument();
    auto proposed = document.GetPathName();
    proposed.replace_extension(".plan.svg");
    const auto chosen = document.GetHost().AskPath(
        {EPathKind::save, EText::savePicture, EText::pictureFilter, "svg", proposed});
    if (chosen.empty() || Application_Tarvel::SavePicture(GetPicture(), chosen.front())) return;
    document.GetHost().ShowMessage(
        Outils_Texte::FormatText(EText::pictureFailed, {Outils_Fichiers::ToText(chosen.front())}),
        EButtons::ok, EIcon::exclamation);
}

void CTrvPlanView::FitToWindow() {
    m_plan.SetSize({static_cast<float>(width()), static_cast<float>(height())}, devicePixelRatioF());
}

bool CTrvPlanView::event(QEvent* event) {
    if (event->type() == QEvent::ScreenChangeInternal) FitToWindow(); // perhaps of another density
    return QWidget::event(event);
}

void CTrvPlanView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    CGraphics graphics(painter);
    const bool isDark = palette().color(QPalette::Base).lightness() < kDarkLightness;
    DrawPlan(m_plan, graphics, isDark ? MakeDarkLook() : SPlanLook());
    if (!hasFocus()) return;
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void CTrvPlanView::resizeEvent(QResizeEvent*) { FitToWindow(); }

void CTrvPlanView::showEvent(QShowEvent*) { m_plan.SetShown(true); }

void CTrvPlanView::hideEvent(QHideEvent*) { m_plan.SetShown(false); }

void CTrvPlanView::wheelEvent(QWheelEvent* event) {
    m_plan.ZoomAt(ToPoint(event->position()), std::pow(kZoomStep, event->angleDelta().y() / kNotch));
    event->accept();
}

void CTrvPlanView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) return;
    m_pressed = m_last = event->position();
    m_isDown = true;
    m_isDragging = false;
}

void CTrvPlanView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_isDown) return;
    const QPointF way = event->position() - m_pressed;
    if (!m_isDragging && way.manhattanLength() < QApplication::startDragDistance()) return;
    m_isDragging = true;
    setCursor(Qt::ClosedHandCursor);
    const QPointF step = event->position() - m_last;
    m_last = event->position();
    m_plan.Pan(static_cast<float>(step.x()), static_cast<float>(step.y()));
}

void CTrvPlanView::mouseReleaseEvent(QMouseEvent* event) {
    if (!m_isDown) return;
    m_isDown = false;
    unsetCursor();
    if (!m_isDragging && event->button() == Qt::LeftButton) m_plan.SetCursorAt(ToPoint(event->position()));
}

void CTrvPlanView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_plan.ShowAll();
}

void CTrvPlanView::keyPressEvent(QKeyEvent* event) {
    const SPoint middle{static_cast<float>(width()) / 2, static_cast<float>(height()) / 2};
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: m_plan.ZoomAt(middle, kZoomStep); break;
    case Qt::Key_Minus:
    case Qt::Key_Underscore: m_plan.ZoomAt(middle, 1 / kZoomStep); break;
    case Qt::Key_Left: m_plan.Pan(kMoveStep, 0); break;
    case Qt::Key_Right: m_plan.Pan(-kMoveStep, 0); break;
    case Qt::Key_Up: m_plan.Pan(0, kMoveStep); break;
    case Qt::Key_Down: m_plan.Pan(0, -kMoveStep); break;
    case Qt::Key_Home: m_plan.ShowAll(); break;
    default: QWidget::keyPressEvent(event);
    }
}

} // namespace Application_Tarvel
