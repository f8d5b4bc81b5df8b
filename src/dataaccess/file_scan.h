// One pass over the whole packet stream of a file, also over damage: what each channel holds, when and where
// the recording begins, and where it is damaged.
#pragma once

#include "dataaccess/data_file_analyzer.h"
#include "xpf/file.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Application_Tarvel {

using Outils_Temps::CDateTimeSpan;

struct SChannelScan {
    std::uint64_t packets = 0;     // counted; the numbers in the packets may jump
    std::uint64_t dates = 0;       // packets with a date
    CDateTimeSpan first, last;     // dates of the first and the last of them
    std::uint64_t numberJumps = 0; // packets whose number does not follow the number before
    std::uint64_t timeJumps = 0;   // packets with a date before the date before; an equal date is no jump
    std::uint64_t badLinks = 0;    // links between packets of following numbers that lead elsewhere
    std::uint32_t lastNumber = 0;
    std::uint32_t lastForwardLink = 0;
    std::int64_t lastPosition = 0;

    // Packets per second between the first and the last date; 0 when the two are not in order.
    double GetRate() const;
};

struct SDamage {
    std::int64_t position; // bytes
    std::int64_t size;
    bool torn; // the tail of the file: it ends inside a packet, or only zero bytes follow
};

class CFileScan {
  public:
    // More places than these are only counted: a damaged file can have one in every few bytes.
    static constexpr std::size_t kDamageKept = 100;

    // `file` is a file of this kind and path with its header read. Must outlive the scan.
    CFileScan(Persistance_Xpf::CXpfFile& file, Persistance_Xpf::EFileKind kind,
              const std::filesystem::path& path);
    ~CFileScan();

    // Reads the file up to its present end, once for all channels, and reports every ten per cent. Needs no
    // memory that grows with the file. `progress` may be empty.
    void Run(const std::function<void(int percent)>& progress = {});

    // Null for a channel without packets.
    const SChannelScan* GetChannel(std::uint16_t number) const { return m_channels[number].get(); }
    const std::vector<SDamage>& GetDamage() const { return m_damage; }
    // The places after the kept ones, and their bytes.
    std::uint64_t GetMorePlaces() const { return m_morePlaces; }
    std::int64_t GetMoreBytes() const { return m_moreBytes; }
    // What the background analysis of an input file finds; nothing for a result file.
    SFirstData GetFirstData();

  private:
    class CFirstDataFinder;

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

} // namespace Application_Tarvel
