// The dialog for a project whose data files are elsewhere: the user says where one is, and the others are
// looked for beside it. UI thread.
#pragma once

#include "document/document.h"
#include "document/edits.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Dialogue_Tarvel {

using namespace Application_Tarvel;

class CRelinkDialog {
  public:
    struct SRow {
        Metier_Tarvel::CTrvDataFile* file;
        std::filesystem::path place; // empty as long as nobody knows it
    };

    // The missing files of the project. The document must outlive the dialog and have a project.
    explicit CRelinkDialog(CTrvDocument& document);

    const std::vector<SRow>& GetRows() const { return m_rows; }
    // What the dialog asks when it looks for the file of the row.
    SPathQuestion GetQuestion(std::size_t row) const;
    // Takes the new place of one file, and looks for the others that have none: in the same folder, and where
    // they were beside the first. Disks that do not answer in time have nothing.
    void Choose(std::size_t row, const std::filesystem::path& place);
    // Moves the files that have a place; false when there is none, or the project refused, which was shown.
    bool OnOK();

  private:
    CTrvDocument& m_document;
    std::vector<SRow> m_rows;
};

} // namespace Dialogue_Tarvel
