#include "app/panel_space.h"

#include "foundation/texts.h"
#include "plot/text.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace Application_Tarvel {

CPanelSpace::CPanelSpace(QWidget* content, QSize size)
    : m_size(size), m_word(new QLabel(Outils_Plot2D::Text(Outils_Texte::EText::noProject), this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
    layout->addWidget(m_word);
    m_word->setWordWrap(true);
    m_word->setAlignment(Qt::AlignCenter);
    m_word->setEnabled(false); // pale, as in the other panels
    m_word->setVisible(content->isHidden());
    content->installEventFilter(this);
}

bool CPanelSpace::eventFilter(QObject* content, QEvent* event) {
    if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent)
        m_word->setVisible(event->type() == QEvent::HideToParent);
    return QWidget::eventFilter(content, event);
}

} // namespace Application_Tarvel
