#include "views/view_1d_interactors.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;

namespace {

constexpr double kVerticalSlop = 8; // pixels that a drag along the time may leave its height
constexpr float kHeightStep = 20;
const QColor kBandFill(0x99, 0xDE, 0xFE, 0x50);
const QColor kBandBorder(0x46, 0x82, 0xB4);

} // namespace

void CCursorInteractor::OnMouseMove(QMouseEvent& event) {
    Outils_Temps::CDateTimeSpan time;
    if (TimeAt(m_view.GetStack(), m_view.ToStack(event.position()).x, time))
        m_view.GetViewState().SetCursor(ECursor::first, time);
}

void CCursorInteractor::Draw(QPainter& painter) { m_view.DrawCursor(painter); }

CTrv1DGraphPortlet* CTrvView1DInteractor::PortletAt(QPointF position) const {
    return Presentation_Tarvel_Graphics::PortletAt(View().GetStack(), View().ToStack(position));
}

CTrv1DGraphPortlet* CTrvView1DInteractor::GetPortlet(int index) const {
    const auto& portlets = View().GetStack().GetPortlets();
    return index >= 0 && index < static_cast<int>(portlets.size())
               ? portlets[static_cast<std::size_t>(index)].get()
               : nullptr;
}

int CTrvView1DInteractor::IndexOf(const CTrv1DGraphPortlet* portlet) const {
    const auto& portlets = View().GetStack().GetPortlets();
    const auto place =
        std::find_if(portlets.begin(), portlets.end(), [&](const auto& own) { return own.get() == portlet; });
    return place == portlets.end() ? -1 : static_cast<int>(place - portlets.begin());
}

void CTrvView1DInteractor::OnWheel(QWheelEvent& event) {
    const int turn = event.angleDelta().y() != 0 ? event.angleDelta().y() : event.angleDelta().x();
    const double notches = turn / static_cast<double>(QWheelEvent::DefaultDeltasPerStep);
    const auto keys = event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier);
    if (turn == 0 || keys == Qt::NoModifier) return; // the view scrolls
    if (keys & Qt::ControlModifier)
        View().GetLoader().ZoomTime(notches);
    else
        View().GetLoader().ScrollTime(-notches);
    event.accept();
}

void CTrvView1DInteractor::OnKeyPress(QKeyEvent& event) {
    const bool control = event.modifiers() & Qt::ControlModifier,
               shift = event.modifiers() & Qt::ShiftModifier;
    CTrvView1D& view = View();
    event.accept();
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (!shift) return event.ignore();
        MoveCursor((event.key() == Qt::Key_Left ? -1 : 1) * (control ? 10 : 1));
        break;
    case Qt::Key_Up:
    case Qt::Key_Down: {
        const int step = event.key() == Qt::Key_Up ? -1 : 1;
        if (control && shift)
            ChangeHeight(static_cast<float>(step) * kHeightStep);
        else
            view.SelectPortlet(view.GetStack().GetSelectedIndex() + step);
        break;
    }
    case Qt::Key_PageUp: view.verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepSub); break;
    case Qt::Key_PageDown: view.verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd); break;
    case Qt::Key_Space: SelectNextCurve(); break;
    case Qt::Key_Escape: OnCaptureLost(); break;
    default: event.ignore();
    }
}

// By pixels of the time axis, from the middle when it is out of sight.
void CTrvView1DInteractor::MoveCursor(int pixels) {
    const auto& stack = View().GetStack();
    auto& viewState = View().GetViewState();
    const float width = stack.GetPlotWidth();
    if (!stack.HasPeriod() || !(width > 0)) return;
    const auto& [start, end] = stack.GetPeriod();
    const double span = static_cast<double>((end - start).GetTicks());
    const auto present = viewState.GetCursor(ECursor::first);
    const auto at = [&](double ticks) {
        return start + Outils_Temps::CDateTimeSpan(static_cast<std::int64_t>(ticks));
    };
    if (!present || *present < start || *present > end) {
        viewState.SetCursor(ECursor::first, at(span / 2));
        return;
    }
    const double moved =
        static_cast<double>((*present - start).GetTicks()) + pixels * span / static_cast<double>(width);
    viewState.SetCursor(ECursor::first, at(std::clamp(moved, 0.0, span)));
}

// The next curve in the legend of the selected graph; after the last, none.
void CTrvView1DInteractor::SelectNextCurve() {
    CTrv1DGraphPortlet* portlet = View().GetStack().GetSelected();
    if (!portlet) return;
    auto& plot = portlet->GetPlot();
    const auto& series = plot.GetSeries();
    const auto place = std::find_if(series.begin(), series.end(), [&](const auto& serie) {
        return serie.get() == plot.GetSelectedSerie();
    });
    const auto next = place == series.end() ? series.begin() : place + 1;
    View().SelectSerie(next == series.end() ? nullptr : next->get());
}

void CTrvView1DInteractor::ChangeHeight(float pixels) {
    CTrv1DGraphPortlet* portlet = View().GetStack().GetSelected();
    if (!portlet) return;
    portlet->SetUserHeight(std::max(1.0f, portlet->GetRect().height + pixels));
    View().GetLoader().Relayout();
}

void CTrvView1DInteractorSelect::OnMousePress(QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return;
    auto& stack = View().GetStack();
    const SPoint point = View().ToStack(event.position());
    if (const auto* border = BorderAt(stack, point.y)) {
        m_dragged = IndexOf(border);
        return;
    }
    CTrv1DGraphPortlet* portlet = Presentation_Tarvel_Graphics::PortletAt(stack, point);
    if (!portlet) return;
    View().SelectPortlet(IndexOf(portlet));
    const unsigned hit = portlet->GetPlot().HitTest(point);
    if (hit & CPlot2D::HitLegend) {
        View().SelectSerie(portlet->GetPlot().GetLegend().SerieAt(point));
    } else if ((hit & CPlot2D::HitPlottingArea) && BeginGesture(event, *portlet)) {
        View().viewport()->setCursor(GetShape());
    }
}

void CTrvView1DInteractorSelect::OnMouseMove(QMouseEvent& event) {
    if (CTrv1DGraphPortlet* portlet = GetPortlet(m_dragged)) {
        const float height = View().ToStack(event.position()).y - portlet->GetRect().y;
        portlet->SetUserHeight(std::max(1.0f, height));
        View().GetLoader().Relayout();
        return;
    }
    CCursorInteractor::OnMouseMove(event);
    Hover(event.position());
}

void CTrvView1DInteractorSelect::OnMouseRelease(QMouseEvent& event) {
    if (event.button() == Qt::LeftButton) m_dragged = -1;
}

void CTrvView1DInteractorSelect::OnMouseLeave() { Hover(QPointF(-1e6, -1e6)); }

void CTrvView1DInteractorSelect::Hover(QPointF position) {
    auto& stack = View().GetStack();
    const SPoint point = View().ToStack(position);
    Qt::CursorShape shape = BorderAt(stack, point.y) ? Qt::SizeVerCursor : Qt::ArrowCursor;
    bool changed = false;
    for (const auto& portlet : stack.GetPortlets()) {
        auto& plot = portlet->GetPlot();
        const unsigned hit = plot.HitTest(point);
        CPlot2DSerie* hovered = hit & CPlot2D::HitLegend ? plot.GetLegend().SerieAt(point) : nullptr;
        if (shape == Qt::ArrowCursor && hit & CPlot2D::HitPlottingArea) shape = GetShape();
        changed = changed || plot.GetHoveredSerie() != hovered;
        plot.SetHoveredSerie(hovered);
    }
    if (View().viewport()->cursor().shape() != shape) View().viewport()->setCursor(shape);
    if (changed) View().Redraw();
}

bool CTrvView1DInteractorPan::BeginGesture(QMouseEvent& event, CTrv1DGraphPortlet& portlet) {
    m_gesture = SGesture{IndexOf(&portlet), event.position(), event.position()};
    View().GetLoader().BeginDrag();
    return true;
}

void CTrvView1DInteractorPan::OnMouseMove(QMouseEvent& event) {
    if (!m_gesture) return CTrvView1DInteractorSelect::OnMouseMove(event);
    const QPointF step = event.position() - m_gesture->last;
    m_gesture->last = event.position();
    // A hand does not move quite level: the values follow only once it is meant.
    const double away = event.position().y() - m_gesture->start.y();
    double dy = m_gesture->vertical ? step.y() : 0;
    if (!m_gesture->vertical && std::abs(away) >= kVerticalSlop) {
        m_gesture->vertical = true;
        dy = away;
    }
    const auto& stack = View().GetStack();
    View().GetViewState().SetView(DragView(stack, View().GetViewState().GetView(),
                                           GetPortlet(m_gesture->portlet), static_cast<float>(step.x()),
                                           static_cast<float>(dy)));
}

void CTrvView1DInteractorPan::OnMouseRelease(QMouseEvent& event) {
    CTrvView1DInteractorSelect::OnMouseRelease(event);
    if (event.button() == Qt::LeftButton) End(true);
}

void CTrvView1DInteractorPan::OnCaptureLost() {
    CTrvView1DInteractorSelect::OnCaptureLost();
    End(true);
}

void CTrvView1DInteractorPan::End(bool accept) {
    if (!std::exchange(m_gesture, std::nullopt)) return;
    View().viewport()->setCursor(GetShape());
    View().GetLoader().EndDrag(accept);
}

bool CTrvView1DInteractorZoom::BeginGesture(QMouseEvent& event, CTrv1DGraphPortlet& portlet) {
    m_gesture = SGesture{IndexOf(&portlet), event.position(), event.position()};
    return true;
}

void CTrvView1DInteractorZoom::OnMouseMove(QMouseEvent& event) {
    const CTrv1DGraphPortlet* portlet = m_gesture ? GetPortlet(m_gesture->portlet) : nullptr;
    if (!portlet) return CTrvView1DInteractorSelect::OnMouseMove(event);
    const SRect& area = portlet->GetPlottingRect();
    const double top = static_cast<double>(area.y - View().ToStack(QPointF()).y);
    const QPointF position = event.position();
    m_gesture->current = {
        std::clamp(position.x(), static_cast<double>(area.x), static_cast<double>(area.Right())),
        std::clamp(position.y(), top, top + static_cast<double>(area.height))};
    View().RedrawOverlay();
}

void CTrvView1DInteractorZoom::OnMouseRelease(QMouseEvent& event) {
    CTrvView1DInteractorSelect::OnMouseRelease(event);
    if (event.button() != Qt::LeftButton) return;
    const auto gesture = std::exchange(m_gesture, std::nullopt);
    const CTrv1DGraphPortlet* portlet = gesture ? GetPortlet(gesture->portlet) : nullptr;
    if (!portlet) return;
    View().RedrawOverlay();
    const QRectF band = QRectF(gesture->start, gesture->current).normalized();
    if (band.width() <= 0 || band.height() <= 0) return; // a plain click
    const auto left = static_cast<float>(band.left()), right = static_cast<float>(band.right());
    View().GetLoader().ShowPeriod(PeriodBetween(View().GetStack(), left, right));
}

void CTrvView1DInteractorZoom::OnCaptureLost() {
    CTrvView1DInteractorSelect::OnCaptureLost();
    if (std::exchange(m_gesture, std::nullopt)) View().RedrawOverlay();
}

void CTrvView1DInteractorZoom::Draw(QPainter& painter) {
    CTrvView1DInteractorSelect::Draw(painter);
    if (!m_gesture) return;
    painter.setPen(kBandBorder);
    painter.setBrush(kBandFill);
    painter.drawRect(QRectF(m_gesture->start, m_gesture->current).normalized());
}

} // namespace Application_Tarvel
