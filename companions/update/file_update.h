// Raises one packet file of a former layout to the present one, in its place.
#pragma once

#include "common/run_monitor.h"
#include "update/file_layout.h"

#include <cstdint>
#include <filesystem>

namespace MiseANiveau {

using Compagnon::IRunMonitor;
using Outils_Texte::EText;

enum class EUpdate { upToDate, raised, refused, stopped };

// The file is written new beside the old one, read back and compared, and takes the old one's name in one
// step: at any moment the name holds the whole old file or the whole new one.
class CFileUpdate {
  public:
    // The update's part of the progress goes from `first` to `last` percent. `monitor` must outlive it.
    CFileUpdate(IRunMonitor& monitor, double first, double last)
        : m_monitor(monitor), m_first(first), m_last(last) {}

    // Reports how it ends. `keepsBackup`: the old file stays as NAME.bak, or NAME.bak2 and so on beside an
    // older backup. A file that is damaged in places keeps its old version in any case.
    EUpdate Run(const std::filesystem::path& path, bool keepsBackup);

  private:
    // What a file holds: equal before and after the update.
    struct SContent {
        std::uint64_t packets = 0;
        std::uint64_t dates = 0; // a sum over channel, order and date
        bool damaged = false;
        friend bool operator==(const SContent& a, const SContent& b) {
            return a.packets == b.packets && a.dates == b.dates;
        }
    };
    class CContentSum;

    EUpdate Convert(const SFileLayout& layout, bool keepsBackup);
    // Writes the packets of the present layout to `target`. False on failure or a stop.
    bool WriteTo(const std::filesystem::path& target, const SFileLayout& layout, SContent& content);
    bool ReadBack(const std::filesystem::path& path, SContent& content);
    EUpdate Refuse(EText code, std::string_view detail = {}) const;
    EUpdate Stop() const;

    IRunMonitor& m_monitor;
    double m_first, m_last;
    std::filesystem::path m_path;
    bool m_stopped = false;
};

} // namespace MiseANiveau
