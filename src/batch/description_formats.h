// How the values of a project are written: through the adaptors, as the user's settings want them.
#pragma once

#include "batch/description.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/project.h"

namespace Batch {

using namespace Metier_Tarvel;
using Outils_Texte::EText;
using Outils_Texte::GetText;
using Outils_Valeurs::EQuantity;

struct SWord {
    EWordList list;
    std::string operator()(const CDescription&, std::int32_t value) const {
        const bool known = value >= 0 && value < GetWordList(list).count;
        return known ? std::string(GetWord(list, value)) : std::to_string(value);
    }
};

struct SQuantity {
    EQuantity quantity;
    std::string operator()(const CDescription& description, double value) const {
        std::string text;
        description.m_adaptors.Get(quantity).ValueToText(value, text);
        return text;
    }
};

// A number without a unit, or with one that no setting changes.
struct SNumber {
    std::string_view unit = {};
    std::string operator()(const CDescription& description, double value) const {
        std::string text;
        description.m_adaptors.GetNumeric().ValueToText(value, text);
        return text.append(unit);
    }
};
constexpr SNumber kHertz{" Hz"};

inline std::string Whole(const CDescription&, std::int64_t value) { return std::to_string(value); }

// A text of the project must not pass for a line of the description, nor for a command to the terminal.
inline std::string Text(const CDescription&, std::string value) {
    for (char& c : value)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
    return value;
}

inline std::string Flag(const CDescription&, bool value) {
    return std::string(GetText(value ? EText::yes : EText::no));
}

inline std::string Time(const CDescription& description, const CDateTime& value) {
    std::string text;
    description.m_time.ValueToText(value, description.m_parameters, text);
    return text;
}

// Without a reference its date means nothing.
inline std::string UtcReference(const CDescription& description, const CTrvSimulationParameters& parameters) {
    std::string text(GetText(EText::noneWord));
    if (parameters.hasUtcReference)
        description.m_adaptors.GetDateTime().ValueToText(parameters.utcReference, text);
    return text;
}

inline std::string Offset(const CDescription& description, const CDateTime& stored) {
    std::string text;
    description.m_adaptors.GetDateTimeSpan().ValueToText(ToSpan(stored), text);
    return text;
}

inline std::string Path(const CDescription&, const std::filesystem::path& path) {
    return Outils_Fichiers::ToText(path);
}

// `label` names the first of the three.
inline std::string ThreeAxes(EText label, const Outils_Valeurs::CTripleAdaptor& adaptor,
                             std::initializer_list<double> values) {
    std::string line, text;
    std::size_t axis = 0;
    for (const double value : values) {
        adaptor.GetAxis(axis).ValueToText(value, text);
        line.append(axis ? ", " : "")
            .append(GetText(label + static_cast<int>(axis)))
            .append(" ")
            .append(text);
        ++axis;
    }
    return line;
}
inline std::string LeverArm(const CDescription& description, const std::unique_ptr<CLeverArm>& arm) {
    return ThreeAxes(EText::xv1, description.m_adaptors.GetLeverArm(), {arm->xv1, arm->xv2, arm->xv3});
}
inline std::string Angles(const CDescription& description, const std::unique_ptr<CMisalignment>& angles) {
    return ThreeAxes(EText::heading, description.m_adaptors.GetMisalignment(),
                     {angles->heading, angles->roll, angles->pitch});
}

inline std::string Latitude(const CDescription& description, double value) {
    std::string text;
    description.m_adaptors.GetGeographicPosition().latitude.ValueToText(value, text);
    return text;
}
inline std::string Longitude(const CDescription& description, double value) {
    std::string text;
    description.m_adaptors.GetGeographicPosition().longitude.ValueToText(value, text);
    return text;
}

inline std::string Color(const CDescription&, std::uint32_t argb) {
    char text[10];
    std::snprintf(text, sizeof text, "#%08X", static_cast<unsigned>(argb));
    return text;
}

template <CTrvNelixType::EField field>
std::string TypeWord(const CDescription&, const CTrvNelixType& type) {
    return type.GetFieldText(field);
}

// What refers to a file or a channel names it; a reference may lead nowhere.
inline std::string FileOf(const CDescription&, const CTrvDataFile* file) {
    return file ? Outils_Fichiers::ToText(file->path) : std::string(GetText(EText::noneWord));
}
inline std::string SensorFile(const CDescription& description, const CTrvDataFileChannel* channel) {
    return FileOf(description, channel ? channel->file : nullptr);
}
inline std::string SensorChannel(const CDescription&, const CTrvDataFileChannel* channel) {
    return channel ? channel->name : std::string(GetText(EText::noneWord));
}
template <class Shown>
std::string ShownChannel(const CDescription&, const Shown& shown) {
    const auto* channel = shown.dataFile ? shown.dataFile->FindChannel(shown.channel) : nullptr;
    return channel ? channel->name : std::to_string(shown.channel);
}
// "5 GPS_1 Gps", the last word being the kind of sensor that may use the channel.
inline std::string ChannelLine(const CDescription&, const CTrvDataFileChannel& channel) {
    const SSensorKind* kind = FindSensorKind(channel.sensorClass);
    std::string line = std::to_string(channel.id) + ' ' + channel.name;
    if (kind || !channel.sensorClass.empty())
        line.append(" ").append(kind ? GetText(kind->label) : channel.sensorClass);
    return line;
}

} // namespace Batch
