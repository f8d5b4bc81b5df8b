#include "views/view_1d.h"

#include "config/config_file.h"
#include "plot/text.h"
#include "views/view_1d_interactors.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <cmath>

namespace Application_Tarvel {

using Outils_Texte::EText;

using namespace Presentation_Tarvel_Graphics;
using Outils_Configuration::Cnf;

namespace {

// The view has grounds of its own, so that curves look the same under every theme.
const QColor kGround(0xE9, 0xED, 0xF3);
const QColor kGroundText(0x5A, 0x64, 0x78);
constexpr int kScrollStep = 40; // pixels

} // namespace

CTrvView1D::CTrvView1D(CTrvDocument& document, const Outils_Valeurs::CTrvAdaptors& adaptors,
                       Outils_Plot2D::CPlot2DSettings& settings, QWidget* parent)
    : CInteractorView(parent), m_loader(document, adaptors, settings) {
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(Text(EText::graphs));
    setAccessibleDescription(Text(EText::graphsHelp));
    verticalScrollBar()->setSingleStep(kScrollStep);
    m_echo = document.GetConfiguration().Get(Cnf<"viewValue/echoToGraph">);
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

void CTrvView1D::ToggleLegends() {
    m_loader.ToggleLegends();
    Q_EMIT StateChanged();
}

void CTrvView1D::SetEcho(bool on) {
    m_echo = on;
    RedrawOverlay();
    Q_EMIT StateChanged();
}

void CTrvView1D::Reformat() {
    const auto& configuration = m_loader.GetDocument().GetConfiguration();
    m_cursorLook.colour = configuration.Get(Cnf<"view1D/cursor/color">).argb;
    m_cursorLook.width = static_cast<float>(configuration.Get(Cnf<"view1D/cursor/width">));
    m_cursorLook.echoColour = configuration.Get(Cnf<"view1D/echo/color">).argb;
    m_cursorLook.echoWidth = static_cast<float>(configuration.Get(Cnf<"view1D/echo/width">));
    m_cursorLook.echoSize = static_cast<float>(configuration.Get(Cnf<"view1D/echo/size">));
    m_loader.Reformat();
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
    GetStack().DrawCursor(graphics, *m_cursorTime, m_cursorLook, m_echo);
    painter.restore();
}

void CTrvView1D::SelectPortlet(int index) {
    GetStack().Select(index);
    ShowSelected();
    Redraw();
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
    GetStack().Draw(graphics, {0, static_cast<float>(top), static_cast<float>(viewport()->width()),
                               static_cast<float>(viewport()->height())});
}

} // namespace Application_Tarvel
