// The edit of the INS configuration.
#pragma once

#include "document/actions/action.h"
#include "document/actions/values.h"

#include <filesystem>
#include <utility>

namespace Application_Tarvel {

// Writes the values and then, if one is given, what a configuration file of the INS says: an embedded
// configuration or an INI file. A file that cannot be read leaves everything as it was.
class CTrvActChangeNelixConfiguration final : public CTrvTableAction {
  public:
    CTrvActChangeNelixConfiguration(CTrvDocument& document, SNelixValues values,
                                    std::filesystem::path configurationFile = {})
        : CTrvTableAction(document, EAction::changeNelixConfiguration),
          m_values(std::move(values)),
          m_configurationFile(std::move(configurationFile)) {}

  private:
    bool Perform(CTrvProject& project) override;

    SNelixValues m_values;
    std::filesystem::path m_configurationFile; // empty for none
};

} // namespace Application_Tarvel
