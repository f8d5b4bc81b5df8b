// The dialog that writes a packet file in another format: one table of formats, one of fields, one of
// switches, one of checks. UI thread.
#pragma once

#include "dialogs/tool_dialog.h"
#include "foundation/date_time.h"

namespace Metier_Tarvel {
class CTrvSimulationParameters;
}

namespace Dialogue_Tarvel {

enum class EExportFormat { txt, kml, geo, udt, sbet };

struct SExportFormat {
    std::string_view word; // of the batch program
    EText name;
    Outils_Configuration::TKey<std::string> program, programOfResult;
    std::string_view extension; // without the dot; of a template and of GIS files when nothing else says one
};
// In the order of EExportFormat.
std::span<const SExportFormat> GetExportFormats();

enum class EExportField {
    format,
    source,
    target,
    header,
    imuFrames,
    kmlChannel,
    showTime,
    kmlTime,
    track,
    trackColor,
    pointColorMode,
    pointColor,
    kmlLeverArm,
    clamp,
    altitudeScale,
    altitudeOffset,
    kmlDecimate,
    kmlDecimation,
    geoChannel,
    geoFormat,
    geoLeverArm,
    geoTime,
    geometry,
    motion,
    speed,
    orientation,
    geoDecimate,
    geoDecimation,
    exportTemplate,
    templateChannel,
    sbetLeverArm,
    timestamp,
    accuracy,
    sbetDecimate,
    sbetDecimation,
    from,
    to,
    openAtEnd,
    closeAtEnd,
    count
};
// By EExportField.
std::span<const SToolField> GetExportFields();

// A file that can be exported.
struct SExportSource {
    std::filesystem::path path;
    std::string word;  // "input", "output", "external1"
    std::string shown; // in the list of sources
    bool isResult = false;
    std::vector<std::string> channels;
    Outils_Temps::CDateTimeSpan timeOffset; // from its own clock to the time of the simulation
};

// What is exported from.
struct SExportProject {
    std::vector<SExportSource> sources; // at least one
    // Gives periods in the notation of the project; null for a file without one. Must outlive the dialog.
    const Metier_Tarvel::CTrvSimulationParameters* parameters = nullptr;
};
// Main input file, result, external files in the order of the project.
SExportProject GetExportProject(const Metier_Tarvel::CTrvSimulationParameters& parameters);

// What a template says of itself; empty texts for what it lacks, or when it cannot be read.
struct STemplateMetadata {
    std::string extension; // without the dot
    std::string channel;
};
STemplateMetadata ReadTemplateMetadata(const std::filesystem::path& exportTemplate);

class CTrvSimpleExporterDlg final : public CToolDialog {
  public:
    // Opens a file by the desktop's program for it; false when there is none.
    using COpenFile = std::function<bool(const std::filesystem::path&)>;

    CTrvSimpleExporterDlg(const SToolServices& services, SExportProject project, COpenFile openFile);

    EText GetTitle() const override;
    SSizeKeys GetSizeKeys() const override;
    std::string GetCommandLine() const override;
    std::filesystem::path GetTarget() const override;

  private:
    bool Check() override;
    std::string GetProgram() const override;
    void OnWritten(int field) override;
    bool OnEnded(Application_Tarvel::EOutcome& outcome, std::string& failure) override;
    std::string Show(int field) const override;
    std::string Read(int field, std::string_view text, std::string& value) const override;
    Application_Tarvel::SPathQuestion GetQuestion(int field) const override;

    const SExportSource& GetSource() const;
    void OfferChannels();
    void TakeTemplate();
    void ProposeTarget();

    const SExportProject m_project;
    const COpenFile m_openFile;
    std::string m_templateExtension;
    bool m_targetIsChosen = false; // by the user: no proposal replaces it
};

} // namespace Dialogue_Tarvel
