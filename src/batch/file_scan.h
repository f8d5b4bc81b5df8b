// One pass over the whole packet stream of a file, over damage too: what each channel holds, what the file
// tells of its origin, and where it is damaged.
#pragma once

#include "batch/file_access.h"
#include "dataaccess/data_file_analyzer.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Batch {

using Outils_Temps::CDateTimeSpan;

struct SChannelScan {
    std::uint64_t packets = 0;
    std::uint64_t dates = 0;       // packets that have one
    CDateTimeSpan first, last;     // dates of the first and the last of them
    std::uint64_t numberJumps = 0; // packets whose number does not follow the one before
    std::uint64_t timeJumps = 0;   // packets dated before the one before
    std::uint64_t badLinks = 0;    // between packets of following numbers, those that lead elsewhere
    std::uint32_t lastNumber = 0;
    std::uint32_t lastForwardLink = 0;
    std::int64_t lastPosition = 0;

    // Packets per second between the first and the last date; 0 when those tell none.
    double GetRate() const;
};

struct SDamage {
    std::int64_t position; // bytes
    std::int64_t size;
    bool torn; // a packet begins there and the file ends inside it
};

class CFileScan {
  public:
    // More places than these are only counted: a file may have one in every few bytes.
    static constexpr std::size_t kDamageKept = 100;

    // `open.file` must outlive the scan.
    CFileScan(const SOpenFile& open, const std::filesystem::path& path);
    ~CFileScan();

    // Reads the file up to its present end, and tells every ten per cent that are done. O(file), in memory
    // that does not grow with it.
    void Run(const std::function<void(int percent)>& progress);

    // Null for a channel without packets.
    const SChannelScan* GetChannel(std::uint16_t number) const { return m_channels[number].get(); }
    const std::vector<SDamage>& GetDamage() const { return m_damage; }
    // The places behind those kept, and their bytes.
    std::uint64_t GetMorePlaces() const { return m_morePlaces; }
    std::int64_t GetMoreBytes() const { return m_moreBytes; }
    // As the application's own analysis of an input file finds them; nothing for a result file.
    Application_Tarvel::SFirstData GetFirstData();

  private:
    class CFirstDataFinder;

    // Moves to the first whole packet at or behind a place; false when there is none.
    bool FindNextPacket(std::int64_t from);
    void AddDamage(const SDamage& damage);
    void Take(std::int64_t position, const Persistance_Xpf::SPacketHeader& header,
              std::span<const std::uint8_t> payload);

    Persistance_Xpf::CXpfFile& m_file;
    // By channel number.
    std::vector<std::unique_ptr<SChannelScan>> m_channels;
    std::vector<std::optional<std::uint32_t>> m_dateOffsets; // in the payload, of the field that is the date
    std::vector<SDamage> m_damage;
    std::uint64_t m_morePlaces = 0;
    std::int64_t m_moreBytes = 0;
    std::unique_ptr<CFirstDataFinder> m_firstData; // null for a result file
};

} // namespace Batch
