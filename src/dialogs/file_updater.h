// The dialog that raises packet files of an older layout to the present one, in their place. UI thread.
#pragma once

#include "dialogs/tool_dialog.h"

namespace Dialogue_Tarvel {

enum class EUpdateField { format, files, backup, count };
// By EUpdateField; the format is the only one.
std::span<const SToolField> GetUpdateFields();

class CTrvFileUpdaterDlg final : public CToolDialog {
  public:
    CTrvFileUpdaterDlg(const SToolServices& services, const std::vector<std::filesystem::path>& files);

    EText GetTitle() const override;
    SSizeKeys GetSizeKeys() const override;
    std::string GetCommandLine() const override;

  private:
    bool Check() override;
    EText GetLaunchFailure() const override;
    std::string GetProgram() const override;
    bool OnEnded(Application_Tarvel::EOutcome& outcome, std::string& failure) override;
};

} // namespace Dialogue_Tarvel
