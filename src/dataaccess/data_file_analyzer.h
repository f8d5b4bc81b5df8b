// Background scans of data files: which channels really hold packets, and the first UTC origin and position.
#pragma once

#include "foundation/date_time.h"
#include "foundation/message_target.h"
#include "foundation/positioning.h"
#include "foundation/thread.h"
#include "xpf/file.h"

#include <bitset>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <span>

namespace Application_Tarvel {

using Outils_Temps::CDateTime;

class CFileIndex;
class CFileIndexes;
class CIndexScan;

// Walks the whole packet stream of one file once and remembers how far it came: started again over a file
// that has grown, it goes on from there and reports only channels not yet seen. Start, Stop and the rest on
// the UI thread, which neither makes wait.
class CTrvDataFileAnalyzerThread : public Outils::CThread {
  public:
    // Runs on the UI thread at the first packet of each channel.
    using OnChannel = std::function<void(std::uint16_t channel)>;
    // Runs on the UI thread when a scan has met bytes that are no packet; the position is in bytes. A torn
    // tail is no damage: the writer is at work, or was killed.
    using OnDamage = std::function<void(std::int64_t position)>;

    // `port` must outlive the thread. `onDamage` may be empty. With `indexes` the scan also makes the index
    // of the file, beyond damage as well.
    CTrvDataFileAnalyzerThread(std::filesystem::path path, Outils::CMessagePort& port, OnChannel onChannel,
                               OnDamage onDamage = {}, std::shared_ptr<CFileIndexes> indexes = nullptr);
    ~CTrvDataFileAnalyzerThread() override;

    // True when a scan begins. While one is on, another follows it on the same thread, so that no growth is
    // missed; also while a stopped scan has not ended yet.
    bool Start() override;
    // Where the next run begins: after the last packet that passed the packet check. Only while no run is
    // on.
    Persistance_Xpf::CXpfFilePosition GetResumePosition() const { return m_resume; }

  protected:
    void Run() override;
    void RequestStop() override;
    const Outils::CEvent& GetStopEvent() const { return m_stop; }

    // Any thread: from Start on until nothing more will come.
    bool IsScanning();

    // The opened file, or null to end the run.
    virtual std::unique_ptr<Persistance_Xpf::CXpfFile> OpenDataFile(const std::filesystem::path& path);
    virtual Persistance_Xpf::EFileKind GetKind() const { return Persistance_Xpf::EFileKind::tarout; }
    // Whether every packet of this channel is to be processed, not only its first.
    virtual bool Watches(std::uint16_t) const { return false; }
    // False ends the scan. The payload is whole, or its first bytes as far as any decoded packet reaches.
    virtual bool ProcessPacket(Persistance_Xpf::CXpfFile& file, const Persistance_Xpf::SPacketHeader& header,
                               std::span<const std::uint8_t> payload);

  private:
    void Scan();
    void ScanStream(Persistance_Xpf::CXpfFile& file);
    void TakeKnown(Persistance_Xpf::CXpfFile& file, const CFileIndex& index);
    bool ProcessAt(Persistance_Xpf::CXpfFile& file, std::int64_t position);
    bool ProcessRun(Persistance_Xpf::CXpfFile& file, std::int64_t position,
                    std::span<const std::uint8_t* const> packets);
    void EndScan(Persistance_Xpf::CXpfFile& file);
    bool IsDamaged(Persistance_Xpf::CXpfFile& file, std::int64_t position);
    void LookAtUnchecked(Persistance_Xpf::CXpfFile& file);

    std::filesystem::path m_path;
    Outils::CMessagePort& m_port;
    OnChannel m_onChannel;
    OnDamage m_onDamage;
    Outils::CEvent m_stop;
    std::bitset<65536> m_reported;
    std::bitset<65536> m_passed; // channels of which this scan needs no more
    Persistance_Xpf::CXpfFilePosition m_resume;
    const std::shared_ptr<CFileIndexes> m_indexes; // null for an analysis that makes no index
    std::unique_ptr<CIndexScan> m_index;           // since the first scan; the same

    std::mutex m_startMutex; // guards what follows
    bool m_scanning = false;
    bool m_scanAgain = false;
};

// The values that the first packets of an input file give.
struct SFirstData {
    bool hasUtc = false;
    CDateTime utcOrigin; // instant of packet date zero
    bool hasPosition = false;
    Metier_Positioning::CPosition position; // of the first GPS packet
};

class CTrvTarinDataFileAnalyzerThread : public CTrvDataFileAnalyzerThread {
  public:
    using CTrvDataFileAnalyzerThread::CTrvDataFileAnalyzerThread;
    ~CTrvTarinDataFileAnalyzerThread() override { Kill(); }

    // Waits until origin and position are both known, the scan has ended, or the time is over; gives what is
    // there then. The UI thread waits here: its caller sets a limit of a few seconds.
    SFirstData WaitForFirstData(std::chrono::milliseconds timeout);

  protected:
    void Run() override;
    std::unique_ptr<Persistance_Xpf::CXpfFile> OpenDataFile(const std::filesystem::path& path) override;
    Persistance_Xpf::EFileKind GetKind() const override { return Persistance_Xpf::EFileKind::tarin; }
    bool Watches(std::uint16_t channel) const override;
    bool ProcessPacket(Persistance_Xpf::CXpfFile& file, const Persistance_Xpf::SPacketHeader& header,
                       std::span<const std::uint8_t> payload) override;

  private:
    static constexpr std::uint16_t kNoChannel = 0xFFFF;

    bool ProcessGps(const Persistance_Xpf::SPacketHeader& header, std::span<const std::uint8_t> payload);
    bool ProcessUtc(const Persistance_Xpf::SPacketHeader& header, std::span<const std::uint8_t> payload);

    // The packet type by channel number of the file at hand; only on the thread.
    std::vector<std::uint16_t> m_types;
    bool m_utcSeen = false; // copies for the thread itself, so that a packet costs no lock
    bool m_positionSeen = false;

    std::mutex m_mutex;                  // guards what follows
    std::condition_variable m_firstData; // new data, or the end of a scan
    SFirstData m_data;
};

// The UTC origin of a recording, searched in its first `maxPacketCount` packets on the caller's thread;
// invalid when there is none, or once the event is set. The search goes by packet headers and reads one
// payload.
CDateTime FindUtcOrigin(const std::filesystem::path& path, int maxPacketCount,
                        const Outils::CEvent* interrupt = nullptr);

} // namespace Application_Tarvel
