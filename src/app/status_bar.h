// The status bar: message, progress of a run, and the states of the lock keys. UI thread.
#pragma once

#include <QStatusBar>
#include <QTimer>

#include <array>

class QLabel;
class QProgressBar;
class QToolButton;

namespace Application_Tarvel {

class CTrvStatusBar final : public QStatusBar {
    Q_OBJECT

  public:
    explicit CTrvStatusBar(QWidget* parent = nullptr);

    // What the message pane says while no command explains itself there.
    void SetMessage(const QString& text);
    // 0 to 100; what lies outside is brought to the nearer end.
    void SetProgress(int percent);
    void ShowProgress(bool visible);
    // How many values of the project are wrong; a click on the count goes to the next.
    void SetFaults(std::size_t count);

  Q_SIGNALS:
    void NextFaultRequested();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void ReadLocks();

    QLabel* m_message;
    QProgressBar* m_progress;
    QToolButton* m_faults;
    std::array<QLabel*, 3> m_locks; // in the order of ELock
    QTimer m_settle;                // from a press of a lock key until its light has changed
};

} // namespace Application_Tarvel
