// A template, against a recording that has every channel: it is refused, or writes its lines.
#include "input.h"

#include "export/template_export.h"
#include "foundation/files.h"

using namespace Compagnon;

namespace {

class CListeningMonitor final : public IRunMonitor {
  public:
    int messages = 0;

  private:
    void Progress(double) override {}
    void Message(ELevel, EText, std::string_view) override { ++messages; }
    bool GoOn() override { return true; }
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Fuzz::CScratchFolder folder;
    static const std::string source = Fuzz::GetRecording().GetPath();
    const std::string target = folder / "target", form = folder / "form";
    Fuzz::Require(Outils_Fichiers::WriteWholeFile(form, {data, size}), "a file is written");
    CArguments arguments;
    std::string error;
    const std::vector<std::string> words{"/t", form, source, target};
    Fuzz::Require(arguments.Parse(Exportation::kTemplateExporter.switches, words, error),
                  "the command line is right");
    CListeningMonitor monitor;
    Exportation::kTemplateExporter.run(arguments, monitor);
    Fuzz::Require(monitor.messages > 0, "the end is reported");
    return 0;
}
