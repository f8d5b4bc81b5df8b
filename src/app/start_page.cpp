#include "app/start_page.h"

#include "app/icons.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QCommandLinkButton>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QVBoxLayout>

#include <cmath>
#include <iterator>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Texte::EText;

namespace {

constexpr int kWidth = 720;  // pixels, of the column in the middle
constexpr int kSpacing = 14; // between its sections
constexpr int kGestureColumns = 3;
constexpr QSize kPicture(96, 52);

// Which part of the mouse a gesture uses, which way the hand moves, and the key that is held.
struct SGesture {
    EText caption;
    enum EPart { wheel, middle, left } part;
    enum EMove { turn, alongBoth, along, twice } move;
    const char* key;
};
constexpr SGesture kGestures[] = {
    {EText::gestureWheel, SGesture::wheel, SGesture::turn, ""},
    {EText::gestureShiftWheel, SGesture::wheel, SGesture::turn, "Shift"},
    {EText::gestureCtrlWheel, SGesture::wheel, SGesture::turn, "Ctrl"},
    {EText::gestureMiddle, SGesture::middle, SGesture::alongBoth, ""},
    {EText::gestureCtrlDrag, SGesture::left, SGesture::along, "Ctrl"},
    {EText::gestureDouble, SGesture::left, SGesture::twice, ""},
};

void DrawArrow(QPainter& painter, QPointF from, QPointF to) {
    const QPointF way = (to - from) / std::hypot(to.x() - from.x(), to.y() - from.y());
    const QPointF across(-way.y(), way.x());
    painter.drawLine(from, to);
    painter.drawLine(to, to - 4 * way + 3 * across);
    painter.drawLine(to, to - 4 * way - 3 * across);
}

QPixmap DrawGesture(const SGesture& gesture, const QPalette& palette, double scale) {
    QPixmap picture(kPicture * scale);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor line = palette.color(QPalette::WindowText), used = palette.color(QPalette::Highlight);
    const QRectF body(58, 6, 26, 40);
    painter.setPen(QPen(line, 1.4));
    if (gesture.part == SGesture::left) {
        QPainterPath mouse, half;
        mouse.addRoundedRect(body, 12, 12);
        half.addRect(QRectF(body.left(), body.top(), body.width() / 2, 17));
        painter.fillPath(mouse.intersected(half), used);
    }
    painter.drawRoundedRect(body, 12, 12);
    const QRectF wheel(body.center().x() - 3, body.top() + 6, 6, 10);
    if (gesture.part != SGesture::left) painter.setBrush(used);
    painter.drawRoundedRect(wheel, 3, 3);
    painter.setBrush(Qt::NoBrush);

    if (const QString key = QString::fromLatin1(gesture.key); !key.isEmpty()) {
        QFont font;
        font.setPointSizeF(font.pointSizeF() * 0.8);
        painter.setFont(font);
        const QRectF cap(2, 27, 42, 20);
        painter.drawRoundedRect(cap, 4, 4);
        painter.drawText(cap, Qt::AlignCenter, key);
    }
    painter.setPen(QPen(used, 2));
    switch (gesture.move) {
    case SGesture::turn:
        DrawArrow(painter, {50, 14}, {50, 4});
        DrawArrow(painter, {50, 14}, {50, 24});
        break;
    case SGesture::alongBoth:
        DrawArrow(painter, {28, 26}, {10, 26});
        DrawArrow(painter, {28, 26}, {46, 26});
        DrawArrow(painter, {28, 26}, {28, 8});
        DrawArrow(painter, {28, 26}, {28, 44});
        break;
    case SGesture::along: DrawArrow(painter, {10, 14}, {48, 14}); break;
    case SGesture::twice:
        painter.drawEllipse(QPointF(30, 14), 6, 6);
        painter.drawEllipse(QPointF(30, 14), 10, 10);
        break;
    }
    return picture;
}

} // namespace

CTrvStartPage::CTrvStartPage(QWidget* parent) : QWidget(parent) {
    setAccessibleName(Text(EText::startTitle));
    auto* area = new QScrollArea(this);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(area);

    auto* page = new QWidget;
    auto* middle = new QHBoxLayout(page);
    auto* column = new QWidget(page);
    column->setMaximumWidth(kWidth);
    middle->addStretch();
    middle->addWidget(column, 100);
    middle->addStretch();
    auto* layout = new QVBoxLayout(column);
    layout->setSpacing(2);
    layout->addStretch(1);

    auto* title = new QLabel(Text(EText::product), column);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.8);
    title->setFont(large);
    layout->addWidget(title);
    layout->addSpacing(kSpacing);
    const auto add = [&](EText text, EGlyph glyph, void (CTrvStartPage::*signal)()) {
        auto* button = new QCommandLinkButton(Text(text), column);
        if (glyph != EGlyph::none) button->setIcon(GetIcon(glyph));
        layout->addWidget(button);
        connect(button, &QAbstractButton::clicked, this, signal);
        return button;
    };
    QAbstractButton* first = add(EText::startNew, EGlyph::newProject, &CTrvStartPage::NewRequested);
    add(EText::startOpen, EGlyph::open, &CTrvStartPage::OpenRequested);
    m_sample = add(EText::startSample, EGlyph::process, &CTrvStartPage::SampleRequested);
    m_sample->hide();
    auto* drop = new QLabel(Text(EText::startDrop), column);
    drop->setWordWrap(true);
    layout->addWidget(drop);

    layout->addSpacing(kSpacing);
    auto* recent = new QLabel(Text(EText::startRecent), column);
    QFont bold = recent->font();
    bold.setBold(true);
    recent->setFont(bold);
    layout->addWidget(recent);
    m_noRecent = new QLabel(Text(EText::startNoRecent), column);
    layout->addWidget(m_noRecent);
    m_recentRows = new QVBoxLayout;
    layout->addLayout(m_recentRows);
    layout->addSpacing(kSpacing);
    AddGestures(*layout);
    layout->addStretch(1);
    area->setWidget(page);
    setFocusProxy(first);
}

void CTrvStartPage::AddGestures(QVBoxLayout& layout) {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(kSpacing);
    for (int i = 0; i < static_cast<int>(std::size(kGestures)); ++i) {
        auto* cell = new QWidget(layout.parentWidget());
        auto* row = new QHBoxLayout(cell);
        row->setContentsMargins(0, 0, 0, 0);
        auto* picture = new QLabel(cell);
        m_gestures.push_back(picture);
        auto* caption = new QLabel(Text(kGestures[i].caption), cell);
        caption->setWordWrap(true);
        row->addWidget(picture);
        row->addWidget(caption, 1);
        grid->addWidget(cell, i / kGestureColumns, i % kGestureColumns);
    }
    layout.addLayout(grid);
    QEvent colours(QEvent::PaletteChange);
    changeEvent(&colours);
}

void CTrvStartPage::SetRecent(const std::vector<SRecent>& projects) {
    if (projects == m_shown) return;
    m_shown = projects;
    m_noRecent->setVisible(projects.empty());
    while (m_recent.size() > projects.size()) {
        delete m_recent.back();
        m_recent.pop_back();
    }
    for (std::size_t i = 0; i < projects.size(); ++i) {
        if (i == m_recent.size()) {
            auto* button = new QCommandLinkButton(this);
            connect(button, &QAbstractButton::clicked, this,
                    [this, i] { Q_EMIT RecentRequested(static_cast<int>(i)); });
            m_recentRows->addWidget(button);
            m_recent.push_back(button);
        }
        auto* button = static_cast<QCommandLinkButton*>(m_recent[i]);
        button->setText(QString(projects[i].name).replace(u'&', QStringLiteral("&&")));
        button->setDescription(projects[i].place);
        button->setToolTip(projects[i].place);
    }
}

void CTrvStartPage::SetHasSample(bool has) { m_sample->setVisible(has); }

void CTrvStartPage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    for (std::size_t i = 0; i < m_gestures.size(); ++i)
        m_gestures[i]->setPixmap(DrawGesture(kGestures[i], palette(), devicePixelRatioF()));
}

} // namespace Application_Tarvel
