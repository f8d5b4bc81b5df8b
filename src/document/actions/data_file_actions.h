// The edits of the project's list of data files. Threads hold the identity of a file, so both follow a fixed
// order of steps.
#pragma once

#include "document/actions/action.h"
#include "foundation/texts.h"

#include <filesystem>
#include <optional>

namespace Application_Tarvel {

using Outils_Texte::EText;

using Metier_Tarvel::CTrvDataFile;

// Asks for a file, has it updated or converted where it must be, and takes it into the project as an external
// file.
class CTrvActAddDataFile final : public CTrvTableAction {
  public:
    explicit CTrvActAddDataFile(CTrvDocument& document) : CTrvTableAction(document, EAction::addDataFile) {}

  private:
    bool Perform(CTrvProject& project) override;
    // A packet file of the current layout, made from the chosen file if need be; empty when refused.
    std::optional<std::filesystem::path> Prepare(const std::filesystem::path& chosen);
    bool Ask(EText question);
};

// Refuses a file that is still in use.
class CTrvActRemoveDataFile final : public CTrvTableAction {
  public:
    CTrvActRemoveDataFile(CTrvDocument& document, CTrvDataFile& file)
        : CTrvTableAction(document, EAction::removeDataFile), m_file(file) {}

  private:
    bool Perform(CTrvProject& project) override;

    CTrvDataFile& m_file;
};

// Whether the file is an external one that no sensor uses. A project from a damaged archive may have a sensor
// on a file that it does not list: that one is no part of it, and cannot be removed.
bool IsRemovable(const CTrvProject& project, const CTrvDataFile& file);

// Tells the views, stops all that watches the file, then deletes it with the curves and values on it. False,
// and nothing happens, for one that is not removable.
bool RemoveDataFile(CTrvDocument& document, CTrvProject& project, CTrvDataFile& file);

} // namespace Application_Tarvel
