#include "document/actions/data_file_kind.h"
#include "document/actions/procedures.h"
#include "document/document.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "values/adaptors.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace Application_Tarvel {

using namespace Metier_Tarvel_Graphics;
using Outils_Texte::EText;
using Outils_Texte::GetText;

namespace {

constexpr std::string_view kRecordingExtension = "tarin";

struct SRemoval {
    EHint hint;
    const CObject* object; // only an identity once the file is deleted
};

// What goes from the saved view settings when the file goes: every curve and value on it, and the graphs that
// are left empty.
std::vector<SRemoval> FindDependents(const CTrvProject& project, const CTrvDataFile& file) {
    std::vector<SRemoval> removals;
    for (const auto& graph : project.graphSettings->graphs) {
        if (graph->IsKindOf(CTrv1DGraphEnum::Class())) {
            if (static_cast<const CTrv1DGraphEnum&>(*graph).dataFile == &file)
                removals.push_back({hintGraphRemoved, graph.get()});
        } else if (graph->IsKindOf(CTrv1DGraphMeasure::Class())) {
            const auto& curves = static_cast<const CTrv1DGraphMeasure&>(*graph).curves;
            std::size_t count = 0;
            for (const auto& curve : curves) {
                if (curve->dataFile != &file) continue;
                removals.push_back({hintCurveRemoved, curve.get()});
                ++count;
            }
            if (count > 0 && count == curves.size()) removals.push_back({hintGraphRemoved, graph.get()});
        }
    }
    for (const auto& value : project.instantValuesSettings->measures)
        if (value->dataFile == &file) removals.push_back({hintInstantMeasureRemoved, value.get()});
    for (const auto& value : project.instantValuesSettings->enums)
        if (value->dataFile == &file) removals.push_back({hintInstantEnumRemoved, value.get()});
    return removals;
}

bool Ask(IDocumentHost& host, EText question) {
    return host.ShowMessage(std::string(GetText(question)), EButtons::okCancel, EIcon::question) ==
           EAnswer::ok;
}

// A packet file of the current layout, made from the chosen file if need be; empty when refused.
std::optional<std::filesystem::path> Prepare(const CEdit& edit, const std::filesystem::path& chosen) {
    CTrvDocument& document = edit.GetDocument();
    IDocumentHost& host = document.GetHost();
    const auto adaptors = std::make_shared<Outils_Valeurs::CTrvAdaptors>();
    adaptors->Configure(document.GetConfiguration());
    const auto classify = [chosen, adaptors](const Outils::CEvent&) {
        return ClassifyDataFile(chosen, adaptors->GetDateTime());
    };
    const auto kind =
        document.GetFileLooks().Call(classify, GetTimeForChosenFile(document.GetConfiguration()));
    const auto convert = [&](ERawFormat format) {
        std::filesystem::path made;
        return host.ConvertRawFiles({chosen}, format, made) == EOutcome::done ? std::optional(made)
                                                                              : std::nullopt;
    };
    switch (kind ? kind->kind : EDataFileKind::unreadable) {
    case EDataFileKind::packets: return chosen;
    case EDataFileKind::outdatedPackets:
        if (Ask(host, EText::upgradeDataFile) && host.UpdateDataFile(chosen) == EOutcome::done) return chosen;
        return std::nullopt;
    case EDataFileKind::raw:
        if (Ask(host, EText::convertDataFile)) return convert(kind->format);
        return std::nullopt;
    case EDataFileKind::unknown:
        if (Ask(host, EText::unrecognizedDataFile)) return convert(ERawFormat::rawIns);
        return std::nullopt;
    case EDataFileKind::unreadable: break;
    }
    edit.Refuse(EText::dataFileNotAnalyzed);
    return std::nullopt;
}

} // namespace

bool Procedures::AddDataFile(const CEdit& edit) {
    CTrvDocument& document = edit.GetDocument();
    const auto chosen = document.GetHost().AskPath(
        {EPathKind::open, EText::dataFileTitle, EText::dataFileFilter, kRecordingExtension});
    return !chosen.empty() && AddGivenDataFile(edit, chosen.front());
}

bool Procedures::AddGivenDataFile(const CEdit& edit, std::filesystem::path chosen) {
    CTrvDocument& document = edit.GetDocument();
    const auto path = Prepare(edit, chosen);
    if (!path) return false;
    auto& parameters = *edit.GetProject().simulationParameters;
    if (parameters.HasDataFile(*path)) return edit.Refuse(EText::dataFileReferenced);
    const CWaitCursor wait(document.GetHost());
    CTrvDataFile* file = edit.GetProject().AddDataFile(*path, document.IsExpertMode());
    if (!file) return edit.Refuse();
    document.GetFiles()->Follow(*file);
    // On its own clock the file is as far from the recording as the two origins are from one another.
    const SFirstData data = document.GetFiles()->WaitForFirstData(*file);
    if (data.hasUtc && parameters.hasUtcReference)
        if (const auto offset = data.utcOrigin - parameters.utcReference; offset.IsValid())
            file->timeOffset = Metier_Tarvel::ToStoredTime(offset);
    return edit.Changed(file);
}

bool Procedures::MoveDataFiles(const CEdit& edit, CMoves moves) {
    const auto& parameters = *edit.GetProject().simulationParameters;
    for (const auto& [file, path] : moves) {
        if (!Outils_Fichiers::CanBeStored(path)) return edit.Refuse(EText::nameNotStorable);
        if (!Outils_Fichiers::SamePath(file->path, path) && parameters.HasDataFile(path)) return edit.Refuse();
    }
    for (const auto& [file, path] : moves) edit.GetDocument().GetFiles()->Move(*file, path);
    return !moves.empty() && edit.Changed(nullptr);
}

bool Procedures::RemoveDataFile(const CEdit& edit, CTrvDataFile& file) {
    return Application_Tarvel::RemoveDataFile(edit.GetDocument(), edit.GetProject(), file) || edit.Refuse();
}

bool IsRemovable(const CTrvProject& project, const CTrvDataFile& file) {
    const auto& files = project.simulationParameters->externalFiles;
    const bool isExternal =
        std::any_of(files.begin(), files.end(), [&file](const auto& own) { return own.get() == &file; });
    return isExternal && !file.IsReferenced();
}

bool RemoveDataFile(CTrvDocument& document, CTrvProject& project, CTrvDataFile& file) {
    if (!IsRemovable(project, file)) return false;
    const std::vector<SRemoval> dependents = FindDependents(project, file);
    // The views let go of the file while it still exists.
    document.ProjectChanged(hintDataFileRemoved, &file);
    document.GetFiles()->Forget(file);
    project.RemoveDataFile(&file);
    // A view that rebuilt itself by the first hint met them again.
    for (const SRemoval& dependent : dependents) document.ProjectChanged(dependent.hint, dependent.object);
    return true;
}

} // namespace Application_Tarvel
