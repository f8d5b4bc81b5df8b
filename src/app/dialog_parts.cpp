#include "app/dialog_parts.h"

#include "foundation/texts.h"
#include "plot/text.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;

CDialog::CDialog(QWidget* parent, const QString& title, QSettings* settings)
    : QDialog(parent), m_settings(settings), m_layout(new QVBoxLayout(this)) {
    setWindowTitle(title);
}

void CDialog::Add(QWidget* widget) { m_layout->addWidget(widget, 1); }
void CDialog::Add(QLayout* layout) { m_layout->addLayout(layout); }

bool CDialog::Run(const std::function<bool()>& onOK, bool enterIsOK) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, [this, onOK] {
        if (!onOK || onOK()) accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    for (QAbstractButton* button : buttons->buttons())
        static_cast<QPushButton*>(button)->setAutoDefault(enterIsOK);
    buttons->button(QDialogButtonBox::Ok)->setDefault(enterIsOK);
    m_layout->addWidget(buttons);
    const QString key = QStringLiteral("dialogs/") + windowTitle();
    // The screen may have become smaller.
    if (const QSize kept = m_settings ? m_settings->value(key).toSize() : QSize(); kept.isValid())
        resize(kept.boundedTo(screen()->availableSize()));
    const bool isOK = exec() == Accepted;
    if (m_settings) m_settings->setValue(key, size());
    return isOK;
}

CPathLine::CPathLine(QWidget* parent, const QString& name, std::function<void()> choose)
    : QWidget(parent), m_line(new QLineEdit(this)), m_button(new QPushButton(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_line->setAccessibleName(name);
    m_line->setMinimumWidth(380);
    m_button->setText(Text(EText::browse));
    m_button->setToolTip(Text(EText::wizardBrowseTip));
    m_button->setAccessibleName(QStringLiteral("%1 %2").arg(Text(EText::wizardBrowseTip), name));
    m_button->setFixedWidth(m_button->fontMetrics().horizontalAdvance(m_button->text()) * 3);
    connect(m_button, &QPushButton::clicked, this, [choose = std::move(choose)] { choose(); });
    layout->addWidget(m_line, 1);
    layout->addWidget(m_button);
    setFocusProxy(m_line);
}

void CPathLine::SetChosenOnly() {
    m_line->setReadOnly(true);
    m_line->setFocusPolicy(Qt::ClickFocus); // there is nothing to type
    setFocusProxy(m_button);
}

QString WithoutKey(EText text) { return Text(text).remove(QLatin1Char('&')); }

QTreeWidget* MakeList(QWidget* parent, EText first, EText second, const QString& name) {
    auto* list = new QTreeWidget(parent);
    list->setHeaderLabels({Text(first), Text(second)});
    list->setRootIsDecorated(false);
    list->setAlternatingRowColors(true);
    list->setUniformRowHeights(true);
    list->setAccessibleName(name);
    list->setMinimumSize(480, 200);
    return list;
}

QTreeWidgetItem* AddRow(QTreeWidget& list, const std::string& first, const std::string& second) {
    auto* row = new QTreeWidgetItem(&list, {ToQString(first), ToQString(second)});
    row->setToolTip(0, ToQString(first));
    row->setToolTip(1, ToQString(second));
    return row;
}

} // namespace Application_Tarvel
