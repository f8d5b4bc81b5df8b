// The text panel in which runs and checks write their lines. UI thread.
#pragma once

#include "document/document_host.h"

#include <QIcon>
#include <QPlainTextEdit>
#include <QTime>

#include <array>

class QTextBlock;

namespace Application_Tarvel {

// Keeps the last hundred thousand lines. The margin shows the time at which each text came and its level; both
// are no part of the text, so that copied lines are the lines as they were written. A text about an object of
// the project looks like a link, and a click or Enter on it goes there. The context menu offers to copy, and
// the actions added to the panel.
class CTrvOutputWnd final : public QPlainTextEdit {
    Q_OBJECT

  public:
    explicit CTrvOutputWnd(QWidget* parent = nullptr);

    // Adds a text at the end, wherever the caret is, and scrolls there. A line that is too long to be laid
    // out in good time is broken into several. `time` is shown beside the first line, in whole seconds.
    void AppendLine(const SOutputLine& line, QTime time = QTime::currentTime());
    // The time shown beside a line, counted from 0; invalid for the further lines of a text, and when there
    // is no such line.
    QTime GetTime(int line) const;

    // Shows only texts of at least this level that contain all the words, in any order and case; the others
    // are hidden and kept. Also for the texts that follow.
    void SetFilter(int leastLevel, const QString& words);
    // O(lines).
    int CountHidden() const;

  Q_SIGNALS:
    // The user follows a line to the object that it is about, which may be gone: an identity only.
    void SubjectRequested(const Outils_Objets::CObject* subject);

  protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool Matches(const QTextBlock& block) const;
    void PlaceMargin();
    void PaintMargin();

    QWidget* m_margin; // Owned as a child.
    std::array<QIcon, 3> m_icons; // by level
    int m_leastLevel = Communication_Interfaces::levelInformation;
    QStringList m_words;
};

} // namespace Application_Tarvel
