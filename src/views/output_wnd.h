// The text panel in which runs and checks write their lines. UI thread.
#pragma once

#include <QPlainTextEdit>

#include <string_view>

namespace Application_Tarvel {

// Keeps the last hundred thousand lines. The context menu offers to copy, and the actions added to the panel.
class CTrvOutputWnd final : public QPlainTextEdit {
    Q_OBJECT

  public:
    explicit CTrvOutputWnd(QWidget* parent = nullptr);

    // Adds a line at the end, wherever the caret stands, and scrolls there. A line that is too long to be
    // laid out in good time is broken into several.
    void AppendLine(std::string_view text);

  protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
};

} // namespace Application_Tarvel
