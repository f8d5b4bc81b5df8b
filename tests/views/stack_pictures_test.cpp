#include "views/stack_pictures.h"

#include "support/program_output.h"
#include "views/view_1d_fixture.h"

#include <QClipboard>
#include <QFile>
#include <QMimeData>
#include <QPainter>
#include <QPrinter>
#include <QSvgRenderer>

using namespace test;

namespace {

class StackPictures : public CView1DFixture {
  protected:
    SPictureContent Content() { return {m_view->GetStack(), m_viewState, m_view->GetCursorLook()}; }
    std::string Print(const char* name) {
        const std::string path = (m_folder / name).string();
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setOutputFileName(QString::fromStdString(path));
        PrintPages(Content(), printer, SPageMargins{}, "dive, 0 to 1000");
        return path;
    }
    // The text of a page without its blanks, which the program sets as it likes, and without ligatures.
    static std::string ReadPage(const std::string& path, int page) {
        const std::string number = std::to_string(page);
        std::string text = Ask("pdftotext -layout -f " + number + " -l " + number + " '" + path + "' -");
        std::erase(text, ' ');
        for (std::size_t at; (at = text.find("\uFB01")) != std::string::npos;) text.replace(at, 3, "fi");
        return text;
    }
    static QRect ToRect(const SRect& rect) {
        return QRectF(static_cast<double>(rect.x), static_cast<double>(rect.y),
                      static_cast<double>(rect.width), static_cast<double>(rect.height))
            .toRect();
    }

    CTemporaryFolder m_folder;
};

TEST_F(StackPictures, FormFollowsTheName) {
    for (const auto& [name, begin] :
         {std::pair("a.pdf", "%PDF"), {"a.png", "\x89PNG"}, {"a.svg", "<?xml"}, {"a.other", "<?xml"}}) {
        EXPECT_TRUE(SavePicture(Content(), m_folder / name));
        QFile file(QString::fromStdString((m_folder / name).string()));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly) && file.readAll().startsWith(begin)) << name;
    }
    EXPECT_FALSE(SavePicture(Content(), m_folder / "none" / "a.svg"));
}

// Eight graphs of 130 pixels in 900 are some 2.5 cm high on 17 cm of paper, and nine such fit on 25.7 cm.
TEST_F(StackPictures, PagesHoldTheGraphsAsText) {
    const std::string few = Print("few.pdf");
    const std::string text = ReadPage(few, 1);
    // Header and number of the page; title, time scale, legend.
    for (const char* part : {"dive,0to1000", "1/1", "first", "elapsedtime", "northagain", "second", "states"})
        EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
    auto& plot = First().GetPlot();
    for (const auto* axis : {&plot.GetHorizontalAxis(), &plot.GetVerticalAxis()}) {
        int labels = 0;
        Outils_Plot2D::ForEachTick(*axis->GetScale(), [&](double value) {
            const std::string label = axis->GetFormater()->Format(value);
            labels += !label.empty() && text.find(label) != std::string::npos;
        });
        EXPECT_GT(labels, 0) << text;
    }
    EXPECT_EQ(Ask("pdfinfo '" + few + "' | grep -c 'Pages: *1$'"), "1\n");
    const std::string fonts = Ask("pdffonts '" + few + "' | tail -n +3");
    EXPECT_NE(fonts.find("yes"), std::string::npos) << "an embedded font: " << fonts;

    for (const auto& portlet : m_view->GetStack().GetPortlets()) portlet->SetUserHeight(500);
    m_view->GetLoader().Relayout();
    const std::string more = Print("more.pdf");
    EXPECT_EQ(Ask("pdfinfo '" + more + "' | grep -c 'Pages: *4$'"), "1\n");
    EXPECT_NE(ReadPage(more, 1).find("second"), std::string::npos);
    EXPECT_EQ(ReadPage(more, 1).find("states"), std::string::npos);
    EXPECT_NE(ReadPage(more, 2).find("states"), std::string::npos);
    EXPECT_NE(ReadPage(more, 4).find("4/4"), std::string::npos);
}

TEST_F(StackPictures, PictureHasThePixelsOfTheScreen) {
    m_viewState.SetCursor(ECursor::first, Seconds(300));
    m_viewState.SetCursor(ECursor::second, Seconds(700));
    m_view->resize(900, 1500); // all graphs are seen
    const SPictureContent content = Content();
    const SPictureData data = MakePictureData(content);
    QImage picture(data.size, QImage::Format_RGB32);
    {
        QPainter painter(&picture);
        data.draw(painter);
    }
    const QImage screen = m_view->viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    for (const auto& portlet : m_view->GetStack().GetPortlets()) {
        // The selected graph has another frame and title on the screen.
        const QRect inside = ToRect(portlet->GetRect()).adjusted(2, 22, -3, -3);
        EXPECT_EQ(picture.copy(inside), screen.copy(inside)) << portlet->GetTitle();
    }
}

TEST_F(StackPictures, ClipboardGetsAVectorImage) {
    m_viewState.SetRange(First().GetKey(), SRange{400, 600}); // of values from 0 to 1000
    m_view->GetLoader().Relayout();
    m_viewState.SetCursor(ECursor::first, Seconds(500));
    EXPECT_EQ(CopyToClipboard(Content()), ECopyEnd::done);
    const QMimeData* data = QApplication::clipboard()->mimeData();
    ASSERT_TRUE(data && data->hasFormat("image/svg+xml"));
    EXPECT_TRUE(data->data("image/svg+xml").contains("<polyline"));
    EXPECT_TRUE(data->data("application/pdf").startsWith("%PDF"));
    EXPECT_TRUE(data->text().contains("first\tnorth\t5"));
    const QImage dense = QImage::fromData(data->data("image/png"));
    EXPECT_EQ(dense.width(), 2 * m_view->viewport()->width());

    // The curve ends at the plotting area: that kind of image has no clip of its own.
    QSvgRenderer svg(data->data("image/svg+xml"));
    QImage image(svg.viewBox().size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, false);
    svg.render(&painter, image.rect());
    painter.end();
    const auto count = [&](const SRect& rect) {
        int found = 0;
        for (int y = static_cast<int>(rect.y); y < static_cast<int>(rect.Bottom()); ++y)
            for (int x = static_cast<int>(rect.x); x < static_cast<int>(rect.Right()); ++x)
                found += qRed(image.pixel(x, y)) > qBlue(image.pixel(x, y)) + 60; // the upper curve is red
        return found;
    };
    const SRect area = First().GetPlottingRect(), strip = First().GetRect();
    EXPECT_GT(count({area.x + 3, area.y, area.width - 6, area.height - 3}), 50);
    EXPECT_EQ(count({area.x + 3, area.Bottom() + 2, area.width - 6, strip.Bottom() - area.Bottom() - 3}), 0);
}

} // namespace
