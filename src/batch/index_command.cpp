// The command that makes the index of a packet file.
#include "batch/commands.h"
#include "batch/file_access.h"
#include "batch/session.h"
#include "batch/table.h"
#include "dataaccess/index_scan.h"
#include "document/index_settings.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <ostream>

namespace Batch {

using namespace Application_Tarvel;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToText;

int IndexCommand(const COptions& options, SStreams streams) {
    const std::string& path = options.GetArguments()[0];
    SOpenFile open = OpenFile(path, streams);
    if (!open.file) return exitFailure;
    SIndexSettings settings = ReadIndexSettings(CSettings());
    settings.isOn = true; // the user asks for it
    settings.leastKept = 0;
    const std::filesystem::path folder = settings.folder;
    const CIndexStore store(folder, settings.disk, settings.loaded);
    const auto indexes = std::make_shared<CFileIndexes>(std::move(settings));
    const Outils::CEvent never;
    CIndexScan scan(FromText(path), open.kind, indexes);
    scan.Begin(*open.file, never);
    scan.GoOn(*open.file, never);
    const bool isKept = scan.End(true);
    const auto index = indexes->Find(FromText(path));
    if (!isKept || !index) return Fail(path, EText::indexNotKept, streams, {ToText(folder)});

    std::error_code error;
    CTable table(streams.out, options.GetForm(), EText::indexColumns);
    table.Row(path, open.file->GetFileSize(), index->GetCovered(),
              std::filesystem::file_size(store.GetPlace(index->GetIdentity()), error),
              index->GetGaps().size() + index->GetMoreGaps());
    return exitSuccess;
}

} // namespace Batch
