// The whole project as text: every property that an archive keeps, in its order, values as the user's
// settings show them.
#include "batch/commands.h"
#include "batch/session.h"
#include "foundation/texts.h"
#include "model/project.h"
#include "model/properties/classes.h"
#include "model/simulation_time_adaptor.h"
#include "values/adaptors.h"

namespace Batch {

using namespace Metier_Tarvel_Proprietes;
using Outils_Texte::GetText;

namespace {

class CDescription {
  public:
    // Both must outlive the object.
    CDescription(std::ostream& out, const SPropertyContext& context) : m_out(out), m_context(context) {}

    void Write(const CObject& object) {
        for (const SProperty* row : FindPropertyClass(object)->archived) {
            if (!row->child || row->isInline)
                WriteLines(*row, object);
            else
                WriteBlocks(*row, object);
        }
    }

  private:
    std::string Indent() const { return std::string(m_depth * 2, ' '); }

    void WriteLine(EText label, const std::string& text) {
        m_out << Indent() << GetText(label) << ": " << text << '\n';
    }
    // The elements of a list have a line each.
    void WriteLines(const SProperty& row, const CObject& object) {
        if (!row.isList) return WriteLine(row.label, Show(row, m_context, object));
        for (std::size_t i = 0; const CObject* child = GetChild(row, object, i); ++i)
            WriteLine(row.label, ShowLine(m_context, *child));
    }
    // The elements of a list are titled by their class.
    void WriteBlocks(const SProperty& row, const CObject& object) {
        for (std::size_t i = 0; const CObject* child = GetChild(row, object, i); ++i) {
            m_out << Indent() << GetText(row.isList ? FindPropertyClass(*child)->title : row.label) << '\n';
            ++m_depth;
            Write(*child);
            --m_depth;
        }
    }

    std::ostream& m_out;
    const SPropertyContext& m_context;
    std::size_t m_depth = 0;
};

} // namespace

int DescribeCommand(const COptions& options, SStreams streams) {
    CSession session(streams);
    if (!session.Open(options.GetArguments()[0])) return exitFailure;
    const auto& configuration = session.GetConfiguration();
    const auto& project = *session.GetDocument().GetProject();
    Outils_Valeurs::CTrvAdaptors adaptors;
    adaptors.Configure(configuration);
    Metier_Tarvel::CTrvSimulationTimeAdaptor time(adaptors.GetDateTimeSpan(), adaptors.GetDateTime());
    using Outils_Configuration::Cnf;
    time.mode = static_cast<std::int32_t>(configuration.Get(Cnf<"adaptors/simulationTime/mode">));
    const SPropertyContext context{adaptors, time, *project.simulationParameters};
    CDescription(streams.out, context).Write(project);
    return exitSuccess;
}

} // namespace Batch
