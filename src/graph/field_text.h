// How the lists of fields name a field and write its values: labels, units, differences. UI thread.
#pragma once

#include "document/document.h"
#include "graph/simulation_time.h"
#include "plot/graphics.h"
#include "values/adaptors.h"

#include <cstdint>
#include <string>

namespace Presentation_Tarvel_Graphics {

// "GPS_1" as the settings of a panel want it: "Gps #1", "Gps #1 (GPS_1)" or the code itself.
std::string MakeChannelLabel(const std::string& code, bool translate, bool alsoCode);
// " - second.tarin" for an external file, empty for the recording, the result and no file.
std::string MakeFileSuffix(const Metier_Tarvel::CTrvProject& project,
                           const Metier_Tarvel::CTrvDataFile* file);
// The colour of the rows of a file; that of external files for null.
Outils_Plot2D::Colour GetFileColour(const Metier_Tarvel::CTrvProject& project,
                                    const Metier_Tarvel::CTrvDataFile* file,
                                    const Outils_Configuration::CTrvCnfConfigFile& settings);

// One full turn in the internal unit of a nature; 0 for a quantity that is no angle.
double GetTurn(std::uint32_t nature);
// `second` - `first` in the internal unit, angles the short way.
double Subtract(std::uint32_t nature, double second, double first);

// The values of one nature as text. Refers to the adaptors, which must outlive it.
class CFieldText {
  public:
    CFieldText() = default;
    CFieldText(const Outils_Valeurs::CTrvAdaptors& adaptors, std::uint32_t nature)
        : m_adaptor(&adaptors.GetForNature(nature)), m_nature(nature) {}

    std::uint32_t GetNature() const { return m_nature; }
    // The symbol of the unit; empty for a number without one.
    std::string GetUnit() const;
    // How many of the unit one internal unit is.
    double GetScale() const;
    // With the unit. REQUIRES: made with adaptors.
    std::string Format(double value) const;
    // A difference or a deviation, which no latitude or longitude is: those are in degrees.
    std::string FormatSpan(double value) const;

  private:
    bool IsPlace() const;

    const Outils_Valeurs::CNumericValueAdaptor* m_adaptor = nullptr;
    std::uint32_t m_nature = 0;
};

// Simulation times as the settings and the project want them. Any project or none.
SSimulationTimeText MakeTimeText(const Application_Tarvel::CTrvDocument& document,
                                 const Outils_Valeurs::CTrvAdaptors& adaptors);

} // namespace Presentation_Tarvel_Graphics
