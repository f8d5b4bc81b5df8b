// The whole project as indented text: every field that is archived under its own name, values as the user's
// settings show them.
#include "batch/commands.h"
#include "batch/session.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/simulation_time_adaptor.h"
#include "values/adaptors.h"

#include <ostream>

namespace Batch {

using namespace Metier_Tarvel;
using Outils_Valeurs::CTrvAdaptors;
using Outils_Valeurs::EQuantity;

namespace {

class CDescription {
  public:
    CDescription(std::ostream& out, const CTrvAdaptors& adaptors, const CTrvSimulationParameters& parameters)
        : m_out(out),
          m_adaptors(adaptors),
          m_parameters(parameters),
          m_time(adaptors.GetDateTimeSpan(), adaptors.GetDateTime()) {}

    void Describe(const CTrvProject& project);

  private:
    // Everything written while it lives stands one step further in, below a title.
    class CBlock {
      public:
        CBlock(CDescription& description, std::string_view title) : m_description(description) {
            m_description.Line(title);
            ++m_description.m_depth;
        }
        ~CBlock() { --m_description.m_depth; }
        CBlock(const CBlock&) = delete;
        CBlock& operator=(const CBlock&) = delete;

      private:
        CDescription& m_description;
    };

    void Line(std::string_view text) { m_out << std::string(m_depth * 2, ' ') << text << '\n'; }
    void Row(std::string_view name, std::string_view value) {
        m_out << std::string(m_depth * 2, ' ') << name << ": " << value << '\n';
    }
    void Row(std::string_view name, bool value) { Row(name, std::string_view(value ? "true" : "false")); }
    void Row(std::string_view name, const char* value) { Row(name, std::string_view(value)); }
    void Number(std::string_view name, std::int64_t value) { Row(name, std::to_string(value)); }
    void Word(std::string_view name, EWordList list, std::int32_t value) { Row(name, GetWord(list, value)); }
    void Value(std::string_view name, const Outils_Valeurs::CNumericValueAdaptor& adaptor, double value) {
        std::string text;
        adaptor.ValueToText(value, text);
        Row(name, text);
    }
    void Quantity(std::string_view name, EQuantity quantity, double value) {
        Value(name, m_adaptors.Get(quantity), value);
    }
    // A rate in hertz has no adaptor of its own.
    void Hertz(std::string_view name, double value) {
        std::string text;
        m_adaptors.GetNumeric().ValueToText(value, text);
        Row(name, text + " Hz");
    }
    void Time(std::string_view name, CDateTime time) {
        std::string text;
        m_time.ValueToText(time, m_parameters, text);
        Row(name, text);
    }
    void Span(std::string_view name, CDateTime stored) {
        std::string text;
        m_adaptors.GetDateTimeSpan().ValueToText(ToSpan(stored), text);
        Row(name, text);
    }
    void LeverArm(std::string_view name, const CLeverArm* arm) {
        if (arm) Triple(name, m_adaptors.GetLeverArm(), arm->xv1, arm->xv2, arm->xv3);
    }
    void Misalignment(std::string_view name, const CMisalignment* angles) {
        if (angles) Triple(name, m_adaptors.GetMisalignment(), angles->heading, angles->roll, angles->pitch);
    }
    void Triple(std::string_view name, const Outils_Valeurs::CTripleAdaptor& adaptor, double a, double b,
                double c) {
        const double values[] = {a, b, c};
        std::string line, text;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            adaptor.GetAxis(axis).ValueToText(values[axis], text);
            line += (axis ? ", " : "") + text;
        }
        Row(name, line);
    }
    void Period(const CTrvPeriod& period) {
        Time("begin", period.begin);
        Time("end", period.end);
    }
    // A channel of a file by names; "none" for a reference that leads nowhere.
    void Channel(const CTrvDataFile* file, std::string_view channel) {
        Row("dataFile", file ? Outils_Fichiers::ToText(file->path) : std::string("none"));
        Row("channel", channel);
    }
    void FieldOf(const CTrvDataFile* file, std::uint16_t channel, std::uint32_t field) {
        const CTrvDataFileChannel* known = file ? file->FindChannel(channel) : nullptr;
        Channel(file, known ? known->name : std::to_string(channel));
        Number("field", field);
    }

    void Parameters();
    void DataFile(std::string_view title, const CTrvDataFile& file);
    void Configuration(const CTrvNelixConfiguration& configuration);
    void Sensor(CTrvSensor& sensor);
    void SensorOfKind(const CTrvSensor& sensor);
    void StdDev(const CTrvStdDevInstruction& instruction);
    void Graphs(const Metier_Tarvel_Graphics::CTrv1DSettings& settings);
    void InstantValues(const Metier_Tarvel_InstantValues::CTrvInstantValuesSettings& settings);

    std::ostream& m_out;
    const CTrvAdaptors& m_adaptors;
    const CTrvSimulationParameters& m_parameters;
    CTrvSimulationTimeAdaptor m_time;
    std::size_t m_depth = 0;
};

void CDescription::Describe(const CTrvProject& project) {
    Parameters();
    Graphs(*project.graphSettings);
    InstantValues(*project.instantValuesSettings);
}

void CDescription::Parameters() {
    const CBlock block(*this, "simulationParameters");
    Word("algorithm", EWordList::algorithm, m_parameters.algorithm);
    Word("heaveAlgorithm", EWordList::heaveAlgorithm, m_parameters.heaveAlgorithm);
    Word("heaveSeaState", EWordList::heaveSeaState, m_parameters.heaveSeaState);
    Word("gpsAltitudeReference", EWordList::gpsAltitudeReference, m_parameters.gpsAltitudeReference);
    {
        const CBlock position(*this, "referencePosition");
        const auto& adaptor = m_adaptors.GetGeographicPosition();
        Value("latitude", adaptor.latitude, m_parameters.referencePosition.latitude);
        Value("longitude", adaptor.longitude, m_parameters.referencePosition.longitude);
        Value("altitude", adaptor.altitude, m_parameters.referencePosition.altitude);
    }
    Hertz("defaultOutputRate", m_parameters.defaultOutputRate);
    Time("begin", m_parameters.begin);
    Time("end", m_parameters.end);
    for (const auto& rate : m_parameters.outputRates) {
        const CBlock one(*this, "outputRate");
        Period(*rate);
        Hertz("value", rate->value);
    }
    for (const auto& zupt : m_parameters.zupts) {
        const CBlock one(*this, "zupt");
        Period(*zupt);
        Word("mode", EWordList::zuptMode, zupt->mode);
    }
    for (const auto& altitude : m_parameters.altitudeModes) {
        const CBlock one(*this, "altitudeMode");
        Period(*altitude);
        Word("mode", EWordList::altitudeMode, altitude->mode);
    }
    for (const auto& sensor : m_parameters.sensors) Sensor(*sensor);
    Configuration(*m_parameters.nelixConfiguration);
    DataFile("mainInputFile", *m_parameters.mainInputFile);
    DataFile("outputFile", *m_parameters.outputFile);
    for (const auto& file : m_parameters.externalFiles) DataFile("externalFile", *file);
    Row("hasUtcReference", m_parameters.hasUtcReference);
    if (!m_parameters.hasUtcReference) return;
    std::string text;
    m_adaptors.GetDateTime().ValueToText(m_parameters.utcReference, text);
    Row("utcReference", text);
}

void CDescription::DataFile(std::string_view title, const CTrvDataFile& file) {
    const CBlock block(*this, title);
    Row("path", Outils_Fichiers::ToText(file.path));
    Span("timeOffset", file.timeOffset);
    for (const auto& channel : file.channels)
        Row("channel", std::to_string(channel->id) + " " + channel->name + " " + channel->sensorClass);
}

void CDescription::Configuration(const CTrvNelixConfiguration& configuration) {
    const CBlock block(*this, "nelixConfiguration");
    Misalignment("factoryMisalignment", configuration.factoryMisalignment.get());
    Number("roughMisalignment", configuration.roughMisalignment);
    Misalignment("fineMisalignment", configuration.fineMisalignment.get());
    Misalignment("userMisalignment", configuration.userMisalignment.get());
    LeverArm("primaryLeverArm", configuration.primaryLeverArm.get());
    LeverArm("secondaryLeverArmA", configuration.secondaryLeverArmA.get());
    LeverArm("secondaryLeverArmB", configuration.secondaryLeverArmB.get());
    LeverArm("secondaryLeverArmC", configuration.secondaryLeverArmC.get());
    Quantity("currentModeling.time", EQuantity::currentTime, configuration.currentModeling->time);
    Quantity("currentModeling.sigma", EQuantity::currentSpeed, configuration.currentModeling->sigma);
    constexpr std::string_view names[CTrvNelixType::kFieldCount] = {
        "equipment", "housing", "fog", "accelerometers", "saturation", "algorithm"};
    for (int field = 0; field < CTrvNelixType::kFieldCount; ++field)
        Row("type." + std::string(names[field]),
            configuration.type->GetFieldText(static_cast<CTrvNelixType::EField>(field)));
    LeverArm("cogLeverArm", configuration.cogLeverArm.get());
}

void CDescription::Sensor(CTrvSensor& sensor) {
    const CBlock block(*this, sensor.GetKind().className);
    Channel(sensor.channel ? sensor.channel->file : nullptr, sensor.channel ? sensor.channel->name : "none");
    Span("timeOffset", sensor.timeOffset);
    Row("synchronizedOutput", sensor.synchronizedOutput);
    LeverArm("leverArm", sensor.GetLeverArm());
    Misalignment("misalignment", sensor.GetMisalignment());
    if (const double* factor = sensor.GetScaleFactor())
        Quantity("scaleFactor", EQuantity::scaleFactor, *factor);
    SensorOfKind(sensor);
    for (const CTrvStdDevInstruction* instruction : sensor.GetStdDevInstructions())
        if (instruction) StdDev(*instruction);
    for (const auto& group : sensor.rejectionGroups) {
        const CBlock rejections(*this, group->name);
        for (const auto& instruction : group->instructions) {
            const CBlock one(*this, "rejection");
            Period(*instruction);
            Word("mode", EWordList::rejectionMode, instruction->mode);
        }
    }
}

void CDescription::SensorOfKind(const CTrvSensor& sensor) {
    if (const auto* gps = dynamic_cast<const CTrvSensorGps*>(&sensor)) {
        Quantity("stdDevThreshold.latitude", EQuantity::distance, gps->stdDevThreshold->latitude);
        Quantity("stdDevThreshold.longitude", EQuantity::distance, gps->stdDevThreshold->longitude);
        Quantity("stdDevThreshold.altitude", EQuantity::altitude, gps->stdDevThreshold->altitude);
    } else if (const auto* dvl = dynamic_cast<const CTrvSensorDvl*>(&sensor)) {
        Quantity("currentModeling.time", EQuantity::currentTime, dvl->currentModeling->time);
        Quantity("currentModeling.sigma", EQuantity::currentSpeed, dvl->currentModeling->sigma);
        Quantity("speedBias.x", EQuantity::linearSpeed, dvl->speedBias->x);
        Quantity("speedBias.y", EQuantity::linearSpeed, dvl->speedBias->y);
        Quantity("speedBias.z", EQuantity::linearSpeed, dvl->speedBias->z);
    } else if (const auto* usbl = dynamic_cast<const CTrvSensorUsbl*>(&sensor)) {
        Number("reserved", usbl->reserved);
        Row("transponderCode", usbl->transponderCode);
        for (const auto& filter : usbl->filteringInstructions) {
            const CBlock one(*this, "filtering");
            Period(*filter);
            Value("threshold", m_adaptors.GetNumeric(), static_cast<double>(filter->threshold));
        }
    } else if (const auto* marker = dynamic_cast<const CTrvSensorEventMarker*>(&sensor)) {
        Row("eventId", marker->eventId);
    } else if (const auto* mount = dynamic_cast<const CTrvSensorPlatformOrientation*>(&sensor)) {
        LeverArm("insLeverArm", mount->insLeverArm.get());
        Misalignment("insMisalignment", mount->insMisalignment.get());
        LeverArm("vehicleLeverArm", mount->vehicleLeverArm.get());
        Misalignment("vehicleMisalignment", mount->vehicleMisalignment.get());
    }
}

void CDescription::StdDev(const CTrvStdDevInstruction& instruction) {
    const CBlock block(*this, instruction.GetRuntimeClass().name);
    Row("isDefault", instruction.isDefault);
    Period(instruction);
    const bool odometer = instruction.IsKindOf(CTrvOdometerStdDevInstruction::Class());
    Word("mode", odometer ? EWordList::odometerStdDevMode : EWordList::stdDevMode, instruction.mode);
    // The quantities differ from value to value: plain numbers in the model's units say the same for all.
    const auto labels = instruction.GetValueLabels();
    for (int i = 0; i < instruction.GetValueCount(); ++i)
        Value(Outils_Texte::GetText(labels[static_cast<std::size_t>(i)]), m_adaptors.GetNumeric(),
              instruction.GetValue(i));
}

void CDescription::Graphs(const Metier_Tarvel_Graphics::CTrv1DSettings& settings) {
    using namespace Metier_Tarvel_Graphics;
    const CBlock block(*this, "graphSettings");
    for (const auto& graph : settings.graphs) {
        const CBlock one(*this, graph->GetRuntimeClass().name);
        Row("title", graph->title);
        if (const auto* chronogram = dynamic_cast<const CTrv1DGraphEnum*>(graph.get())) {
            FieldOf(chronogram->dataFile, chronogram->channel, chronogram->field);
            Row("label", chronogram->label);
        } else if (const auto* measure = dynamic_cast<const CTrv1DGraphMeasure*>(graph.get())) {
            for (const auto& curve : measure->curves) {
                const CBlock inner(*this, "curve");
                Row("label", curve->label);
                FieldOf(curve->dataFile, curve->channel, curve->field);
                char color[9];
                std::snprintf(color, sizeof color, "%08x", static_cast<unsigned>(curve->color));
                Row("color", color);
                Value("factor", m_adaptors.GetNumeric(), curve->factor);
            }
        }
    }
}

void CDescription::InstantValues(const Metier_Tarvel_InstantValues::CTrvInstantValuesSettings& settings) {
    const CBlock block(*this, "instantValuesSettings");
    for (const auto& row : settings.measures) {
        const CBlock one(*this, "measure");
        Row("label", row->label);
        FieldOf(row->dataFile, row->channel, row->field);
        Number("secondField", row->secondField);
    }
    for (const auto& row : settings.enums) {
        const CBlock one(*this, "enumeration");
        Row("label", row->label);
        FieldOf(row->dataFile, row->channel, row->field);
    }
}

} // namespace

int DescribeCommand(const COptions& options, SStreams streams) {
    CSession session(streams);
    if (!session.Open(options.GetArguments()[0])) return exitFailure;
    const CTrvProject& project = *session.GetDocument().GetProject();
    CTrvAdaptors adaptors;
    adaptors.Configure(session.GetConfiguration());
    CDescription(streams.out, adaptors, *project.simulationParameters).Describe(project);
    return exitSuccess;
}

} // namespace Batch
