// The dialog that converts recordings of other kinds into a packet file: one table of formats, one of fields,
// one of switches, one of checks. UI thread.
#pragma once

#include "dialogs/tool_dialog.h"
#include "document/actions/data_file_kind.h"

namespace Dialogue_Tarvel {

using Application_Tarvel::ERawFormat;

struct SImportFormat {
    std::string_view word; // of the batch program
    EText name;
    Outils_Configuration::TKey<std::string> program;
    bool takesSeveral = false; // source files
};
// In the order of ERawFormat.
std::span<const SImportFormat> GetImportFormats();

enum class EImportField {
    format,
    sources,
    target,
    checksum,
    beacon,
    equipment,
    date,
    decodedDate,
    skip,
    stopAt,
    decipher,
    sort,
    clockDrift,
    clockCycle,
    imuOffset,
    count
};
// By EImportField.
std::span<const SToolField> GetImportFields();

class CTrvSimpleImporterDlg final : public CToolDialog {
  public:
    // `projectFiles` are no targets.
    CTrvSimpleImporterDlg(const SToolServices& services, ERawFormat format,
                          const std::vector<std::filesystem::path>& sources,
                          std::vector<std::filesystem::path> projectFiles = {});

    EText GetTitle() const override;
    SSizeKeys GetSizeKeys() const override;
    std::string GetCommandLine() const override;
    // The file that was made.
    std::filesystem::path GetTarget() const override;

  private:
    bool Check() override;
    std::string GetProgram() const override;
    void OnWritten(int field) override;
    bool OnEnded(Application_Tarvel::EOutcome& outcome, std::string& failure) override;
    Application_Tarvel::SPathQuestion GetQuestion(int field) const override;
    std::vector<std::filesystem::path> GetSources() const;
    void ProposeTarget();

    const std::vector<std::filesystem::path> m_projectFiles;
    bool m_targetIsChosen = false; // by the user: no proposal replaces it
};

} // namespace Dialogue_Tarvel
