// What a project saves of its graphs: which graphs there are and which field each curve shows.
#pragma once

#include "model/forward.h"

#include <memory>
#include <string>
#include <vector>

namespace Metier_Tarvel_Graphics {

using Metier_Tarvel::CTrvDataFile;
using Metier_Tarvel::CTrvProject;
using Outils_Objets::CArchive;
using Outils_Objets::CTrvObject;
using Outils_Objets::TRuntimeClass;

class CTrv1DSettings;
class CTrv1DGraphMeasure;

class CTrv1DGraph : public TRuntimeClass<CTrv1DGraph, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrv1DGraph";

    CTrv1DSettings* settings = nullptr; // the owner
    std::string title;

    void Serialize(CArchive& archive) override;
};

// A chronogram of one enumerated field.
class CTrv1DGraphEnum : public TRuntimeClass<CTrv1DGraphEnum, CTrv1DGraph> {
  public:
    static constexpr std::string_view kClassName = "CTrv1DGraphEnum";

    CTrvDataFile* dataFile = nullptr; // null when the file is gone
    std::uint16_t channel = 0;
    std::uint32_t field = 0;
    std::string label;

    void Serialize(CArchive& archive) override;
};

class CTrv1DCurve : public TRuntimeClass<CTrv1DCurve, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrv1DCurve";

    CTrv1DGraphMeasure* graph = nullptr; // the owner
    CTrvDataFile* dataFile = nullptr;    // null when the file is gone
    std::uint16_t channel = 0;
    std::uint32_t field = 0;
    std::string label;
    std::uint32_t color = 0xFF000000; // ARGB
    double factor = 1.0;              // multiplied onto every value shown

    void Serialize(CArchive& archive) override;
};

// A graph of curves of one kind of measure.
class CTrv1DGraphMeasure : public TRuntimeClass<CTrv1DGraphMeasure, CTrv1DGraph> {
  public:
    static constexpr std::string_view kClassName = "CTrv1DGraphMeasure";

    std::vector<std::unique_ptr<CTrv1DCurve>> curves;

    // A new curve of this graph with the colour of its place in the palette and the factor 1.
    CTrv1DCurve* AddCurve(CTrvDataFile* dataFile, std::uint16_t channel, std::uint32_t field,
                          std::string label);
    // Deletes it; false if it is not of this graph.
    bool RemoveCurve(const CTrv1DCurve* curve);

    void Serialize(CArchive& archive) override;
};

class CTrv1DSettings : public TRuntimeClass<CTrv1DSettings, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrv1DSettings";

    CTrvProject* project = nullptr; // the owner
    std::vector<std::unique_ptr<CTrv1DGraph>> graphs;

    CTrv1DSettings() = default;
    explicit CTrv1DSettings(CTrvProject& owner) : project(&owner) {}

    CTrv1DGraphMeasure* AddMeasureGraph(std::string title);
    CTrv1DGraphEnum* AddEnumGraph(std::string title, CTrvDataFile* dataFile, std::uint16_t channel,
                                  std::uint32_t field, std::string label);
    // Deletes it; false if it is not in the list.
    bool RemoveGraph(const CTrv1DGraph* graph);
    // Deletes the curves and chronograms on a file, and graphs left without a curve by it. `dataFile` is only
    // compared.
    void ForgetDataFile(const CTrvDataFile* dataFile);

    // Second half of a load: sets the back pointers of all graphs and curves. Throws badIndex for a data file
    // of another project.
    void Attach(CTrvProject& owner);
    void Serialize(CArchive& archive) override;
};

} // namespace Metier_Tarvel_Graphics
