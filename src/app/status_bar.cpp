#include "app/status_bar.h"

#include "app/key_locks.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Texte::EText;

namespace {

constexpr int kProgressWidth = 150; // pixels
constexpr int kSettleTime = 100;    // ms

struct SLockRow {
    ELock lock;
    Qt::Key key;
    EText text;
    EText name;
};
constexpr SLockRow kLocks[] = {
    {ELock::caps, Qt::Key_CapsLock, EText::capsLockPane, EText::capsLockName},
    {ELock::num, Qt::Key_NumLock, EText::numLockPane, EText::numLockName},
    {ELock::scroll, Qt::Key_ScrollLock, EText::scrollLockPane, EText::scrollLockName},
};

} // namespace

CTrvStatusBar::CTrvStatusBar(QWidget* parent)
    : QStatusBar(parent),
      m_message(new QLabel(Text(EText::ready), this)),
      m_progress(new QProgressBar(this)),
      m_faults(new QToolButton(this)) {
    m_message->setObjectName("message");
    m_message->setTextFormat(Qt::PlainText);
    m_message->setContentsMargins(4, 0, 0, 0);
    addWidget(m_message, 1);
    m_progress->setObjectName("progress");
    m_progress->setAccessibleName(Text(EText::progressName));
    m_progress->setRange(0, 100);
    m_progress->setFixedWidth(kProgressWidth);
    m_progress->setMaximumHeight(fontMetrics().height() + 2);
    m_faults->setObjectName("faults");
    m_faults->setAutoRaise(true);
    m_faults->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_faults->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
    m_faults->setToolTip(Text(EText::nextFaultTip));
    connect(m_faults, &QToolButton::clicked, this, &CTrvStatusBar::NextFaultRequested);
    addPermanentWidget(m_faults);
    m_faults->hide();
    addPermanentWidget(m_progress);
    m_progress->hide();
    for (std::size_t i = 0; i < m_locks.size(); ++i) {
        auto* label = m_locks[i] = new QLabel(Text(kLocks[i].text), this);
        label->setObjectName(Text(kLocks[i].text));
        label->setAccessibleName(Text(kLocks[i].name));
        label->setToolTip(Text(kLocks[i].name));
        label->setAlignment(Qt::AlignCenter);
        label->setMinimumWidth(label->sizeHint().width() + 12);
        label->setEnabled(false);
        addPermanentWidget(label);
    }
    m_settle.setSingleShot(true);
    connect(&m_settle, &QTimer::timeout, this, &CTrvStatusBar::ReadLocks);
    ReadLocks();
    qApp->installEventFilter(this); // keys go to whichever widget has the focus
}

void CTrvStatusBar::SetMessage(const QString& text) { m_message->setText(text); }

void CTrvStatusBar::SetProgress(int percent) { m_progress->setValue(std::clamp(percent, 0, 100)); }

void CTrvStatusBar::SetFaults(std::size_t count) {
    m_faults->setText(
        Outils_Plot2D::ToQString(Outils_Texte::FormatText(EText::faultsCount, {std::to_string(count)})));
    m_faults->setAccessibleName(m_faults->text());
    m_faults->setVisible(count > 0);
}

void CTrvStatusBar::ShowProgress(bool visible) { m_progress->setVisible(visible); }

bool CTrvStatusBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationActivate) ReadLocks();
    // The window gets the event first, and every key press once.
    if (event->type() == QEvent::KeyPress && watched->isWindowType()) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        for (std::size_t i = 0; i < m_locks.size(); ++i)
            if (kLocks[i].key == key) {
                // Where no light tells the truth, the key presses are counted.
                m_locks[i]->setEnabled(!m_locks[i]->isEnabled());
                m_settle.start(kSettleTime);
            }
    }
    return QStatusBar::eventFilter(watched, event);
}

void CTrvStatusBar::ReadLocks() {
    for (std::size_t i = 0; i < m_locks.size(); ++i)
        if (const auto on = ReadLock(kLocks[i].lock)) m_locks[i]->setEnabled(*on);
}

} // namespace Application_Tarvel
