// A paint device that notes what is painted on it, in coordinates of the device, beneath the whole of the
// surface; and a data source of given points.
#pragma once

#include "plot/plot.h"

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct SOperation {
    enum Kind { Line, Polyline, Polygon, Rectangle, Path, Text } kind;
    std::vector<QPointF> points; // of a rectangle: top left, bottom right
    std::string text;
    QRgb pen = 0;   // 0: none
    QRgb brush = 0; // 0: none
    QRectF clip;    // null: none
};

class CRecordingEngine : public QPaintEngine {
  public:
    CRecordingEngine() : QPaintEngine(AllFeatures) {}

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void updateState(const QPaintEngineState&) override {}
    void drawLines(const QLineF* lines, int count) override {
        for (int i = 0; i < count; ++i) Add(SOperation::Line, {lines[i].p1(), lines[i].p2()});
    }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
        Add(mode == PolylineMode ? SOperation::Polyline : SOperation::Polygon, {points, points + count});
    }
    void drawRects(const QRectF* rects, int count) override {
        for (int i = 0; i < count; ++i)
            Add(SOperation::Rectangle, {rects[i].topLeft(), QPointF(rects[i].right(), rects[i].bottom())});
    }
    void drawPath(const QPainterPath& path) override { Add(SOperation::Path, {path.currentPosition()}); }
    void drawTextItem(const QPointF& point, const QTextItem& item) override {
        Add(SOperation::Text, {point}).text = item.text().toStdString();
    }

    std::vector<SOperation> operations;

  private:
    SOperation& Add(SOperation::Kind kind, std::vector<QPointF> points) {
        const QPainter& painter = *this->painter();
        for (QPointF& point : points) point = painter.transform().map(point);
        SOperation operation{kind, std::move(points), {}, 0, 0, {}};
        if (painter.pen().style() != Qt::NoPen) operation.pen = painter.pen().color().rgba();
        if (painter.brush().style() != Qt::NoBrush) operation.brush = painter.brush().color().rgba();
        if (painter.hasClipping()) operation.clip = painter.transform().mapRect(painter.clipBoundingRect());
        return operations.emplace_back(std::move(operation));
    }
};

// What was painted, in its order.
struct SPainting : std::vector<SOperation> {
    std::vector<SOperation> Find(SOperation::Kind kind, std::optional<QRgb> pen = {}) const {
        std::vector<SOperation> found;
        for (const SOperation& operation : *this)
            if (operation.kind == kind && (!pen || operation.pen == *pen)) found.push_back(operation);
        return found;
    }
};

class CRecordingDevice : public QPaintDevice {
  public:
    QPaintEngine* paintEngine() const override { return &m_engine; }

    // What `paint` does with a surface on this device.
    template <class Paint>
    SPainting Record(Paint&& paint) {
        QPainter painter(this);
        Outils_Plot2D::CGraphics graphics(painter);
        paint(graphics);
        return {m_engine.operations};
    }

  protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
        case PdmHeight: return 1000;
        case PdmDevicePixelRatio: return 1;
        case PdmDevicePixelRatioScaled: return static_cast<int>(devicePixelRatioFScale());
        default: return 96; // dots per inch
        }
    }

  private:
    mutable CRecordingEngine m_engine;
};

struct SBucketOfTest {
    double x, y;
    double minimum, maximum;
    bool known = true;
};

class CTestSource : public Outils_Plot2D::CPlot2DDataSource {
  public:
    CTestSource(double period, bool extrema, std::vector<SBucketOfTest> buckets)
        : m_period(period), m_extrema(extrema), m_buckets(std::move(buckets)) {}

    using u32 = std::uint32_t;
    bool HasExtremum() const override { return m_extrema; }
    double GetPeriod() const override { return m_period; }
    u32 GetCount() const override { return static_cast<u32>(m_buckets.size()); }
    bool GetPoint(u32 i, double& x, double& y) const override { return Get(i, &SBucketOfTest::y, x, y); }
    bool GetMinimum(u32 i, double& x, double& y) const override {
        return Get(i, &SBucketOfTest::minimum, x, y);
    }
    bool GetMaximum(u32 i, double& x, double& y) const override {
        return Get(i, &SBucketOfTest::maximum, x, y);
    }

  private:
    bool Get(u32 i, double SBucketOfTest::*value, double& x, double& y) const {
        if (m_buckets[i].known) x = m_buckets[i].x, y = m_buckets[i].*value;
        return m_buckets[i].known;
    }
    double m_period;
    bool m_extrema;
    std::vector<SBucketOfTest> m_buckets;
};

// A plot at (10, 20) with a plotting area of 100 x 100 at (50, 0) and scales from 0 to 100: a value is a
// pixel.
struct SPlotOfTest {
    Outils_Plot2D::CPlot2DSettings settings;
    Outils_Plot2D::CPlot2D plot{settings};

    SPlotOfTest() {
        plot.SetRect({10, 20, 200, 150});
        plot.GetPlottingArea().SetRect({50, 0, 100, 100});
        plot.GetLegend().SetRect({150, 0, 50, 100});
        plot.SetLegendVisible(false);
        plot.GetHorizontalAxis().SetFormater(nullptr);
        plot.GetVerticalAxis().SetFormater(nullptr);
    }

    // A value of the scales on the device.
    static QPointF At(double x, double y) { return {60 + x, 120 - y}; }

    SPainting Paint() {
        return CRecordingDevice().Record([&](auto& graphics) { plot.Draw(graphics); });
    }
};
