// The dialog that writes a packet file in another format: one table of formats, one of fields, one of
// switches, one of checks. UI thread.
#pragma once

#include "dialogs/export_sources.h"
#include "dialogs/tool_dialog.h"

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
