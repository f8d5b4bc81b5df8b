#include "views/output_wnd.h"

#include "plot/text.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QScrollBar>

#include <memory>

namespace Application_Tarvel {

namespace {

constexpr int kMostLines = 100'000;
constexpr qsizetype kLongestLine = 4096; // characters

} // namespace

CTrvOutputWnd::CTrvOutputWnd(QWidget* parent) : QPlainTextEdit(parent) {
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setMaximumBlockCount(kMostLines);
    setFrameShape(QFrame::NoFrame);
    // Readable without a mouse: the caret can be moved through the text.
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
}

void CTrvOutputWnd::AppendLine(std::string_view text) {
    QString line = Outils_Plot2D::ToQString(text);
    for (qsizetype end = kLongestLine; end < line.size(); end += kLongestLine + 1) line.insert(end, u'\n');
    QTextCursor caret(document());
    caret.movePosition(QTextCursor::End);
    caret.insertText(line + u'\n');
    setTextCursor(caret);
    // Only after the last line feed is the caret in the first column: the view stays at the lines'
    // beginnings.
    ensureCursorVisible();
    horizontalScrollBar()->setValue(0);
}

void CTrvOutputWnd::contextMenuEvent(QContextMenuEvent* event) {
    const std::unique_ptr<QMenu> menu(createStandardContextMenu(event->pos()));
    if (!actions().isEmpty()) {
        menu->addSeparator();
        menu->addActions(actions());
    }
    menu->exec(event->globalPos());
}

} // namespace Application_Tarvel
