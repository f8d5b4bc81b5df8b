#include "sample_project.h"

#include <algorithm>
#include <cstring>
#include <sstream>

namespace {

// Writes archives from words, without the classes under test: what a file of any version holds, byte by byte.
//   CName  CName=label      a new object of the class
//   @label  ^label          a reference to it; the second is to the holder of the present object
//   12  1.5  f1.5  q12      32-bit integer, double, float, 64-bit integer
//   h12  b1  xFF            16 bits, 8 bits, 32 bits in hexadecimal
//   'text'                  Latin-1, shorter than 255 characters
//   v  v:CName              the version of the class that begins the line, or of that one
//   [3 words | others]      since version 3 of the class; the others where the content is older
//   [CName.3 words]         the same of another class, whatever the content
class CSampleWriter {
  public:
    CSampleWriter(const Versions& layout, const Versions& content, const SSampleForm& form)
        : m_layout(layout), m_content(content), m_form(form) {}

    std::vector<std::uint8_t> Write(const std::string& script) {
        std::istringstream lines(script);
        for (std::string line; std::getline(lines, line);) {
            m_class = line.substr(0, line.find_first_of("= "));
            WriteWords(line);
        }
        return m_bytes;
    }

  private:
    // The next word from `at` on, which moves behind it; empty at the end.
    static std::string_view Next(std::string_view text, std::size_t& at) {
        const std::size_t start = std::min(text.find_first_not_of(' ', at), text.size());
        at = start;
        int depth = 0;
        bool quoted = false;
        for (; at < text.size() && (depth > 0 || quoted || text[at] != ' '); ++at) {
            quoted ^= text[at] == '\'';
            depth += (text[at] == '[') - (text[at] == ']');
        }
        return text.substr(start, at - start);
    }
    void WriteWords(std::string_view text) {
        std::size_t at = 0;
        for (std::string_view word; !(word = Next(text, at)).empty();) WriteWord(word);
    }
    void WriteWord(std::string_view word) {
        const std::string rest(word.substr(1));
        switch (word[0]) {
        case 'C': WriteObject(std::string(word)); break;
        case '@': Put<std::uint16_t>(m_objects.at(rest)); break;
        case '^': Put<std::uint16_t>(m_form.nullHolders ? 0 : m_objects.at(rest)); break;
        case '[': WriteChoice(word.substr(1, word.size() - 2)); break;
        case '\'': WriteText(rest.substr(0, rest.size() - 1)); break;
        case 'v': Put<std::int32_t>(VersionOf(rest.empty() ? m_class : rest.substr(1))); break;
        case 'f': Put<float>(std::stof(rest)); break;
        case 'q': Put<std::int64_t>(std::stoll(rest)); break;
        case 'h': Put<std::uint16_t>(std::stoi(rest)); break;
        case 'b': Put<std::uint8_t>(std::stoi(rest)); break;
        case 'x': Put<std::uint32_t>(std::stoul(rest, nullptr, 16)); break;
        default:
            word.find('.') == word.npos ? Put<std::int32_t>(std::stoi(std::string(word)))
                                        : Put<double>(std::stod(std::string(word)));
        }
    }
    void WriteObject(const std::string& word) {
        const std::string name = word.substr(0, word.find('='));
        const auto [known, isNew] = m_classes.emplace(name, m_lastIndex + 1);
        if (isNew) {
            ++m_lastIndex;
            Put<std::uint16_t>(0xFFFF);
            Put<std::uint16_t>(1);
            Put<std::uint16_t>(name.size());
            m_bytes.insert(m_bytes.end(), name.begin(), name.end());
        } else {
            Put<std::uint16_t>(0x8000 | known->second);
        }
        m_objects[word.substr(std::min(name.size() + 1, word.size()))] = ++m_lastIndex;
    }
    void WriteChoice(std::string_view text) {
        std::size_t at = 0;
        const std::string since(Next(text, at));
        const std::size_t point = since.find('.');
        const std::string name = point == since.npos ? m_class : since.substr(0, point);
        const int version = std::stoi(since.substr(point + 1));
        if (VersionOf(name) < version) return;
        const std::size_t start = at;
        std::string_view word = Next(text, at);
        while (!word.empty() && word != "|") word = Next(text, at);
        const bool isOlder = word == "|" && m_content.at(name) < version;
        WriteWords(isOlder ? text.substr(at) : text.substr(start, at - start - word.size()));
    }
    void WriteText(std::string_view text) {
        if (!m_form.narrowText)
            for (const int byte : {0xFF, 0xFE, 0xFF}) Put<std::uint8_t>(byte);
        Put<std::uint8_t>(text.size());
        for (const unsigned char c : text) m_form.narrowText ? Put<std::uint8_t>(c) : Put<std::uint16_t>(c);
    }
    int VersionOf(const std::string& name) const { return m_layout.contains(name) ? m_layout.at(name) : 1; }

    template <class T, class Value>
    void Put(Value value) {
        const T typed = static_cast<T>(value);
        m_bytes.resize(m_bytes.size() + sizeof typed);
        std::memcpy(&m_bytes[m_bytes.size() - sizeof typed], &typed, sizeof typed);
    }

    const Versions& m_layout;
    const Versions& m_content;
    const SSampleForm& m_form;
    std::vector<std::uint8_t> m_bytes;
    std::map<std::string, int> m_classes;
    std::map<std::string, int> m_objects;
    std::string m_class; // of the present line
    int m_lastIndex = 0;
};

// Three values that no other call gives but one of the same number.
std::string Triple(const std::string& name, double number) {
    return " " + name + " 1 1 " + std::to_string(number + 0.125) + " " + std::to_string(-number - 0.25) +
           " " + std::to_string(number + 0.5);
}
std::string Arm(double number) { return Triple("CLeverArm", number); }
std::string Angles(double number) { return Triple("CMisalignment", number); }
const std::string kCurrent = " CTrvCurrentModeling 1 1 1 1800.0 0.25";

// In a layout since `since`: the user's deviations, or none. `end` stands behind its values.
std::string StdDev(int since, const std::string& name, const std::string& values, const std::string& zeros,
                   const std::string& end = "") {
    return " [" + std::to_string(since) + " " + name + " v:" + name + " 1 1 1 q100 q200 b0 1 " + values +
           end + " | " + name + " v:" + name + " 1 1 1 q0 q0 b1 0 " + zeros + end + "]";
}

std::string Sensor(const std::string& name, int number, const std::string& channel,
                   std::initializer_list<std::string> groups) {
    const std::string label = "s" + std::to_string(number);
    std::string text = "\n" + name + "=" + label + " v v:CTrvSensor 1 1 ^parameters " + channel + " q" +
                       std::to_string(-1000 - number) + " " + std::to_string(groups.size());
    int end = 100 * (number + 1);
    for (const std::string& group : groups)
        text += " CTrvRejectionGroup=group 1 1 1 ^" + label + " '" + group +
                "' 1 CTrvRejectionInstruction 1 1 1 1 q70 q" + std::to_string(++end) + " ^group 2";
    return text + " [CTrvSensor.2 b1 | b0]";
}
std::string ScalarSensor(const std::string& kind, int number) {
    return Sensor("CTrvSensor" + kind, number, "@c" + std::to_string(number), {"Rejections"}) +
           Arm(10 + number) +
           StdDev(2, "CTrv" + kind + "StdDevInstruction", std::to_string(0.25 + number), "0.0");
}
std::string DataFile(const std::string& label, const std::string& path, const std::string& channels = "0") {
    return " CTrvDataFile=" + label + " v:CTrvDataFile 1 1 ^parameters '" + path + "' " + channels +
           " [CTrvDataFile.2 q-5000 | q0]";
}

std::string Script(const std::string& mainFile) {
    std::string channels = "9 @c0";
    const char* const kinds[] = {"Dvl", "EMLog",    "Depth",       "Usbl",
                                 "Lbl", "Odometer", "EventMarker", "PlatformOrientation"};
    for (int i = 1; i < 9; ++i) {
        const std::string number = std::to_string(i);
        channels += " CTrvDataFileChannel=c" + number + " 1 1 1 ^main h1" + number + " 'CHANNEL_" + number +
                    "' 'CTrvSensor" + kinds[i - 1] + "'";
    }
    const std::string firstChannel = "CTrvDataFileChannel=c0 1 1 1" + DataFile("main", mainFile, channels) +
                                     " h10 'CHANNEL_0' 'CTrvSensorGps'";
    const std::string noFour = "0.0 0.0 0.0 0.0", noThree = "0.0 0.0 0.0";
    const auto dvlStdDev = [&](const std::string& values) {
        return StdDev(3, "CTrvDvlStdDevInstruction", values, noThree, " [CTrvDvlStdDevInstruction.2 ^s1]");
    };
    return "CTrvProject=project v 1 1"
           "\nCTrvSimulationParameters=parameters v 1 1 1 [4 2 3 | 0 1] [3 1 | 0] 1 1 -4.25 48.5 12.0 7 2.5"
           " q1000 q2000 1 CTrvOutputRate 1 1 1 1 q10 q20 25.0 1 CTrvZupt 1 1 1 1 q30 q40 4"
           " [2 1 CTrvAltitudeMode 1 1 1 1 q50 q60 2 | 0] 9" +
           Sensor("CTrvSensorGps", 0, firstChannel, {"Horizontal rejections"}) + Arm(4) +
           StdDev(2, "CTrvGpsStdDevInstruction", "1.5 2.5 3.5 4.5", noFour) +
           " [3 CTrvGpsStdDevThreshold 1 1 1 0.1 0.2 0.3 | CTrvGpsStdDevThreshold 1 1 1 0.03 0.03 0.03]" +
           Sensor("CTrvSensorDvl", 1, "@c1", {"Bottom speed rejections", "Watermass speed rejections"}) +
           Arm(11) + Angles(11) + " 0.0125" + kCurrent +
           " [2 CTrvSpeedBias 1 1 0.5 0.75 -0.5 | CTrvSpeedBias 1 1 0.0 0.0 0.0]" + dvlStdDev("1.0 2.0 3.0") +
           dvlStdDev("4.0 5.0 6.0") + ScalarSensor("EMLog", 2) + ScalarSensor("Depth", 3) +
           Sensor("CTrvSensorUsbl", 4, "@c4", {"Rejections"}) + " 77" + Arm(14) + " 'TP-7'" +
           StdDev(2, "CTrvUsblStdDevInstruction", "5.5 6.5 7.5 8.5", noFour) +
           " [3 1 CTrvHorizontalFilteringInstruction 1 1 1 1 q90 q95 ^s4 f1.5 | 0]" + ScalarSensor("Lbl", 5) +
           Sensor("CTrvSensorOdometer", 6, "@c6", {"Rejections"}) + Arm(16) + Angles(16) + " 0.02" +
           " CTrvOdometerStdDevInstruction 1 1 1 1 q100 q200 b0 1 5.25 6.25 7.25" +
           Sensor("CTrvSensorEventMarker", 7, "@c7", {}) + " '3'" +
           Sensor("CTrvSensorPlatformOrientation", 8, "@c8", {}) + Arm(5) + Angles(6) + Arm(7) + Angles(8) +
           "\nCTrvNelixConfiguration v 1 1" + Angles(1) + " [2 23 | 0]" + Angles(2) + " [4" + Angles(3) +
           " | CMisalignment 1 1 0.0 0.0 0.0]" + Arm(0) + Arm(1) + Arm(2) + Arm(3) + kCurrent +
           " CTrvNelixType 1 1 1 14 6 2 1 3 1 [3" + Arm(9) + " | CLeverArm 1 1 0.0 0.0 0.0] @main" +
           DataFile("result", "D:\\data\\a.tarout") + " 1" + DataFile("external", "D:\\donn\351es\\b.tarin") +
           " b1 q130000000000000000"
           "\nCTrv1DSettings=graphs v 1 1 [2 ^project] 2"
           "\nCTrv1DGraphEnum v v:CTrv1DGraph 1 1 [CTrv1DGraph.2 ^graphs] 'States' @main h11 5"
           " [2 'Mode' | 'Unknown']"
           "\nCTrv1DGraphMeasure=graph v v:CTrv1DGraph 1 1 [CTrv1DGraph.2 ^graphs] 'Depths' 1"
           "\nCTrv1DCurve v 1 1 ^graph @external h11 5 [2 'Depth' | 'unknown'] [3 x80123456 | xFF000000]"
           " [4 -1.0 | 1.0]"
           "\n[CTrvProject.3 CTrvInstantValuesSettings=values 1 1 1 ^project [CTrvProject.3"
           " 1 CTrvInstantValuesMeasure v:CTrvInstantValuesMeasure 1 1 ^values 'Row' @main h11 5"
           " [CTrvInstantValuesMeasure.2 6 | 0]"
           " 1 CTrvInstantValuesEnum 1 1 1 ^values 'Row' @main h11 5 | 0 0]]";
}

} // namespace

const Versions& CurrentVersions() {
    static const Versions versions{{"CTrvProject", 3},
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
                                   {"CTrvInstantValuesMeasure", 2}};
    return versions;
}

std::vector<std::uint8_t> WriteSampleProject(const Versions& layout, const Versions& content,
                                             const SSampleForm& form) {
    return CSampleWriter(layout, content, form).Write(Script(form.mainFile));
}
