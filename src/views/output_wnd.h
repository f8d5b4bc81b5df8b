// The text panel in which runs and checks write their lines. UI thread.
#pragma once

#include <QPlainTextEdit>
#include <QTime>

#include <string_view>

namespace Application_Tarvel {

// Keeps the last hundred thousand lines. The margin shows the time at which each text came; the times are no
// part of the text, so that copied lines are the lines as they were written. The context menu offers to copy,
// and the actions added to the panel.
class CTrvOutputWnd final : public QPlainTextEdit {
    Q_OBJECT

  public:
    explicit CTrvOutputWnd(QWidget* parent = nullptr);

    // Adds a text at the end, wherever the caret is, and scrolls there. A line that is too long to be laid
    // out in good time is broken into several. `time` is shown beside the first line, in whole seconds.
    void AppendLine(std::string_view text, QTime time = QTime::currentTime());
    // The time shown beside a line, counted from 0; invalid for the further lines of a text, and when there
    // is no such line.
    QTime GetTime(int line) const;

  protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void PlaceMargin();
    void PaintMargin();

    QWidget* m_margin; // Owned as a child.
};

} // namespace Application_Tarvel
