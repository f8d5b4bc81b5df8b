// The packet files that a project refers to by path, and their channels.
#pragma once

#include "model/forward.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Metier_Tarvel {

class CTrvDataFileChannel : public TRuntimeClass<CTrvDataFileChannel, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvDataFileChannel";

    CTrvDataFile* file = nullptr; // the owner
    std::uint16_t id = 0;         // number of the channel in the file
    std::string name;             // at most 16 characters in the file
    std::string sensorClass;      // class name of the sensor kind that may use the channel; empty for none

    void Serialize(CArchive& archive) override;
};

class CTrvDataFile : public TRuntimeClass<CTrvDataFile, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvDataFile";

    CTrvSimulationParameters* owner = nullptr;                  // always set in a usable project
    std::filesystem::path path;                                 // absolute in memory
    std::vector<std::unique_ptr<CTrvDataFileChannel>> channels; // in file order
    CDateTime timeOffset;                                       // a signed length of time, see ToSpan

    CTrvDataFile() = default;
    CTrvDataFile(CTrvSimulationParameters& parameters, std::filesystem::path file)
        : owner(&parameters), path(std::move(file)) {}

    // True for the main input file, the output file, and a file of which a sensor uses a channel.
    bool IsReferenced() const;
    void AddChannel(std::uint16_t id, std::string name, std::string sensorClass);
    // The first channel, in file order, for this kind of sensor, with this number or with this name (case
    // counts); null if there is none. O(channels).
    CTrvDataFileChannel* FindChannelForSensor(const CTrvSensor& sensor) const;
    CTrvDataFileChannel* FindChannel(std::uint16_t id) const;
    CTrvDataFileChannel* FindChannel(std::string_view name) const;

    // Appends the channels that the packet file's header lists. False when the file cannot be opened or the
    // header is cut short; the channels before the cut are kept.
    bool ReadChannels();

    void Serialize(CArchive& archive) override;

    // Objects that a load has read and nobody owns yet, by address.
    using CUnclaimed =
        std::unordered_map<const Outils_Objets::CObject*, std::unique_ptr<Outils_Objets::CObject>>;
    // Second half of a load: takes its channels over. A sensor's archive holds the channel around the file
    // that lists it, so that while the file is read its channel is not whole. Throws badIndex for a null or
    // an element that another file owns.
    void AdoptChannels(CUnclaimed& unclaimed);

  private:
    void SerializePath(Outils_Objets::CArchive& archive, std::int32_t version);

    std::vector<CTrvDataFileChannel*> m_readChannels; // between the two halves of a load
};

} // namespace Metier_Tarvel
