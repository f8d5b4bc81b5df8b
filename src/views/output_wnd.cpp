#include "views/output_wnd.h"

#include "foundation/texts.h"
#include "plot/text.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>

#include <memory>

namespace Application_Tarvel {

namespace {

constexpr int kMostLines = 100'000;
constexpr qsizetype kLongestLine = 4096; // characters
constexpr int kMarginPadding = 6;        // pixels, on either side of the time
constexpr auto kTimeFormat = "HH:mm:ss";

// A block of the document keeps its time as seconds of the day; without one its state is -1.
QTime GetBlockTime(const QTextBlock& block) {
    const int seconds = block.userState(); // -1 also for no block
    return seconds < 0 ? QTime() : QTime(0, 0).addSecs(seconds);
}

} // namespace

CTrvOutputWnd::CTrvOutputWnd(QWidget* parent) : QPlainTextEdit(parent), m_margin(new QWidget(this)) {
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setMaximumBlockCount(kMostLines);
    setFrameShape(QFrame::NoFrame);
    // Readable without a mouse: the caret can be moved through the text.
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setAccessibleName(Outils_Plot2D::ToQString(Outils_Texte::GetText(Outils_Texte::EText::outputTitle)));
    m_margin->installEventFilter(this);
    connect(this, &QPlainTextEdit::updateRequest, m_margin, [this] { m_margin->update(); });
    PlaceMargin();
}

void CTrvOutputWnd::AppendLine(std::string_view text, QTime time) {
    QString line = Outils_Plot2D::ToQString(text);
    for (qsizetype end = kLongestLine; end < line.size(); end += kLongestLine + 1) line.insert(end, u'\n');
    QTextCursor caret(document());
    caret.movePosition(QTextCursor::End);
    // The text begins in the empty last block, and its further lines are new blocks without a time.
    caret.block().setUserState(QTime(0, 0).secsTo(time));
    caret.insertText(line + u'\n');
    setTextCursor(caret);
    // Only after the last line feed is the caret in the first column: the view stays at the lines'
    // beginnings.
    ensureCursorVisible();
    horizontalScrollBar()->setValue(0);
}

QTime CTrvOutputWnd::GetTime(int line) const { return GetBlockTime(document()->findBlockByNumber(line)); }

void CTrvOutputWnd::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) PlaceMargin();
}

void CTrvOutputWnd::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    PlaceMargin();
}

bool CTrvOutputWnd::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_margin || event->type() != QEvent::Paint)
        return QPlainTextEdit::eventFilter(watched, event);
    PaintMargin();
    return true;
}

void CTrvOutputWnd::PlaceMargin() {
    const int width = fontMetrics().horizontalAdvance(QTime(0, 0).toString(kTimeFormat)) + 2 * kMarginPadding;
    setViewportMargins(width, 0, 0, 0);
    const QRect area = contentsRect();
    m_margin->setGeometry(area.left(), area.top(), width, area.height());
}

void CTrvOutputWnd::PaintMargin() {
    QPainter painter(m_margin);
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        const double top = blockBoundingGeometry(block).translated(contentOffset()).top();
        if (top > m_margin->height()) break;
        const QRectF line(0, top, m_margin->width(), fontMetrics().height());
        painter.drawText(line, Qt::AlignCenter, GetBlockTime(block).toString(kTimeFormat));
    }
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
