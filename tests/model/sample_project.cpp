#include "sample_project.h"

#include "field_writer.h"

namespace {

class CSampleWriter {
  public:
    CSampleWriter(const Versions& layout, const Versions& content, const SSampleForm& form)
        : w(form.narrowText), m_layout(layout), m_content(content), m_form(form) {}

    std::vector<std::uint8_t> Write() {
        m_project = w.Object("CTrvProject");
        w.Version(m_layout.at("CTrvProject"));
        Parameters();
        Graphs();
        if (Has("CTrvProject", 3)) InstantValues();
        return w.GetBytes();
    }

  private:
    // Whether the layout holds what the class has since `since`, and whether the content gives it a value of
    // its own.
    bool Has(const std::string& name, int since) const { return m_layout.at(name) >= since; }
    bool Filled(const std::string& name, int since) const { return m_content.at(name) >= since; }

    // To the object that holds the present one.
    void Holder(int index) { m_form.nullHolders ? w.Null() : w.Reference(index); }

    void Triple(const char* name, double first, double second, double third) {
        w.Object(name);
        w.Put<std::int32_t>(1, 1);
        w.Put<double>(first, second, third);
    }
    void LeverArm(double first = 1.5) { Triple("CLeverArm", first, -2.5, 3.5); }
    void Misalignment(double first = 10) { Triple("CMisalignment", first, 20, 30); }
    void Zero(const char* name) { Triple(name, 0, 0, 0); }

    void Period(std::int64_t begin, std::int64_t end) {
        w.Version(1);
        w.Ticks(begin);
        w.Ticks(end);
    }

    void StdDev(const char* name, std::vector<double> values, bool filled, int version = 1) {
        w.Object(name);
        w.Int(version);
        Period(filled ? 100 : 0, filled ? 200 : 0);
        w.Put<std::uint8_t>(filled ? 0 : 1);
        w.Int(filled ? 1 : 0);
        for (const double value : values) w.Real(filled ? value : 0.0);
    }

    void Parameters() {
        const std::string name = "CTrvSimulationParameters";
        m_parameters = w.Object(name);
        w.Version(m_layout.at(name));
        w.Int(1);
        if (Has(name, 4)) w.Put<std::int32_t>(Filled(name, 4) ? 2 : 0, Filled(name, 4) ? 3 : 1);
        if (Has(name, 3)) w.Int(Filled(name, 3) ? 1 : 0);
        w.Put<std::int32_t>(1, 1); // the position in place
        w.Put<double>(-4.25, 48.5, 12);
        w.Int(7);
        w.Real(2.5);
        w.Put<std::int64_t>(1000, 2000);
        w.Int(1);
        w.Object("CTrvOutputRate");
        w.Int(1);
        Period(10, 20);
        w.Real(25);
        w.Int(1);
        w.Object("CTrvZupt");
        w.Int(1);
        Period(30, 40);
        w.Int(4);
        if (Has(name, 2)) {
            w.Int(Filled(name, 2) ? 1 : 0);
            if (Filled(name, 2)) {
                w.Object("CTrvAltitudeMode");
                w.Int(1);
                Period(50, 60);
                w.Int(2);
            }
        }
        w.Int(9);
        Sensors();
        Configuration();
        w.Reference(m_mainFile);
        DataFile("D:\\data\\a.tarout", 0);
        w.Int(1);
        m_external = DataFile("D:\\donn\351es\\b.tarin", 0);
        w.Put<std::uint8_t>(1);
        w.Ticks(130000000000000000);
    }

    // A data file with `count` channels; the channel around it is its first one.
    int DataFile(const std::string& path, int count) {
        const std::string name = "CTrvDataFile";
        const int file = w.Object(name);
        w.Version(m_layout.at(name));
        Holder(m_parameters);
        w.Text(path);
        w.Int(count);
        if (count > 0) w.Reference(m_channels.front());
        for (int i = 1; i < count; ++i) Channel(i, file);
        if (Has(name, 2)) w.Ticks(Filled(name, 2) ? -5000 : 0);
        return file;
    }

    void Channel(int number, int file) {
        static const char* const classes[] = {
            "CTrvSensorGps",      "CTrvSensorDvl",         "CTrvSensorEMLog",
            "CTrvSensorDepth",    "CTrvSensorUsbl",        "CTrvSensorLbl",
            "CTrvSensorOdometer", "CTrvSensorEventMarker", "CTrvSensorPlatformOrientation"};
        m_channels.push_back(w.Object("CTrvDataFileChannel"));
        w.Version(1);
        if (number == 0)
            m_mainFile = DataFile(m_form.mainFile, 9);
        else
            Holder(file);
        w.Put<std::uint16_t>(number + 10);
        w.Text("CHANNEL_" + std::to_string(number));
        w.Text(classes[number]);
    }

    // What every sensor begins with; `groups` are its rejection groups, each with one instruction.
    int Sensor(const std::string& name, int number, const std::vector<std::string>& groups) {
        const int sensor = w.Object(name);
        w.Int(m_layout.contains(name) ? m_layout.at(name) : 1);
        w.Version(m_layout.at("CTrvSensor"));
        Holder(m_parameters);
        if (number == 0)
            Channel(0, 0);
        else
            w.Reference(m_channels[static_cast<std::size_t>(number)]);
        w.Ticks(-1000 - number);
        w.Int(static_cast<int>(groups.size()));
        for (const std::string& group : groups) {
            const int index = w.Object("CTrvRejectionGroup");
            w.Version(1);
            Holder(sensor);
            w.Text(group);
            w.Int(1);
            w.Object("CTrvRejectionInstruction");
            w.Int(1);
            Period(70, 80);
            Holder(index);
            w.Int(2);
        }
        if (Has("CTrvSensor", 2)) w.Put<std::uint8_t>(Filled("CTrvSensor", 2) ? 1 : 0);
        return sensor;
    }

    void ScalarSensor(const std::string& name, int number, const char* stdDev) {
        Sensor(name, number, {"Rejections"});
        LeverArm();
        if (Has(name, 2)) StdDev(stdDev, {0.25}, Filled(name, 2));
    }

    void Dvl() {
        const std::string name = "CTrvSensorDvl";
        const int sensor = Sensor(name, 1, {"Bottom speed rejections", "Watermass speed rejections"});
        LeverArm();
        Misalignment();
        w.Real(0.0125);
        CurrentModeling();
        if (Has(name, 2)) Triple("CTrvSpeedBias", Filled(name, 2) ? 0.5 : 0, 0, Filled(name, 2) ? -0.5 : 0);
        if (Has(name, 3)) {
            for (int i = 0; i < 2; ++i) {
                const int version = m_layout.at("CTrvDvlStdDevInstruction");
                StdDev("CTrvDvlStdDevInstruction", {1, 2, 3}, Filled(name, 3), version);
                if (version >= 2) Holder(sensor);
            }
        }
    }

    void Usbl() {
        const std::string name = "CTrvSensorUsbl";
        const int sensor = Sensor(name, 4, {"Rejections"});
        w.Int(77);
        LeverArm();
        w.Text("TP-7");
        if (Has(name, 2)) StdDev("CTrvUsblStdDevInstruction", {1, 2, 3, 4}, Filled(name, 2));
        if (!Has(name, 3)) return;
        w.Int(Filled(name, 3) ? 1 : 0);
        if (!Filled(name, 3)) return;
        w.Object("CTrvHorizontalFilteringInstruction");
        w.Int(1);
        Period(90, 95);
        Holder(sensor);
        w.Put<float>(1.5f);
    }

    void Sensors() {
        const std::string gps = "CTrvSensorGps";
        Sensor(gps, 0, {"Horizontal rejections"});
        LeverArm(4);
        if (Has(gps, 2)) StdDev("CTrvGpsStdDevInstruction", {1, 2, 3, 4}, Filled(gps, 2));
        if (Has(gps, 3)) {
            w.Object("CTrvGpsStdDevThreshold");
            w.Version(1);
            const bool filled = Filled(gps, 3);
            w.Put<double>(filled ? 0.1 : 0.03, filled ? 0.2 : 0.03, filled ? 0.3 : 0.03);
        }
        Dvl();
        ScalarSensor("CTrvSensorEMLog", 2, "CTrvEMLogStdDevInstruction");
        ScalarSensor("CTrvSensorDepth", 3, "CTrvDepthStdDevInstruction");
        Usbl();
        ScalarSensor("CTrvSensorLbl", 5, "CTrvLblStdDevInstruction");
        Sensor("CTrvSensorOdometer", 6, {"Rejections"});
        LeverArm();
        Misalignment();
        w.Real(0.02);
        StdDev("CTrvOdometerStdDevInstruction", {5, 6, 7}, true);
        Sensor("CTrvSensorEventMarker", 7, {});
        w.Text("3");
        Sensor("CTrvSensorPlatformOrientation", 8, {});
        LeverArm(5);
        Misalignment(6);
        LeverArm(7);
        Misalignment(8);
    }

    void CurrentModeling() {
        w.Object("CTrvCurrentModeling");
        w.Version(1);
        w.Put<double>(1800, 0.25);
    }

    void Configuration() {
        const std::string name = "CTrvNelixConfiguration";
        w.Object(name);
        w.Version(m_layout.at(name));
        Misalignment(1);
        if (Has(name, 2)) w.Int(Filled(name, 2) ? 23 : 0);
        Misalignment(2);
        if (Has(name, 4)) Filled(name, 4) ? Misalignment(3) : Zero("CMisalignment");
        for (int i = 0; i < 4; ++i) LeverArm(i);
        CurrentModeling();
        w.Object("CTrvNelixType");
        w.Version(1);
        w.Put<std::int32_t>(14, 6, 2, 1, 3, 1);
        if (Has(name, 3)) Filled(name, 3) ? LeverArm(9) : Zero("CLeverArm");
    }

    void GraphBase(int graphVersionOfClass, int settings, const char* title) {
        w.Int(graphVersionOfClass);
        w.Version(m_layout.at("CTrv1DGraph"));
        if (Has("CTrv1DGraph", 2)) Holder(settings);
        w.Text(title);
    }

    void Graphs() {
        const int settings = w.Object("CTrv1DSettings");
        w.Version(m_layout.at("CTrv1DSettings"));
        if (Has("CTrv1DSettings", 2)) Holder(m_project);
        w.Int(2);
        w.Object("CTrv1DGraphEnum");
        GraphBase(m_layout.at("CTrv1DGraphEnum"), settings, "States");
        FieldOf(m_mainFile);
        if (Has("CTrv1DGraphEnum", 2)) w.Text(Filled("CTrv1DGraphEnum", 2) ? "Mode" : "Unknown");

        const std::string name = "CTrv1DCurve";
        const int graph = w.Object("CTrv1DGraphMeasure");
        GraphBase(1, settings, "Depths");
        w.Int(1);
        w.Object(name);
        w.Version(m_layout.at(name));
        Holder(graph);
        FieldOf(m_external);
        if (Has(name, 2)) w.Text(Filled(name, 2) ? "Depth" : "unknown");
        if (Has(name, 3)) w.Put<std::uint32_t>(Filled(name, 3) ? 0x80123456 : 0xFF000000);
        if (Has(name, 4)) w.Real(Filled(name, 4) ? -1 : 1);
    }

    void FieldOf(int file) {
        w.Reference(file);
        w.Put<std::uint16_t>(11);
        w.Int(5);
    }

    void InstantValues() {
        const int settings = w.Object("CTrvInstantValuesSettings");
        w.Version(1);
        Holder(m_project);
        const bool filled = Filled("CTrvProject", 3);
        for (const std::string name : {"CTrvInstantValuesMeasure", "CTrvInstantValuesEnum"}) {
            w.Int(filled ? 1 : 0);
            if (!filled) continue;
            const bool hasSecond = name == "CTrvInstantValuesMeasure";
            w.Object(name);
            w.Version(hasSecond ? m_layout.at(name) : 1);
            Holder(settings);
            w.Text("Row");
            FieldOf(m_mainFile);
            if (hasSecond && Has(name, 2)) w.Int(Filled(name, 2) ? 6 : 0);
        }
    }

    CFieldWriter w;
    const Versions& m_layout;
    const Versions& m_content;
    const SSampleForm& m_form;
    int m_project = 0;
    int m_parameters = 0;
    int m_mainFile = 0;
    int m_external = 0;
    std::vector<int> m_channels;
};

} // namespace

const Versions& CurrentVersions() {
    static const Versions versions{
        {"CTrvProject", 3},
        {"CTrvSimulationParameters", 4},
        {"CTrvDataFile", 3},
        {"CTrvSensor", 2},
        {"CTrvSensorGps", 3},
        {"CTrvSensorDvl", 3},
        {"CTrvSensorUsbl", 3},
        {"CTrvSensorEMLog", 2},
        {"CTrvSensorDepth", 2},
        {"CTrvSensorLbl", 2},
        {"CTrvDvlStdDevInstruction", 2},
        {"CTrvNelixConfiguration", 4},
        {"CTrv1DSettings", 2},
        {"CTrv1DGraph", 2},
        {"CTrv1DGraphEnum", 2},
        {"CTrv1DCurve", 4},
        {"CTrvInstantValuesMeasure", 2},
    };
    return versions;
}

std::vector<std::uint8_t> WriteSampleProject(const Versions& layout, const Versions& content,
                                             const SSampleForm& form) {
    return CSampleWriter(layout, content, form).Write();
}
