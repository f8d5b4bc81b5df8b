// The window of every tool: its fields in a grid, the messages of the program, progress, and one button that
// starts and cancels. UI thread.
#pragma once

#include "dialogs/tool_dialog.h"

#include <QDialog>
#include <QTimer>

class QLabel;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

namespace Application_Tarvel {

class CTrvGridView;

class CToolWindow final : public QDialog, private Dialogue_Tarvel::IToolDialogListener {
    Q_OBJECT

  public:
    // `logic` must outlive the window.
    CToolWindow(QWidget* parent, Dialogue_Tarvel::CToolDialog& logic);
    ~CToolWindow() override;

    // Refused while the tool runs.
    void reject() override;

  protected:
    // Enter in the grid starts the tool; F2 or typing edits.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void OnToolMessage(int level, const std::string& text) override;
    void OnToolEnded() override { ShowState(); }
    void MakeContent();
    void StartOrCancel();
    void Poll();
    void ShowState();
    void ShowCommandLine();
    void CopyMessages();
    void RestoreSize();
    void StoreSize();

    Dialogue_Tarvel::CToolDialog& m_logic;
    QTimer m_timer;
    // Owned by the window.
    CTrvGridView* m_grid = nullptr;
    QListWidget* m_messages = nullptr;
    QPlainTextEdit* m_commandLine = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_start = nullptr;
    QPushButton* m_close = nullptr;
};

} // namespace Application_Tarvel
