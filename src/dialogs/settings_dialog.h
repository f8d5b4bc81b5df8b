// The settings of the program as the rows of a grid. What is edited stays in the rows until OK. UI thread.
#pragma once

#include "document/document_host.h"
#include "grid/grid_control.h"

#include <vector>

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}
namespace Outils_Valeurs {
class CTrvAdaptors;
}

namespace Dialogue_Tarvel {

class CSettingItem;

class CTrvSettingsDlg {
  public:
    // All must outlive the dialog. `expertMode` is the mode of the running program: it decides which rows
    // there are.
    CTrvSettingsDlg(Application_Tarvel::IQuestions& questions,
                    Outils_Configuration::CTrvCnfConfigFile& configuration,
                    Outils_Valeurs::CTrvAdaptors& adaptors, bool expertMode);
    ~CTrvSettingsDlg();
    CTrvSettingsDlg(const CTrvSettingsDlg&) = delete;
    CTrvSettingsDlg& operator=(const CTrvSettingsDlg&) = delete;

    Presentation_Tarvel_Grid::CHierarchicalGridControl& GetGrid() { return m_grid; }
    Application_Tarvel::IQuestions& GetQuestions() const { return m_questions; }
    Outils_Configuration::CTrvCnfConfigFile& GetConfiguration() const { return m_configuration; }
    // Writes every row to its key, in the order of the rows, and sets the adaptors up. Says first what waits
    // for the next start of the program. Without it the settings stay as they are.
    void OnOK();

  private:
    bool NeedsRestart() const;

    Application_Tarvel::IQuestions& m_questions;
    Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    Outils_Valeurs::CTrvAdaptors& m_adaptors;
    Presentation_Tarvel_Grid::CHierarchicalGridControl m_grid;
    std::vector<CSettingItem*> m_items; // owned by the grid
};

} // namespace Dialogue_Tarvel
