#include "views/view_1d.h"

#include "config/config_file.h"
#include "document/edits.h"
#include "foundation/texts.h"
#include "graph/field_drop.h"
#include "plot/text.h"
#include "views/view_1d_interactors.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <cmath>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Texte::EText;

using namespace Presentation_Tarvel_Graphics;
using Outils_Configuration::Cnf;

namespace {

// The view has its own ground, so that curves look the same under every theme.
const QColor kGround(0xE9, 0xED, 0xF3);
const QColor kGroundText(0x5A, 0x64, 0x78);
constexpr int kScrollStep = 40; // pixels

} // namespace

CTrvView1D::CTrvView1D(CTrvDocument& document, Outils_Configuration::CTrvCnfConfigFile& configuration,
                       const Outils_Valeurs::CTrvAdaptors& adaptors, Outils_Plot2D::CPlot2DSettings& settings,
                       QWidget* parent)
    : CInteractorView(parent), m_configuration(configuration), m_loader(document, adaptors, settings) {
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(Text(EText::graphs));
    setAccessibleDescription(Text(EText::graphsHelp));
    verticalScrollBar()->setSingleStep(kScrollStep);
    m_loader.SetOnChanged([this](bool layout) { OnLoaderChanged(layout); });
    Reformat();
    SetMode(EView1DMode::select);
}

CTrvView1D::~CTrvView1D() { m_loader.SetOnChanged({}); }

void CTrvView1D::SetMode(EView1DMode mode) {
    m_mode = mode;
    switch (mode) {
    case EView1DMode::select: SetInteractor(std::make_unique<CTrvView1DInteractorSelect>(*this)); break;
    case EView1DMode::pan: SetInteractor(std::make_unique<CTrvView1DInteractorPan>(*this)); break;
    case EView1DMode::zoom: SetInteractor(std::make_unique<CTrvView1DInteractorZoom>(*this)); break;
    }
    Q_EMIT StateChanged();
}

void CTrvView1D::SetLegendsVisible(bool visible) {
    m_configuration.Set(Cnf<"view1D/showGraphLegends">, visible);
    m_loader.SetLegendsVisible(visible);
    Q_EMIT StateChanged();
}

void CTrvView1D::SetEcho(bool on) {
    m_configuration.Set(Cnf<"viewValue/echoToGraph">, on);
    m_echo = on;
    RedrawOverlay();
    Q_EMIT StateChanged();
}

void CTrvView1D::Reformat() {
    m_cursorLook.colour = m_configuration.Get(Cnf<"view1D/cursor/color">).argb;
    m_cursorLook.width = static_cast<float>(m_configuration.Get(Cnf<"view1D/cursor/width">));
    m_cursorLook.echoColour = m_configuration.Get(Cnf<"view1D/echo/color">).argb;
    m_cursorLook.echoWidth = static_cast<float>(m_configuration.Get(Cnf<"view1D/echo/width">));
    m_cursorLook.echoSize = static_cast<float>(m_configuration.Get(Cnf<"view1D/echo/size">));
    m_echo = m_configuration.Get(Cnf<"viewValue/echoToGraph">);
    m_loader.Reformat();
    Q_EMIT StateChanged();
}

SPoint CTrvView1D::ToStack(QPointF position) const {
    return {static_cast<float>(position.x()),
            static_cast<float>(position.y() + verticalScrollBar()->value())};
}

void CTrvView1D::SetCursorTime(std::optional<CDateTimeSpan> time) {
    if (m_cursorTime == time) return;
    m_cursorTime = time;
    RedrawOverlay();
    Q_EMIT CursorMoved(time.value_or(CDateTimeSpan::Invalid()));
}

void CTrvView1D::DrawCursor(QPainter& painter) {
    if (!m_cursorTime) return;
    painter.save();
    painter.translate(0, -verticalScrollBar()->value());
    CGraphics graphics(painter);
    Presentation_Tarvel_Graphics::DrawCursor(GetStack(), graphics, *m_cursorTime, m_cursorLook, m_echo);
    painter.restore();
}

void CTrvView1D::SelectPortlet(int index) {
    GetStack().Select(index);
    ShowSelected();
    Redraw();
    Q_EMIT StateChanged();
}

void CTrvView1D::SelectSerie(Outils_Plot2D::CPlot2DSerie* serie) {
    for (const auto& portlet : GetStack().GetPortlets()) portlet->GetPlot().SetSelectedSerie(nullptr);
    if (CTrv1DGraphPortlet* selected = GetStack().GetSelected()) selected->GetPlot().SetSelectedSerie(serie);
    Redraw();
    Q_EMIT StateChanged();
}

bool CTrvView1D::HasSelectedCurve() const {
    CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    return portlet && portlet->GetGraph() && portlet->GetPlot().GetSelectedSerie();
}

void CTrvView1D::DeleteSelectedCurve() {
    if (!HasSelectedCurve()) return;
    CTrv1DGraphPortlet& portlet = *GetStack().GetSelected();
    const auto* curve = portlet.GetCurve(portlet.GetPlot().GetSelectedSerie());
    auto edits = m_loader.GetDocument().GetEdits();
    // The document reports the edit to the loader, which destroys the serie, and a chronogram's portlet.
    if (curve)
        edits.Do(Edits::kRemove1DCurve, *curve);
    else
        edits.Do(Edits::kRemove1DGraph, *portlet.GetGraph());
    Q_EMIT StateChanged();
}

bool CTrvView1D::CanDrop(QPointF position, const Outils_Objets::CObject& field) const {
    const auto* project = m_loader.GetDocument().GetProject();
    return project &&
           Presentation_Tarvel_Graphics::CanDrop(*project, PortletAt(GetStack(), ToStack(position)), field);
}

bool CTrvView1D::Drop(QPointF position, const Outils_Objets::CObject& field) {
    if (!CanDrop(position, field)) return false;
    setFocus();
    return Presentation_Tarvel_Graphics::Drop(m_loader.GetDocument(),
                                              PortletAt(GetStack(), ToStack(position)), field);
}

void CTrvView1D::ShowSelected() {
    const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    if (!portlet) return;
    const int top = static_cast<int>(portlet->GetRect().y);
    const int bottom = static_cast<int>(std::ceil(portlet->GetRect().Bottom()));
    QScrollBar& bar = *verticalScrollBar();
    if (bottom > bar.value() + viewport()->height()) bar.setValue(bottom - viewport()->height());
    if (top < bar.value()) bar.setValue(top);
}

void CTrvView1D::Redraw() {
    m_backingValid = false;
    viewport()->update();
}

void CTrvView1D::OnLoaderChanged(bool layout) {
    if (layout) UpdateScrollBar();
    Redraw();
}

void CTrvView1D::FitToWindow() {
    const QSize size = viewport()->size();
    m_loader.SetViewSize({static_cast<float>(size.width()), static_cast<float>(size.height())},
                         devicePixelRatioF());
    UpdateScrollBar();
    Redraw();
}

void CTrvView1D::UpdateScrollBar() {
    const int height = static_cast<int>(std::ceil(GetStack().GetHeight()));
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(0, height - viewport()->height()));
}

void CTrvView1D::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    if (!m_menu || !m_loader.HasProject()) return;
    QPoint position = event->pos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
        const SRect area = portlet ? portlet->GetPlottingRect() : SRect{};
        position = QPoint(static_cast<int>(area.x), static_cast<int>(area.y) - verticalScrollBar()->value());
    } else if (const CTrv1DGraphPortlet* portlet = PortletAt(GetStack(), ToStack(position))) {
        GetStack().Select(portlet);
        Redraw();
        Q_EMIT StateChanged();
    }
    m_menu->popup(viewport()->mapToGlobal(position));
}

void CTrvView1D::keyPressEvent(QKeyEvent* event) {
    // Some keyboards have a sign such as "+" on a Shift level: there Shift is no part of the command.
    const bool isSign = event->key() > Qt::Key_Space && event->key() < Qt::Key_A;
    const auto modifiers = event->modifiers() & ~(isSign ? Qt::KeypadModifier | Qt::ShiftModifier
                                                         : Qt::KeyboardModifiers(Qt::KeypadModifier));
    const QKeySequence pressed(QKeyCombination(modifiers, static_cast<Qt::Key>(event->key())));
    for (const auto& [key, action] : m_keys) {
        if (key != pressed) continue;
        action->trigger(); // ignored while it is disabled
        return event->accept();
    }
    CInteractorView::keyPressEvent(event);
}

void CTrvView1D::resizeEvent(QResizeEvent*) { FitToWindow(); }

void CTrvView1D::scrollContentsBy(int, int) { Redraw(); }

void CTrvView1D::paintEvent(QPaintEvent* event) {
    const double ratio = devicePixelRatioF();
    if (m_backing.size() != viewport()->size() * ratio || m_backing.devicePixelRatio() != ratio) {
        m_backing = QPixmap(viewport()->size() * ratio);
        m_backing.setDevicePixelRatio(ratio);
        FitToWindow(); // also when the window came to a screen of another density
    }
    if (!m_backingValid) PaintBacking();
    QPainter painter(viewport());
    painter.drawPixmap(QPointF(), m_backing);
    if (GetInteractor()) GetInteractor()->Draw(painter);
    event->accept();
}

void CTrvView1D::PaintBacking() {
    m_backing.fill(kGround);
    m_backingValid = true;
    QPainter painter(&m_backing);
    if (!m_loader.HasProject()) {
        painter.setPen(kGroundText);
        painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, Text(EText::noProject));
        return;
    }
    const int top = verticalScrollBar()->value();
    painter.translate(0, -top);
    CGraphics graphics(painter);
    DrawStack(GetStack(), graphics,
              {0, static_cast<float>(top), static_cast<float>(viewport()->width()),
               static_cast<float>(viewport()->height())},
              true);
}

} // namespace Application_Tarvel
