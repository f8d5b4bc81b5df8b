#include "export/template_export.h"

#include "export/template_lines.h"
#include "export/template_reader.h"
#include "foundation/paths.h"

#include <algorithm>

namespace Exportation {

using namespace Persistance_Xpf;
using Compagnon::EDialect;
using Compagnon::SProgram;
using Outils_Fichiers::FromText;

namespace {

constexpr SSwitchRow kTemplateSwitch{"/t", ESwitchValue::text, "TEMPLATE", EText::exportSwitchTemplate};

bool ShowsUtc(const SExportTemplate& made) {
    return std::ranges::any_of(made.line, [](const STemplateItem& item) {
        return item.field &&
               (item.field->source == EFieldSource::utc || item.field->source == EFieldSource::local);
    });
}

ERunEnd ExportTemplate(const CArguments& arguments, IRunMonitor& monitor) {
    CExportRun run(arguments, monitor);
    if (!arguments.Has(kTemplateSwitch.name)) return run.Fail(EText::exportNoTemplate, {});
    if (!run.Open({EFileKind::tarin, EFileKind::tarout})) return ERunEnd::failed;
    const auto made = ReadTemplate(FromText(arguments.GetText(kTemplateSwitch.name)), run.GetPass(), monitor);
    CExportFile file;
    if (!made || !run.OpenFile(file, run.GetTarget())) return ERunEnd::failed;
    if (ShowsUtc(*made) && !run.GetClock().KnowsUtc()) monitor.Report(ELevel::warning, EText::templateNoUtc);

    CTemplateLines writer(run, *made, file);
    writer.Write(made->headers);
    const std::uint64_t decimation = run.GetDecimation();
    std::uint64_t seen = 0;
    run.GetPass().Begin({made->inputs.front().channel}, run.GetPeriod());
    for (SPassPacket packet; file.IsGood() && run.GetPass().Next(packet);)
        if (seen++ % decimation == 0) writer.Take(packet);
    writer.Write(made->footers);
    if (writer.GetEmptyValues() > 0)
        monitor.Report(ELevel::warning, EText::templateEmptyValues,
                       {std::to_string(writer.GetEmptyValues())});
    CExportFile* const files[] = {&file};
    return run.Finish(files, writer.GetLines());
}

constexpr SSwitchRow kTemplateSwitches[] = {kTemplateSwitch, kFromSwitch, kToSwitch,
                                            kOffsetSwitch,   kUtcSwitch,  kDecimationSwitch};

} // namespace

const SProgram kTemplateExporter{"udtExporter.exe",
                                 EText::exportTemplatePurpose,
                                 "SOURCE TARGET",
                                 2,
                                 2,
                                 kTemplateSwitches,
                                 EDialect::tool,
                                 true,
                                 ExportTemplate};

} // namespace Exportation
