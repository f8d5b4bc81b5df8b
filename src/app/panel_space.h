// What lies between a panel of the window and its content. UI thread.
#pragma once

#include <QWidget>

class QLabel;

namespace Application_Tarvel {

// The panel has its size also while the content is hidden, and shows and hides without a say in that. A
// content that hides itself leaves a word in its place.
class CPanelSpace final : public QWidget {
  public:
    // Takes over the content.
    CPanelSpace(QWidget* content, QSize size);
    QSize sizeHint() const override { return m_size; }

  protected:
    bool eventFilter(QObject* content, QEvent* event) override;

  private:
    const QSize m_size;
    QLabel* m_word;
};

} // namespace Application_Tarvel
