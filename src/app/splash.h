// The picture that bridges the start.
#pragma once

#include <QPointer>
#include <QSplashScreen>

namespace Application_Tarvel {

// Hides as soon as the main window is finished or a question is asked, so that it covers neither. Ends two
// seconds after the main window was named, or one after a click, and then brings that window to the front.
// Deletes itself. UI thread; nothing waits for it.
class CSplashWnd final : public QSplashScreen {
    Q_OBJECT

  public:
    CSplashWnd();
    // The start is over.
    void CloseFor(QWidget& window);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void CloseIn(int milliseconds);
    void Finish();

    QPointer<QWidget> m_window;
};

} // namespace Application_Tarvel
