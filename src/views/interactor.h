// A view whose mouse and keys go to one exchangeable object, and the base of such objects. UI thread.
#pragma once

#include <QAbstractScrollArea>

#include <memory>

class QPainter;

namespace Outils_Application {

class CInteractorView;

// Turns the gestures of the mouse into one kind of action. Positions of events are in pixels of the view's
// window.
class CInteractor {
  public:
    explicit CInteractor(CInteractorView& view) : m_view(view) {}
    virtual ~CInteractor() = default;

    virtual void OnMousePress(QMouseEvent&) {}
    virtual void OnMouseMove(QMouseEvent&) {}
    virtual void OnMouseRelease(QMouseEvent&) {}
    virtual void OnMouseDoubleClick(QMouseEvent&) {}
    virtual void OnMouseLeave() {}
    virtual void OnWheel(QWheelEvent&) {}
    virtual void OnKeyPress(QKeyEvent&) {}
    virtual void OnKeyRelease(QKeyEvent&) {}
    // The gesture under way ends without effect: the mouse was taken away or the interactor is to go.
    virtual void OnCaptureLost() {}
    // Draws over the picture of the view.
    virtual void Draw(QPainter&) {}

    CInteractorView& GetView() const { return m_view; }

  private:
    CInteractorView& m_view; // Not owned: holds the interactor.
};

class CInteractorView : public QAbstractScrollArea {
    Q_OBJECT

  public:
    explicit CInteractorView(QWidget* parent = nullptr);
    ~CInteractorView() override;

    // Null: events have no effect. A gesture of the former interactor ends.
    void SetInteractor(std::unique_ptr<CInteractor> interactor);
    CInteractor* GetInteractor() const { return m_interactor.get(); }

  protected:
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    std::unique_ptr<CInteractor> m_interactor;
};

} // namespace Outils_Application
