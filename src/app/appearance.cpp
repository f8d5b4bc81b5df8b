#include "app/appearance.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace Application_Tarvel {

using Outils_Configuration::EAppearance;

namespace {

struct SLook {
    EAppearance appearance;
    QRgb window;
    QRgb base;
    QRgb alternate;
    QRgb text;
    QRgb faded; // text of what is disabled
    QRgb highlight;
    QRgb highlightedText;
    QRgb link;
};

constexpr SLook kLooks[] = {
    {EAppearance::blue, 0xFFE3EDF8, 0xFFFFFFFF, 0xFFF2F7FC, 0xFF10243A, 0xFF7D8FA3, 0xFF2F6FB5, 0xFFFFFFFF,
     0xFF1A5FB4},
    {EAppearance::black, 0xFF2D2F33, 0xFF1E2023, 0xFF26282C, 0xFFECEDEF, 0xFF85888E, 0xFF3D7FC4, 0xFFFFFFFF,
     0xFF8CBDF3},
    {EAppearance::silver, 0xFFE9EAEC, 0xFFFFFFFF, 0xFFF5F5F6, 0xFF1F2226, 0xFF8A8D92, 0xFF5B6B80, 0xFFFFFFFF,
     0xFF1A5FB4},
};

QPalette MakePalette(const SLook& look) {
    // On a dark ground buttons stand out by being lighter, as they do on a light one by their shade.
    const QColor window(look.window);
    QPalette palette(window.lightness() < 128 ? window.lighter(135) : window, window);
    palette.setColor(QPalette::Base, look.base);
    palette.setColor(QPalette::AlternateBase, look.alternate);
    palette.setColor(QPalette::ToolTipBase, look.base);
    palette.setColor(QPalette::ToolTipText, look.text);
    palette.setColor(QPalette::Highlight, look.highlight);
    palette.setColor(QPalette::HighlightedText, look.highlightedText);
    palette.setColor(QPalette::Link, look.link);
    palette.setColor(QPalette::LinkVisited, look.link);
    palette.setColor(QPalette::PlaceholderText, look.faded);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, look.text);
        palette.setColor(QPalette::Disabled, role, look.faded);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, look.faded);
    return palette;
}

} // namespace

void ApplyPalette(EAppearance appearance) {
    constexpr char kFirstStyle[] = "firstStyle"; // the style that the desktop chose
    if (!qApp->property(kFirstStyle).isValid())
        qApp->setProperty(kFirstStyle, QApplication::style()->objectName());
    for (const SLook& look : kLooks) {
        if (look.appearance != appearance) continue;
        // The one style that follows a palette everywhere.
        QApplication::setStyle(QStyleFactory::create("Fusion"));
        QApplication::setPalette(MakePalette(look));
        return;
    }
    QApplication::setStyle(qApp->property(kFirstStyle).toString());
    QApplication::setPalette(QPalette());
}

} // namespace Application_Tarvel
