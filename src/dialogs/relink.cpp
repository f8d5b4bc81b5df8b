#include "dialogs/relink.h"

#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>

namespace Dialogue_Tarvel {

using Outils_Texte::EText;

namespace {

// Where a file is now that stood in `before` while `known` stood in `knownBefore`: beside it as before, or in
// its folder. Empty when it is in neither place.
std::filesystem::path FindBeside(const std::filesystem::path& before,
                                 const std::filesystem::path& knownBefore,
                                 const std::filesystem::path& known) {
    const auto way = before.lexically_relative(knownBefore.parent_path());
    for (const auto& candidate : {known.parent_path() / way, known.parent_path() / before.filename()}) {
        std::error_code error;
        if (std::filesystem::is_regular_file(candidate, error)) return candidate.lexically_normal();
    }
    return {};
}

} // namespace

CRelinkDialog::CRelinkDialog(CTrvDocument& document) : m_document(document) {
    for (auto* file : document.GetFiles()->GetMissing()) m_rows.push_back({file, {}});
}

SPathQuestion CRelinkDialog::GetQuestion(std::size_t row) const {
    // The dialog opens where another file was found: the next one is most likely near.
    const auto found = std::ranges::find_if(m_rows, [](const SRow& other) { return !other.place.empty(); });
    const auto& before = m_rows[row].file->path;
    return {EPathKind::open, EText::relinkTitle, EText::batchInputFilter, "tarin",
            found == m_rows.end() ? before : found->place.parent_path() / before.filename()};
}

void CRelinkDialog::Choose(std::size_t row, const std::filesystem::path& place) {
    m_rows[row].place = Outils_Fichiers::ToAbsolute(place);
    std::vector<std::filesystem::path> before;
    for (const SRow& other : m_rows) before.push_back(other.file->path);
    const auto search = [before, row, known = m_rows[row].place](const Outils::CEvent& cancel) {
        std::vector<std::filesystem::path> places(before.size());
        for (std::size_t i = 0; i < before.size() && !cancel.IsSet(); ++i)
            if (i != row) places[i] = FindBeside(before[i], before[row], known);
        return places;
    };
    const CWaitCursor wait(m_document.GetHost());
    const auto places =
        m_document.GetFileLooks().Call(search, GetTimeForChosenFile(m_document.GetConfiguration()));
    if (!places) return;
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].place.empty()) m_rows[i].place = (*places)[i];
}

bool CRelinkDialog::OnOK() {
    Edits::CMoves moves;
    for (const SRow& row : m_rows)
        if (!row.place.empty()) moves.emplace_back(row.file, row.place);
    return m_document.GetEdits().Do(Edits::kMoveDataFiles, moves);
}

} // namespace Dialogue_Tarvel
