// The text of a value on an axis.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace Outils_Plot2D {

class CPlot2DValueFormater {
  public:
    virtual ~CPlot2DValueFormater() = default;
    // UTF-8.
    virtual std::string Format(double value) const = 0;
};

// Two decimals.
class CPlot2DSimpleFormater : public CPlot2DValueFormater {
  public:
    std::string Format(double value) const override;
};

// The names of whole positions.
class CPlot2DChronogramFormater : public CPlot2DValueFormater {
  public:
    void SetText(std::int32_t position, std::string text) { m_texts[position] = std::move(text); }
    void Clear() { m_texts.clear(); }

    // The value is rounded to a position; one without a name is shown as a number. What is not finite has no
    // text.
    std::string Format(double value) const override;

  private:
    std::map<std::int32_t, std::string> m_texts;
};

} // namespace Outils_Plot2D
