#include "app/splash.h"

#include "app/icons.h"
#include "app/version_info.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

constexpr QSize kSplashSize(420, 200);
constexpr int kAfterStart = 2000; // ms
constexpr int kAfterClick = 1000; // ms

QPixmap DrawPicture() {
    const qreal ratio = QGuiApplication::primaryScreen()->devicePixelRatio();
    QPixmap picture(kSplashSize * ratio);
    picture.setDevicePixelRatio(ratio);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient ground(0, 0, 0, kSplashSize.height());
    ground.setColorAt(0, QColor(0x24, 0x5C, 0x8F));
    ground.setColorAt(1, QColor(0x12, 0x2F, 0x4C));
    painter.fillRect(QRect(QPoint(), kSplashSize), ground);
    GetProductIcon().paint(&painter, QRect(28, 52, 96, 96));
    const CVersionInfo version = GetVersionInfo();
    QFont font = painter.font();
    font.setPixelSize(30);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRect(148, 60, 260, 40), Qt::AlignLeft | Qt::AlignVCenter,
                     ToQString(version.productName));
    font.setPixelSize(13);
    font.setBold(false);
    painter.setFont(font);
    painter.setPen(QColor(0xD5, 0xE4, 0xF2));
    painter.drawText(QRect(149, 102, 255, 40), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                     ToQString(version.fileDescription));
    painter.drawText(QRect(149, 160, 255, 24), Qt::AlignRight | Qt::AlignVCenter,
                     ToQString(version.productVersion));
    return picture;
}

} // namespace

CSplashWnd::CSplashWnd() : QSplashScreen(DrawPicture()) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(Text(EText::welcome));
    qApp->installEventFilter(this);
}

void CSplashWnd::CloseFor(QWidget& window) {
    m_window = &window;
    hide();
    CloseIn(kAfterStart);
}

void CSplashWnd::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) CloseIn(kAfterClick);
}

bool CSplashWnd::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && watched->isWidgetType() && static_cast<QWidget*>(watched)->isModal())
        hide();
    return QSplashScreen::eventFilter(watched, event);
}

void CSplashWnd::CloseIn(int milliseconds) { QTimer::singleShot(milliseconds, this, &CSplashWnd::Finish); }

void CSplashWnd::Finish() {
    if (m_window && m_window->isVisible()) {
        m_window->raise();
        m_window->activateWindow();
    }
    close();
}

} // namespace Application_Tarvel
