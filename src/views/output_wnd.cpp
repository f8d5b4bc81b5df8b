#include "views/output_wnd.h"

#include "foundation/texts.h"
#include "plot/text.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTextBlock>
#include <QToolTip>

#include <algorithm>
#include <memory>

namespace Application_Tarvel {

using namespace Communication_Interfaces;
using Outils_Plot2D::Text;
using Outils_Texte::EText;

namespace {

constexpr int kMostLines = 100'000;
constexpr qsizetype kLongestLine = 4096; // characters
constexpr int kMarginPadding = 6;        // pixels, beside the time and the icon
constexpr auto kTimeFormat = "HH:mm:ss";

// What a block knows of its text. Its time is the state of the first block, as seconds of the day; further
// blocks have the state -1.
struct SBlockData final : QTextBlockUserData {
    int level = levelInformation;
    const Outils_Objets::CObject* subject = nullptr;
};

const SBlockData* GetData(const QTextBlock& block) { return static_cast<const SBlockData*>(block.userData()); }

QTime GetBlockTime(const QTextBlock& block) {
    const int seconds = block.userState(); // -1 also for no block
    return seconds < 0 ? QTime() : QTime(0, 0).addSecs(seconds);
}

// The engine may send any number: one that means nothing is no alarm.
int GetKnownLevel(int level) { return level == levelWarning || level == levelError ? level : levelInformation; }

} // namespace

CTrvOutputWnd::CTrvOutputWnd(QWidget* parent) : QPlainTextEdit(parent), m_margin(new QWidget(this)) {
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setMaximumBlockCount(kMostLines);
    setFrameShape(QFrame::NoFrame);
    // Readable without a mouse: the caret can be moved through the text.
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setAccessibleName(Text(EText::outputTitle));
    setPlaceholderText(Text(EText::outputEmpty));
    viewport()->setMouseTracking(true);
    constexpr QStyle::StandardPixmap kPictures[] = {
        QStyle::SP_MessageBoxInformation, QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxCritical};
    for (std::size_t level = 0; level < m_icons.size(); ++level)
        m_icons[level] = style()->standardIcon(kPictures[level]);
    m_margin->installEventFilter(this);
    connect(this, &QPlainTextEdit::updateRequest, m_margin, [this] { m_margin->update(); });
    PlaceMargin();
}

void CTrvOutputWnd::AppendLine(const SOutputLine& line, QTime time) {
    QString text = Outils_Plot2D::ToQString(line.text);
    for (qsizetype end = kLongestLine; end < text.size(); end += kLongestLine + 1) text.insert(end, u'\n');
    QTextCursor caret(document());
    caret.movePosition(QTextCursor::End);
    // The text begins in the empty last block, and its further lines are new blocks without a time.
    caret.block().setUserState(QTime(0, 0).secsTo(time));
    const int position = caret.position();
    QTextCharFormat format;
    format.setFontUnderline(line.subject != nullptr);
    if (line.subject) format.setForeground(palette().link());
    caret.insertText(text + u'\n', format);
    for (QTextBlock block = document()->findBlock(position); block != document()->lastBlock();
         block = block.next()) {
        auto* known = new SBlockData; // the block's own
        known->level = GetKnownLevel(line.level);
        known->subject = line.subject;
        block.setUserData(known);
        if (Matches(block)) continue;
        block.setVisible(false);
        document()->markContentsDirty(block.position(), block.length());
    }
    setTextCursor(caret);
    // Only after the last line feed is the caret in the first column: the view stays at the lines'
    // beginnings.
    ensureCursorVisible();
    horizontalScrollBar()->setValue(0);
}

QTime CTrvOutputWnd::GetTime(int line) const { return GetBlockTime(document()->findBlockByNumber(line)); }

void CTrvOutputWnd::SetFilter(int leastLevel, const QString& words) {
    m_leastLevel = leastLevel;
    m_words = words.split(u' ', Qt::SkipEmptyParts);
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        block.setVisible(Matches(block));
    document()->markContentsDirty(0, document()->characterCount());
    ensureCursorVisible();
    viewport()->update();
}

bool CTrvOutputWnd::Matches(const QTextBlock& block) const {
    const SBlockData* line = GetData(block);
    if (!line) return true; // the empty last block
    const QString text = block.text();
    return line->level >= m_leastLevel && std::ranges::all_of(m_words, [&text](const QString& word) {
               return text.contains(word, Qt::CaseInsensitive);
           });
}

int CTrvOutputWnd::CountHidden() const {
    int hidden = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        hidden += block.isVisible() ? 0 : 1;
    return hidden;
}

void CTrvOutputWnd::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) PlaceMargin();
    if (event->type() != QEvent::PaletteChange) return;
    QTextCharFormat link;
    link.setForeground(palette().link());
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const SBlockData* line = GetData(block);
        if (!line || !line->subject) continue;
        QTextCursor text(block);
        text.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        text.mergeCharFormat(link);
    }
}

void CTrvOutputWnd::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    PlaceMargin();
}

bool CTrvOutputWnd::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QPlainTextEdit::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const SBlockData* line = GetData(cursorForPosition(viewport()->mapFromGlobal(help->globalPos())).block());
    QToolTip::showText(help->globalPos(), line && line->subject ? Text(EText::outputLinkTip) : QString(), this);
    return true;
}

bool CTrvOutputWnd::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_margin || event->type() != QEvent::Paint)
        return QPlainTextEdit::eventFilter(watched, event);
    PaintMargin();
    return true;
}

void CTrvOutputWnd::keyPressEvent(QKeyEvent* event) {
    const SBlockData* line = GetData(textCursor().block());
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && line && line->subject)
        Q_EMIT SubjectRequested(line->subject);
    else
        QPlainTextEdit::keyPressEvent(event);
}

void CTrvOutputWnd::mouseMoveEvent(QMouseEvent* event) {
    QPlainTextEdit::mouseMoveEvent(event);
    const SBlockData* line = GetData(cursorForPosition(event->pos()).block());
    viewport()->setCursor(line && line->subject ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

void CTrvOutputWnd::mouseReleaseEvent(QMouseEvent* event) {
    QPlainTextEdit::mouseReleaseEvent(event);
    const SBlockData* line = GetData(cursorForPosition(event->pos()).block());
    if (event->button() == Qt::LeftButton && !textCursor().hasSelection() && line && line->subject)
        Q_EMIT SubjectRequested(line->subject);
}

void CTrvOutputWnd::paintEvent(QPaintEvent* event) {
    QPlainTextEdit::paintEvent(event);
    if (document()->isEmpty() || firstVisibleBlock().next().isValid()) return;
    const int hidden = CountHidden();
    if (hidden == 0 || hidden < blockCount() - 1) return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap,
                     Outils_Plot2D::ToQString(
                         Outils_Texte::FormatText(EText::outputNothing, {std::to_string(hidden)})));
}

void CTrvOutputWnd::PlaceMargin() {
    const int height = fontMetrics().height();
    const int time = fontMetrics().horizontalAdvance(QTime(0, 0).toString(kTimeFormat));
    const int width = time + height + 3 * kMarginPadding;
    setViewportMargins(width, 0, 0, 0);
    const QRect area = contentsRect();
    m_margin->setGeometry(area.left(), area.top(), width, area.height());
}

void CTrvOutputWnd::PaintMargin() {
    QPainter painter(m_margin);
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const int height = fontMetrics().height();
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        if (!block.isVisible()) continue;
        const double top = blockBoundingGeometry(block).translated(contentOffset()).top();
        if (top > m_margin->height()) break;
        const QTime time = GetBlockTime(block);
        const SBlockData* line = GetData(block);
        if (!time.isValid() || !line) continue;
        const QRectF place(kMarginPadding, top, m_margin->width() - 2 * kMarginPadding, height);
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, time.toString(kTimeFormat));
        const QRect icon(m_margin->width() - height - kMarginPadding, static_cast<int>(top), height, height);
        m_icons[static_cast<std::size_t>(line->level)].paint(&painter, icon.adjusted(1, 1, -1, -1));
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
