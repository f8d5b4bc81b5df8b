#include "graph/field_text.h"

#include "config/config_file.h"
#include "foundation/paths.h"
#include "xpf/layout.h"

#include <cmath>

namespace Presentation_Tarvel_Graphics {

using namespace Metier_Tarvel;
using namespace Outils_Valeurs;
using namespace Persistance_Xpf;
using Outils_Configuration::Cnf;

namespace {

constexpr double kTurn = 360;         // degrees
constexpr std::int32_t kDecimals = 9; // of degrees: a tenth of a millimetre
constexpr const char* kDegrees = "°"; // the unit of latitudes and longitudes

} // namespace

std::string MakeChannelLabel(const std::string& code, bool translate, bool alsoCode) {
    const std::string_view label = translate ? Persistance_Xpf::GetChannelLabel(code) : std::string_view();
    if (label.empty()) return code;
    return alsoCode ? std::string(label) + " (" + code + ')' : std::string(label);
}

std::string MakeFileSuffix(const CTrvProject& project, const CTrvDataFile* file) {
    const auto& parameters = *project.simulationParameters;
    if (!file || file == parameters.mainInputFile.get() || file == parameters.outputFile.get()) return {};
    return " - " + Outils_Fichiers::ToText(file->path.filename());
}

Outils_Plot2D::Colour GetFileColour(const CTrvProject& project, const CTrvDataFile* file,
                                    const Outils_Configuration::CTrvCnfConfigFile& settings) {
    const auto& parameters = *project.simulationParameters;
    if (file && file == parameters.mainInputFile.get())
        return settings.Get(Cnf<"viewValue/inputFileColor">).argb;
    if (file && file == parameters.outputFile.get())
        return settings.Get(Cnf<"viewValue/outputFileColor">).argb;
    return settings.Get(Cnf<"viewValue/externalFileColor">).argb;
}

double GetTurn(std::uint32_t nature) {
    return nature == natureAttitude || nature == natureLongitude ? kTurn : 0;
}

double Subtract(std::uint32_t nature, double second, double first) {
    const double difference = second - first, turn = GetTurn(nature);
    return turn > 0 ? difference - turn * std::round(difference / turn) : difference;
}

bool CFieldText::IsPlace() const { return m_nature == natureLatitude || m_nature == natureLongitude; }

std::string CFieldText::GetUnit() const {
    if (IsPlace()) return kDegrees;
    const auto* physical = dynamic_cast<const CPhysicalValueAdaptor*>(m_adaptor);
    return physical ? physical->GetCurrentUnit().symbol : std::string();
}

double CFieldText::GetScale() const {
    const auto* physical = dynamic_cast<const CPhysicalValueAdaptor*>(m_adaptor);
    return physical ? physical->GetCurrentUnit().B / physical->GetCurrentUnit().A : 1;
}

std::string CFieldText::Format(double value) const {
    std::string text;
    m_adaptor->ValueToText(value, text);
    const auto* physical = dynamic_cast<const CPhysicalValueAdaptor*>(m_adaptor);
    if (physical && !physical->showUnit) text += ' ' + GetUnit();
    return text;
}

std::string CFieldText::FormatSpan(double value) const {
    if (!IsPlace()) return Format(value);
    CNumericValueAdaptor degrees;
    degrees.precision = kDecimals;
    degrees.decimalSeparator = m_adaptor->decimalSeparator;
    std::string text;
    degrees.ValueToText(value, text);
    return text + ' ' + kDegrees;
}

SSimulationTimeText MakeTimeText(const Application_Tarvel::CTrvDocument& document,
                                 const CTrvAdaptors& adaptors) {
    SSimulationTimeText text;
    text.mode = document.GetConfiguration().Get(Cnf<"adaptors/simulationTime/mode">);
    text.dateTime = adaptors.GetDateTime();
    text.dateTime.showTime = true;
    text.span = adaptors.GetDateTimeSpan();
    const auto* project = document.GetProject();
    if (project && project->simulationParameters->hasUtcReference)
        text.utcReference = project->simulationParameters->utcReference;
    return text;
}

} // namespace Presentation_Tarvel_Graphics
