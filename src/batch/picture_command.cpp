// The graphs of a project as a picture, drawn by the code that draws the screen.
#include "batch/commands.h"
#include "batch/file_access.h"
#include "batch/session.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "graph/loader.h"
#include "graph/stack_picture.h"
#include "plot/settings.h"
#include "values/adaptors.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <algorithm>
#include <ostream>

namespace Batch {

using namespace Presentation_Tarvel_Graphics;

namespace {

constexpr QSize kDefaultSize(1200, 900);
constexpr int kSmallestSide = 100;
constexpr int kGreatestSide = 16000; // 1 GB as a picture of 32 bits

QSize ParseSize(const COptions& options) {
    const auto text = options.Get("--size");
    if (!text) return kDefaultSize;
    int width = 0, height = 0, used = 0;
    const bool read = std::sscanf(text->c_str(), "%5dx%5d%n", &width, &height, &used) == 2 &&
                      static_cast<std::size_t>(used) == text->size();
    const auto fits = [](int side) { return side >= kSmallestSide && side <= kGreatestSide; };
    if (!read || !fits(width) || !fits(height)) throw CUsageError(EText::pictureSize);
    return {width, height};
}

void PaintOn(QPaintDevice& device, CTrv1DGraphStack& stack, QSize size, double scale) {
    QPainter painter(&device);
    painter.scale(scale, scale);
    DrawStack(stack, painter, {static_cast<float>(size.width()), static_cast<float>(size.height())});
}

void DrawPng(QBuffer& file, CTrv1DGraphStack& stack, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    PaintOn(image, stack, size, 1.0);
    image.save(&file, "PNG");
}

void DrawSvg(QBuffer& file, CTrv1DGraphStack& stack, QSize size) {
    QSvgGenerator svg;
    svg.setOutputDevice(&file);
    svg.setSize(size);
    svg.setViewBox(QRect(QPoint(), size));
    PaintOn(svg, stack, size, 1.0);
}

void DrawPdf(QBuffer& file, CTrv1DGraphStack& stack, QSize size) {
    constexpr double kScreenDotsPerInch = 96.0;
    QPdfWriter pdf(&file);
    pdf.setPageMargins(QMarginsF());
    pdf.setPageSize(QPageSize(QSizeF(size) * 72.0 / kScreenDotsPerInch, QPageSize::Point));
    PaintOn(pdf, stack, size, pdf.resolution() / kScreenDotsPerInch);
}

struct SFormat {
    std::string_view extension;
    void (*draw)(QBuffer& file, CTrv1DGraphStack& stack, QSize size);
};
constexpr SFormat kFormats[] = {{".png", DrawPng}, {".svg", DrawSvg}, {".pdf", DrawPdf}};

const SFormat& FindFormat(const std::filesystem::path& path) {
    const auto format = FindNoCase(kFormats, &SFormat::extension, Outils_Fichiers::ToText(path.extension()));
    if (!format) throw CUsageError(EText::pictureName);
    return kFormats[*format];
}

// Fonts need a GUI application, though nothing is shown.
std::unique_ptr<QGuiApplication> MakeGuiApplication() {
    if (QCoreApplication::instance()) return nullptr;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "varnenav-batch";
    static char* words[] = {name, nullptr};
    return std::make_unique<QGuiApplication>(count, words);
}

} // namespace

int PictureCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    const auto target = Outils_Fichiers::FromText(arguments[1]);
    const SFormat& format = FindFormat(target);
    const QSize size = ParseSize(options);

    const auto application = MakeGuiApplication();
    CSession session(streams);
    if (!session.Open(arguments[0])) return exitFailure;
    if (!FindTargetPath(arguments[1], streams)) return exitFailure;
    Outils_Valeurs::CTrvAdaptors adaptors;
    adaptors.Configure(session.GetConfiguration());
    Outils_Plot2D::CPlot2DSettings settings;
    CViewState viewState;
    CTrv1DGraphLoader loader(session.GetDocument(), viewState, adaptors, settings);
    loader.SetViewSize({static_cast<float>(size.width()), static_cast<float>(size.height())}, 1.0,
                       ELayout::fit);
    auto& queue = session.GetHost().GetQueue();
    while (loader.IsLoading()) queue.RunOne(std::chrono::milliseconds(100));

    QByteArray bytes;
    QBuffer file(&bytes);
    file.open(QIODevice::WriteOnly);
    format.draw(file, loader.GetStack(), size);
    const std::span content(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                            static_cast<std::size_t>(bytes.size()));
    if (content.empty() || !Outils_Fichiers::SaveAtomically(target, content)) {
        return Fail(arguments[1], EText::notWritten, streams);
    }
    return exitSuccess;
}

} // namespace Batch
