// The part of an analysis that makes the index of its file. On the thread of the analysis.
#pragma once

#include "dataaccess/file_indexes.h"
#include "foundation/thread.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>

namespace Application_Tarvel {

class CIndexScan {
  public:
    CIndexScan(std::filesystem::path path, Persistance_Xpf::EFileKind kind,
               std::shared_ptr<CFileIndexes> indexes);
    ~CIndexScan();

    // A scan of the open file begins. Moves the file pointer. A large one is shared with a second thread,
    // which begins in the middle; `stop` ends it and must outlive the object.
    void Begin(Persistance_Xpf::CXpfFile& file, const Outils::CEvent& stop);
    // Takes over what the second thread has made once the frontier has come to where it began; true when the
    // scan goes on at another place, the new frontier.
    bool JoinSecond();
    // Where the index ends; none when none is made.
    std::optional<std::int64_t> GetFrontier() const;
    // Null when none is made.
    const CFileIndex* GetIndex() const { return m_builder ? m_builder->GetIndex().get() : nullptr; }
    // The next packets of the walk, the first one at `position`; those before the frontier are left out.
    void Take(std::int64_t position, std::span<const std::uint8_t* const> packets);
    // Goes on from the frontier by itself, over damage, up to the end of the file or until the event is set.
    void GoOn(Persistance_Xpf::CXpfFile& file, const Outils::CEvent& stop);
    // The scan was stopped: nothing is kept, which could take long.
    void Stop();
    // The scan has ended. Keeps an index that has grown enough, or in any case. Whether all of it is kept.
    bool End(bool always = false);

  private:
    class CSecond;

    std::span<const std::uint8_t* const> EndAtSecond(std::int64_t position,
                                                     std::span<const std::uint8_t* const> packets);
    void StartSecond(const Persistance_Xpf::CXpfFile& file, const Outils::CEvent& stop);

    std::filesystem::path m_path;
    Persistance_Xpf::EFileKind m_kind;
    std::shared_ptr<CFileIndexes> m_indexes;
    std::unique_ptr<CIndexBuilder> m_builder; // null when none is made
    bool m_gaveUp = false;                    // the index could not go on beyond the memory
    std::unique_ptr<CSecond> m_second;        // null when nothing is to come of it
    std::int64_t m_reported = 0;              // the frontier when others were last shown how far it came
};

} // namespace Application_Tarvel
