#include "views/interactor.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace Outils_Application {

CInteractorView::CInteractorView(QWidget* parent) : QAbstractScrollArea(parent) {
    viewport()->setMouseTracking(true);
}

CInteractorView::~CInteractorView() = default;

void CInteractorView::SetInteractor(std::unique_ptr<CInteractor> interactor) {
    if (m_interactor) m_interactor->OnCaptureLost();
    m_interactor = std::move(interactor);
}

bool CInteractorView::viewportEvent(QEvent* event) {
    if (m_interactor && event->type() == QEvent::Leave) m_interactor->OnMouseLeave();
    return QAbstractScrollArea::viewportEvent(event);
}

void CInteractorView::mousePressEvent(QMouseEvent* event) {
    if (m_interactor) m_interactor->OnMousePress(*event);
}

void CInteractorView::mouseMoveEvent(QMouseEvent* event) {
    if (m_interactor) m_interactor->OnMouseMove(*event);
}

void CInteractorView::mouseReleaseEvent(QMouseEvent* event) {
    if (m_interactor) m_interactor->OnMouseRelease(*event);
}

void CInteractorView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (m_interactor) m_interactor->OnMouseDoubleClick(*event);
}

void CInteractorView::wheelEvent(QWheelEvent* event) {
    event->ignore();
    if (m_interactor) m_interactor->OnWheel(*event);
    if (!event->isAccepted()) QAbstractScrollArea::wheelEvent(event);
}

void CInteractorView::keyPressEvent(QKeyEvent* event) {
    event->ignore();
    if (m_interactor) m_interactor->OnKeyPress(*event);
    if (!event->isAccepted()) QAbstractScrollArea::keyPressEvent(event);
}

void CInteractorView::keyReleaseEvent(QKeyEvent* event) {
    if (m_interactor) m_interactor->OnKeyRelease(*event);
    QAbstractScrollArea::keyReleaseEvent(event);
}

void CInteractorView::focusOutEvent(QFocusEvent* event) {
    if (m_interactor) m_interactor->OnCaptureLost();
    QAbstractScrollArea::focusOutEvent(event);
}

} // namespace Outils_Application
