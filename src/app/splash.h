// The picture that bridges the start.
#pragma once

#include <QPointer>
#include <QSplashScreen>

namespace Application_Tarvel {

// Closes two seconds after the main window was named, or one after a click, and brings the main window to
// the front. Deletes itself. UI thread; nothing waits for it.
class CSplashWnd final : public QSplashScreen {
    Q_OBJECT

  public:
    CSplashWnd();
    // The start is over.
    void CloseFor(QWidget& window);

  protected:
    void mousePressEvent(QMouseEvent* event) override;

  private:
    void CloseIn(int milliseconds);
    void Finish();

    QPointer<QWidget> m_window;
};

} // namespace Application_Tarvel
