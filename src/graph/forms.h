// The small dialogs of the graphs without their window: lines to be filled in, and what is done with them. UI
// thread.
#pragma once

#include "foundation/text_id.h"
#include "graph/loader.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

// A colour, or a style of a line.
struct SFormChoice {
    Outils_Texte::EText name;
    SCurveLook look;
};

struct SFormLine {
    Outils_Texte::EText label;
    Outils_Texte::EText help = Outils_Texte::kNoText;
    std::string text{};                 // as typed
    std::vector<SFormChoice> choices{}; // to choose from, in place of a text
    std::size_t choice = 0;
};

// Why what was typed is refused, and in which line.
struct SFormRefusal {
    std::string message;
    std::size_t line;
};

class CForm {
  public:
    virtual ~CForm() = default;

    Outils_Texte::EText GetTitle() const { return m_title; }
    std::vector<SFormLine>& GetLines() { return m_lines; }
    // Does what the lines say. A refusal changes nothing.
    virtual std::optional<SFormRefusal> OnOK() = 0;

  protected:
    CForm(Outils_Texte::EText title, std::vector<SFormLine> lines)
        : m_title(title), m_lines(std::move(lines)) {}
    const std::string& GetText(std::size_t line) const { return m_lines[line].text; }
    // What is chosen in a line of choices.
    const SCurveLook& GetLook(std::size_t line) const {
        return m_lines[line].choices[m_lines[line].choice].look;
    }

  private:
    Outils_Texte::EText m_title;
    std::vector<SFormLine> m_lines;
};

// Label, colour, line and factor of a saved curve. The colours are those that colour-blind readers tell apart
// (Okabe and Ito, "Color Universal Design", 2008).
class CCurveForm final : public CForm {
  public:
    // Both must outlive the form. A curve that goes meanwhile is not changed.
    CCurveForm(Application_Tarvel::CTrvDocument& document, Metier_Tarvel_Graphics::CTrv1DCurve& curve);
    std::optional<SFormRefusal> OnOK() override;

  private:
    bool IsStillThere() const;

    Application_Tarvel::CTrvDocument& m_document;
    Metier_Tarvel_Graphics::CTrv1DCurve& m_curve;
};

// The range of the vertical axis of a graph; empty lines let it follow the data.
class CRangeForm final : public CForm {
  public:
    // `loader` must outlive the form; a graph that goes meanwhile is not changed.
    CRangeForm(CTrv1DGraphLoader& loader, const CTrv1DGraphMeasurePortlet& graph);
    std::optional<SFormRefusal> OnOK() override;

  private:
    CTrv1DGraphLoader& m_loader;
    SGraphKey m_key;
};

// The date to go to, elapsed or UTC.
class CDateForm final : public CForm {
  public:
    // Must outlive the form.
    explicit CDateForm(CTrv1DGraphLoader& loader);
    std::optional<SFormRefusal> OnOK() override;

  private:
    CTrv1DGraphLoader& m_loader;
};

// A simulation time as a user types it: in the notation of the axis or in the other one. A UTC date is read
// once the reference is known.
std::optional<CDateTimeSpan> ReadTime(const SSimulationTimeText& notation, const std::string& text);

} // namespace Presentation_Tarvel_Graphics
