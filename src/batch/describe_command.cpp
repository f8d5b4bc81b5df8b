// The whole project as a table: every property that an archive keeps, in its order, values as the user's
// settings show them.
#include "batch/commands.h"
#include "batch/session.h"
#include "batch/table.h"
#include "foundation/texts.h"
#include "model/project.h"
#include "model/properties/classes.h"
#include "model/simulation_time_adaptor.h"
#include "values/adaptors.h"

namespace Batch {

using namespace Metier_Tarvel_Proprietes;
using Outils_Texte::GetText;

namespace {

constexpr std::string_view kBelow = " > "; // between the names of a place

class CDescription {
  public:
    // Both must outlive the object.
    CDescription(CTable& table, const SPropertyContext& context) : m_table(table), m_context(context) {}

    // Writes a row for each property of the object, which is at `place` in the project.
    void Write(const CObject& object, const std::string& place) {
        for (const SProperty* row : FindPropertyClass(object)->archived) {
            if (!row->child || row->isInline)
                WriteRows(*row, object, place);
            else
                WriteObjects(*row, object, place);
        }
    }

  private:
    static std::string GetElement(EText title, std::size_t index) {
        return std::string(GetText(title)) + '[' + std::to_string(index) + ']';
    }

    // The elements of a list have a row each.
    void WriteRows(const SProperty& row, const CObject& object, const std::string& place) {
        if (!row.isList) return m_table.Row(place, row.label, Show(row, m_context, object));
        for (std::size_t i = 0; const CObject* child = GetChild(row, object, i); ++i)
            m_table.Row(place, GetElement(row.label, i), ShowLine(m_context, *child));
    }
    // The elements of a list are named by their class and number.
    void WriteObjects(const SProperty& row, const CObject& object, const std::string& place) {
        for (std::size_t i = 0; const CObject* child = GetChild(row, object, i); ++i) {
            const std::string name = row.isList ? GetElement(FindPropertyClass(*child)->title, i)
                                                : std::string(GetText(row.label));
            Write(*child, place.empty() ? name : place + std::string(kBelow) + name);
        }
    }

    CTable& m_table;
    const SPropertyContext& m_context;
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
    time.Configure(configuration);
    const SPropertyContext context{adaptors, time, *project.simulationParameters};
    CTable table(streams.out, options.GetForm(), EText::describeColumns);
    CDescription(table, context).Write(project, {});
    return exitSuccess;
}

} // namespace Batch
