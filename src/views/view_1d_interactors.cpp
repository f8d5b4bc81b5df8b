#include "views/view_1d_interactors.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;

namespace {

constexpr double kVerticalSlop = 8; // pixels that a drag along the time may leave its height
constexpr float kHeightStep = 20;
constexpr int kManySamples = 10;
const QColor kBandFill(0x99, 0xDE, 0xFE, 0x50);
const QColor kBandBorder(0x46, 0x82, 0xB4);

template <class T>
double ToDouble(T value) {
    return static_cast<double>(value);
}

// The keys that are no command of a menu.
struct SKeyRow {
    int key;
    Qt::KeyboardModifiers modifiers;
    void (*run)(CTrvView1D&);
};
template <int step>
void Select(CTrvView1D& view) {
    view.SelectPortlet(view.GetStack().GetSelectedIndex() + step);
}
template <int step>
void ChangeHeight(CTrvView1D& view) {
    view.ChangeSelectedHeight(static_cast<float>(step) * kHeightStep);
}
template <int steps>
void Step(CTrvView1D& view) {
    view.StepCursor(steps);
}
constexpr Qt::KeyboardModifiers kNone, kShift = Qt::ShiftModifier, kControl = Qt::ControlModifier,
                                       kAlt = Qt::AltModifier;
constexpr SKeyRow kKeys[] = {
    {Qt::Key_Left, kNone, Step<-1>},
    {Qt::Key_Right, kNone, Step<1>},
    {Qt::Key_Left, kShift, Step<-kManySamples>},
    {Qt::Key_Right, kShift, Step<kManySamples>},
    {Qt::Key_Left, kControl, [](CTrvView1D& view) { view.StepToChange(false); }},
    {Qt::Key_Right, kControl, [](CTrvView1D& view) { view.StepToChange(true); }},
    {Qt::Key_Up, kNone, Select<-1>},
    {Qt::Key_Down, kNone, Select<1>},
    {Qt::Key_Up, kAlt, ChangeHeight<-1>},
    {Qt::Key_Down, kAlt, ChangeHeight<1>},
    {Qt::Key_Home, kNone, [](CTrvView1D& view) { view.GetLoader().ShowBegin(); }},
    {Qt::Key_End, kNone, [](CTrvView1D& view) { view.GetLoader().ShowEnd(); }},
    {Qt::Key_PageUp, kNone, [](CTrvView1D& view) { view.GetLoader().PageTime(-1); }},
    {Qt::Key_PageDown, kNone, [](CTrvView1D& view) { view.GetLoader().PageTime(1); }},
    // The first cursor takes the place of the second, for an interval without a mouse.
    {Qt::Key_Insert, kNone, [](CTrvView1D& view) { view.SetSecondCursorHere(); }},
};

} // namespace

CTrv1DGraphPortlet* CTrvView1DInteractor::GetPortlet(int index) const {
    const auto& portlets = View().GetStack().GetPortlets();
    return index >= 0 && index < static_cast<int>(portlets.size())
               ? portlets[static_cast<std::size_t>(index)].get()
               : nullptr;
}

void CTrvView1DInteractor::OnMousePress(QMouseEvent& event) {
    if (m_gesture) return;
    View().EndWheel();
    const auto& stack = View().GetStack();
    const SGraphHit hit = View().Hit(event.position());
    const auto strip = View().HitStrip(event.position());
    if (strip && event.button() == Qt::LeftButton) View().GetLoader().ShowPeriod(strip->period);
    if (!hit.portlet) return;
    const int index = IndexOf(stack, hit.portlet);
    const QPointF at = event.position();
    const bool left = event.button() == Qt::LeftButton;
    const bool control = event.modifiers() & Qt::ControlModifier,
               shift = event.modifiers() & Qt::ShiftModifier;
    if (event.button() == Qt::MiddleButton || (left && m_space)) {
        m_spaceUsed = m_spaceUsed || left;
        View().SelectPortlet(index);
        return Begin({EView1DGesture::pan, event.button(), index, at, at});
    }
    if (!left) return;
    if (hit.part == EGraphPart::border) return Begin({EView1DGesture::border, event.button(), index, at, at});
    View().SelectPortlet(index);
    if (hit.serie) return ClickLegend(hit);
    if (hit.part != EGraphPart::plot) return;
    SGesture gesture{control ? EView1DGesture::band : GetLeftGesture(), event.button(), index, at, at};
    gesture.values = shift;
    gesture.cursor = shift ? ECursor::second : ECursor::first;
    Begin(gesture);
}

void CTrvView1DInteractor::ClickLegend(const SGraphHit& hit) {
    if (hit.part == EGraphPart::legendBox)
        View().SetCurveVisible(*hit.portlet, *hit.serie, !hit.serie->IsVisible());
    else
        View().SelectSerie(hit.serie);
}

void CTrvView1DInteractor::Begin(SGesture gesture) {
    m_gesture = gesture;
    if (gesture.kind == EView1DGesture::pan) View().GetLoader().BeginDrag();
    if (gesture.kind == EView1DGesture::cursor) PutCursor(gesture.start);
    Hover(gesture.start);
}

void CTrvView1DInteractor::OnMouseMove(QMouseEvent& event) {
    CTrv1DGraphPortlet* portlet = m_gesture ? GetPortlet(m_gesture->portlet) : nullptr;
    if (!portlet) return Hover(event.position());
    const QPointF position = event.position();
    switch (m_gesture->kind) {
    case EView1DGesture::border:
        portlet->SetUserHeight(std::max(1.0f, View().ToStack(position).y - portlet->GetRect().y));
        View().GetLoader().Relayout();
        break;
    case EView1DGesture::pan: Pan(position); break;
    case EView1DGesture::band: {
        const SRect& area = portlet->GetPlottingRect();
        const double top = ToDouble(area.y - View().ToStack(QPointF()).y);
        m_gesture->last = {std::clamp(position.x(), ToDouble(area.x), ToDouble(area.Right())),
                           std::clamp(position.y(), top, top + ToDouble(area.height))};
        View().RedrawOverlay();
        break;
    }
    case EView1DGesture::cursor: PutCursor(position); break;
    }
}

void CTrvView1DInteractor::Pan(QPointF position) {
    const QPointF step = position - std::exchange(m_gesture->last, position);
    // A hand does not move quite level: the values follow only once it is meant.
    const double away = position.y() - m_gesture->start.y();
    double dy = m_gesture->vertical ? step.y() : 0;
    if (!m_gesture->vertical && std::abs(away) >= kVerticalSlop) {
        m_gesture->vertical = true;
        dy = away;
    }
    auto& viewState = View().GetViewState();
    viewState.SetView(DragView(View().GetStack(), viewState.GetView(), GetPortlet(m_gesture->portlet),
                               static_cast<float>(step.x()), static_cast<float>(dy)));
}

void CTrvView1DInteractor::PutCursor(QPointF position) {
    const auto& stack = View().GetStack();
    const CTrv1DGraphPortlet* portlet = GetPortlet(m_gesture->portlet);
    if (!portlet) return;
    const SRect& area = portlet->GetPlottingRect();
    Outils_Temps::CDateTimeSpan time;
    if (TimeAt(stack, std::clamp(View().ToStack(position).x, area.x, area.Right()), time))
        View().GetViewState().SetCursor(m_gesture->cursor, time);
}

void CTrvView1DInteractor::OnMouseRelease(QMouseEvent& event) {
    if (m_gesture && event.button() == m_gesture->button) Finish();
    Hover(event.position());
}

void CTrvView1DInteractor::Finish() {
    const auto gesture = std::exchange(m_gesture, std::nullopt);
    if (!gesture) return;
    if (gesture->kind == EView1DGesture::pan) View().GetLoader().EndDrag(true);
    if (gesture->kind == EView1DGesture::band) ShowBand(*gesture);
}

void CTrvView1DInteractor::ShowBand(const SGesture& band) {
    View().RedrawOverlay();
    const auto* portlet = GetPortlet(band.portlet);
    const QRectF rect = QRectF(band.start, band.last).normalized();
    if (!portlet || rect.width() <= 0 || rect.height() <= 0) return; // a plain click
    SView view = View().GetViewState().GetView();
    view.period =
        PeriodBetween(View().GetStack(), static_cast<float>(rect.left()), static_cast<float>(rect.right()));
    const auto* measure = dynamic_cast<const CTrv1DGraphMeasurePortlet*>(portlet);
    if (band.values && measure) {
        const SRect& area = measure->GetPlottingRect();
        const SRange range = measure->GetRange();
        const auto toValue = [&](double y) {
            const float up = area.Bottom() - View().ToStack({0, y}).y;
            return range.low + range.GetWidth() * static_cast<double>(up / area.height);
        };
        view.ranges[measure->GetKey()] = {toValue(rect.bottom()), toValue(rect.top())};
    }
    View().GetViewState().SetView(view);
}

void CTrvView1DInteractor::OnMouseDoubleClick(QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) return;
    const SGraphHit hit = View().Hit(event.position());
    switch (hit.part) {
    case EGraphPart::plot:
    case EGraphPart::timeAxis: View().GetLoader().ViewAll(); break;
    case EGraphPart::valueAxis: Q_EMIT View().RangeRequested(); break;
    case EGraphPart::legendRow: Q_EMIT View().PropertiesRequested(); break;
    case EGraphPart::legendBox: ClickLegend(hit); break; // two quick clicks are two clicks
    case EGraphPart::border: View().GetLoader().EqualHeights(); break;
    default: break;
    }
}

void CTrvView1DInteractor::OnMouseLeave() {
    if (!m_gesture) Hover(QPointF(-1e6, -1e6));
}

void CTrvView1DInteractor::OnWheel(QWheelEvent& event) {
    const QPoint turn = event.angleDelta();
    const bool sideways = turn.y() == 0;
    const double notches = (sideways ? turn.x() : turn.y()) / ToDouble(QWheelEvent::DefaultDeltasPerStep);
    const SPoint point = View().ToStack(event.position());
    const SGraphHit hit = View().Hit(event.position());
    const bool inPlot = hit.part == EGraphPart::plot || hit.part == EGraphPart::timeAxis;
    auto& loader = View().GetLoader();
    if (notches == 0 || m_gesture) return;
    if (event.modifiers() & Qt::ControlModifier || hit.part == EGraphPart::valueAxis) {
        const auto* measure = dynamic_cast<const CTrv1DGraphMeasurePortlet*>(hit.portlet);
        if (!measure || hit.part == EGraphPart::border) return event.accept();
        const SRect& area = measure->GetPlottingRect();
        const float up = std::clamp((area.Bottom() - point.y) / area.height, 0.0f, 1.0f);
        View().BeginWheel();
        loader.ZoomValuesAt(*measure, notches,
                            measure->GetMinimum() + measure->GetRange().GetWidth() * ToDouble(up));
    } else if (event.modifiers() & Qt::ShiftModifier || sideways) {
        View().BeginWheel();
        loader.ScrollTime(-notches);
    } else if (Outils_Temps::CDateTimeSpan at; inPlot && TimeAt(View().GetStack(), point.x, at)) {
        View().BeginWheel();
        loader.ZoomTimeAt(notches, at);
    } else
        return; // the view scrolls
    event.accept();
}

void CTrvView1DInteractor::OnKeyPress(QKeyEvent& event) {
    View().EndWheel();
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    event.accept();
    if (event.key() == Qt::Key_Escape) return Cancel();
    if (event.key() == Qt::Key_Space && modifiers == kNone) {
        if (!event.isAutoRepeat()) m_spaceUsed = false;
        m_space = true;
        return;
    }
    const auto row = std::ranges::find_if(
        kKeys, [&](const SKeyRow& own) { return own.key == event.key() && own.modifiers == modifiers; });
    if (row == std::end(kKeys))
        event.ignore();
    else
        row->run(View());
}

// Space alone selects; held, it makes the left button drag the picture.
void CTrvView1DInteractor::OnKeyRelease(QKeyEvent& event) {
    if (event.key() != Qt::Key_Space || event.isAutoRepeat() || !std::exchange(m_space, false)) return;
    if (!m_spaceUsed) View().SelectNextCurve();
}

void CTrvView1DInteractor::Hover(QPointF position) {
    const SGraphHit hit = View().Hit(position);
    bool changed = false;
    for (const auto& portlet : View().GetStack().GetPortlets()) {
        auto& plot = portlet->GetPlot();
        CPlot2DSerie* hovered = portlet.get() == hit.portlet ? hit.serie : nullptr;
        changed = changed || plot.GetHoveredSerie() != hovered;
        plot.SetHoveredSerie(hovered);
    }
    const Qt::CursorShape shape = View().HitStrip(position) ? Qt::PointingHandCursor : GetShape(hit);
    if (View().viewport()->cursor().shape() != shape) View().viewport()->setCursor(shape);
    if (changed) View().Redraw();
}

Qt::CursorShape CTrvView1DInteractor::GetShape(const SGraphHit& hit) const {
    if (m_gesture && m_gesture->kind == EView1DGesture::pan) return Qt::ClosedHandCursor;
    if (hit.part == EGraphPart::border || (m_gesture && m_gesture->kind == EView1DGesture::border))
        return Qt::SizeVerCursor;
    if (hit.part == EGraphPart::legendBox) return Qt::PointingHandCursor;
    if (hit.part != EGraphPart::plot) return Qt::ArrowCursor;
    if (m_space) return Qt::OpenHandCursor;
    switch (GetLeftGesture()) {
    case EView1DGesture::pan: return Qt::OpenHandCursor;
    case EView1DGesture::band: return Qt::CrossCursor;
    default: return Qt::ArrowCursor;
    }
}

void CTrvView1DInteractor::Cancel() {
    const auto gesture = std::exchange(m_gesture, std::nullopt);
    if (!gesture) return;
    if (gesture->kind == EView1DGesture::pan) View().GetLoader().EndDrag(false);
    View().RedrawOverlay();
}

void CTrvView1DInteractor::OnCaptureLost() {
    m_space = false;
    if (m_gesture && m_gesture->kind == EView1DGesture::pan)
        Finish(); // what was dragged stays
    else
        Cancel();
}

void CTrvView1DInteractor::Draw(QPainter& painter) {
    CCursorInteractor::Draw(painter);
    if (!m_gesture || m_gesture->kind != EView1DGesture::band) return;
    QRectF band = QRectF(m_gesture->start, m_gesture->last).normalized();
    const auto* portlet = GetPortlet(m_gesture->portlet);
    if (!m_gesture->values && portlet && !band.isEmpty()) { // the whole height will be shown
        const SRect& area = portlet->GetPlottingRect();
        band.setTop(ToDouble(area.y - View().ToStack(QPointF()).y));
        band.setHeight(ToDouble(area.height));
    }
    painter.setPen(kBandBorder);
    painter.setBrush(kBandFill);
    painter.drawRect(band);
}

} // namespace Application_Tarvel
