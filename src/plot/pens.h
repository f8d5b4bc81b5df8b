// Pens and brushes of the plot: owners of the native ones, with ARGB colours.
#pragma once

#include "plot/graphics.h"

#include <QBrush>
#include <QPen>

#include <cstdint>

namespace Outils_Plot2D {

QColor ToNative(Colour colour);

// What tells lines apart on a grey printer. The order is kept in saved curves: append only.
enum class ELineStyle : std::uint8_t { solid, dash, dot, dashDot, longDash, count };

class CPlot2DPen {
  public:
    // `width` in pixels.
    explicit CPlot2DPen(Colour colour, float width = 1.0f, ELineStyle style = ELineStyle::solid);

    Colour GetColor() const { return m_pen.color().rgba(); }
    void SetColor(Colour colour) { m_pen.setColor(ToNative(colour)); }
    float GetWidth() const { return static_cast<float>(m_pen.widthF()); }
    const QPen& GetNative() const { return m_pen; }

  private:
    QPen m_pen;
};

class CPlot2DBrush {
  public:
    virtual ~CPlot2DBrush() = default;
    virtual void Fill(CGraphics& graphics, const SRect& rect) const = 0;
};

class CPlot2DSolidBrush : public CPlot2DBrush {
  public:
    explicit CPlot2DSolidBrush(Colour colour) : m_brush(ToNative(colour)) {}

    void Fill(CGraphics& graphics, const SRect& rect) const override {
        graphics.FillRectangle(m_brush, rect);
    }

    Colour GetColor() const { return m_brush.color().rgba(); }
    void SetColor(Colour colour) { m_brush.setColor(ToNative(colour)); }
    const QBrush& GetNative() const { return m_brush; }

  private:
    QBrush m_brush;
};

enum class LinearGradientMode { Horizontal = 0, Vertical = 1 };

// The gradient spans whatever rectangle is filled, from its left or top to its right or bottom.
class CPlot2DLinearGradientBrush : public CPlot2DBrush {
  public:
    CPlot2DLinearGradientBrush(Colour from, Colour to, LinearGradientMode mode)
        : m_from(from), m_to(to), m_mode(mode) {}

    void Fill(CGraphics& graphics, const SRect& rect) const override;

  private:
    Colour m_from;
    Colour m_to;
    LinearGradientMode m_mode;
};

} // namespace Outils_Plot2D
