#include "views/output_panel.h"

#include "foundation/texts.h"
#include "plot/text.h"
#include "views/output_wnd.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Texte::EText;

namespace {

// By the least level that is shown.
constexpr EText kChoices[] = {EText::outputAll, EText::outputWarnings, EText::outputErrors};

} // namespace

CTrvOutputPanel::CTrvOutputPanel(QWidget* parent)
    : QWidget(parent),
      m_levels(new QComboBox(this)),
      m_filter(new QLineEdit(this)),
      m_lines(new CTrvOutputWnd(this)) {
    for (const EText choice : kChoices) m_levels->addItem(Text(choice));
    m_levels->setAccessibleName(Text(EText::outputLevelName));
    m_levels->setToolTip(Text(EText::outputLevelName));
    m_filter->setPlaceholderText(Text(EText::outputFilterHint));
    m_filter->setAccessibleName(Text(EText::outputFilterName));
    m_filter->setToolTip(Text(EText::outputFilterName));
    m_filter->setClearButtonEnabled(true);
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(2, 0, 2, 0);
    bar->addWidget(m_levels);
    bar->addWidget(m_filter, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addLayout(bar);
    layout->addWidget(m_lines, 1);
    const auto filter = [this] { m_lines->SetFilter(m_levels->currentIndex(), m_filter->text()); };
    connect(m_levels, &QComboBox::currentIndexChanged, this, filter);
    connect(m_filter, &QLineEdit::textChanged, this, filter);
}

} // namespace Application_Tarvel
