// Writes every packet of one channel in a period to a text file: separator ";", decimal point, one row a
// packet. The file is made beside its target and renamed when it is whole; a failure or a cancellation leaves
// the target as it was, and nothing beside it.
#pragma once

#include "dataaccess/period_query.h"
#include "foundation/atomic_file.h"
#include "foundation/date_text.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Application_Tarvel {

// One field, which becomes a column for each of its elements. With factor 1 and offset 0 the value is the
// stored one to the last bit, in the fewest digits that read back; otherwise it is value * factor + offset.
struct SCsvColumn {
    std::string heading; // name and unit, "Depth [m]"; a field of several elements appends "[0]", "[1]", ...
    std::uint32_t field = 0;
    double factor = 1;
    double offset = 0;
};

struct SCsvClock {
    std::string heading; // of the column of dates
    // The instant of date zero of the file: rows then begin with "2026-03-14T09:26:53.5897932Z". Without it
    // they begin with seconds, "12.5000000".
    std::optional<Outils_Temps::CDateTime> zero;
    CDateTimeSpan origin; // added to the dates shown as seconds
};

class CTrvCsvQuery final : public TPeriodQuery<CTrvCsvQuery> {
  public:
    // `onDone` may be empty. An existing target is replaced, a link followed.
    CTrvCsvQuery(SChannelAddress address, SClosedPeriod period, SCsvClock clock,
                 std::vector<SCsvColumn> columns, std::filesystem::path target, Callback onDone);
    const std::filesystem::path& GetTarget() const { return m_target; }
    // Once Execute has returned: the file could not be written, whatever GetError says. / Its rows.
    bool IsTargetAtFault() const { return m_targetAtFault; }
    std::uint64_t GetRowCount() const { return m_rows; }

  protected:
    bool Begin(const Persistance_Xpf::SPacketLayout& layout) override;
    bool Take(Payloads payloads) override;
    bool Finish() override;
    void Abandon() override { m_file.Abandon(); }

  private:
    using Format = char* (*)(const std::uint8_t* bytes, const SCsvColumn& column, char* out);
    struct SElement {
        const SCsvColumn* column;
        Format format;
        std::uint32_t offset; // bytes, in the payload
    };

    bool AddElements(const Persistance_Xpf::SPacketLayout& layout, const SCsvColumn& column);
    void AppendHeading(const std::string& heading);
    char* FormatDate(std::int64_t date, char* out);
    bool Flush();
    bool OpenTarget();
    bool Fail();

    SCsvClock m_clock;
    std::vector<SCsvColumn> m_columns;
    std::filesystem::path m_target;
    std::vector<SElement> m_elements;
    std::string m_headings;
    Outils_Fichiers::CAtomicFile m_file;
    std::vector<char> m_text; // not written yet
    std::size_t m_used = 0;
    std::uint64_t m_rows = 0;
    bool m_targetAtFault = false;
    Outils_Temps::CIsoFormatter m_iso;
};

} // namespace Application_Tarvel
