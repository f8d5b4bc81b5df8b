// The columns of a packet in a text table: names with units, and the values of a row.
#pragma once

#include "export/clock.h"
#include "export/export_file.h"
#include "export/fields.h"

#include <functional>
#include <string>
#include <vector>

namespace Exportation {

inline constexpr char kColumnSeparator = ';';

// Text in double quotes, inner quotes doubled, when a table could not hold it otherwise.
std::string QuoteCell(std::string_view text);

class CTextRow {
  public:
    // All fields of the layout, but for its date, for which `takes` returns true. An empty `takes` takes all.
    explicit CTextRow(const Persistance_Xpf::SPacketLayout& layout,
                      const std::function<bool(std::string_view name)>& takes = {});

    // Headings and values, each after a separator. An array of characters is one text, of other types one
    // column an element. Format returns the end.
    // REQUIRES: GetWidth() characters at `out`.
    std::string GetHeadings() const;
    char* Format(const std::uint8_t* payload, char* out) const;
    // As many separators as there are columns.
    char* FormatEmpty(char* out) const;
    std::size_t GetWidth() const { return m_cells.size() * kWidestValue + 2 * m_textSize; }

  private:
    struct SCell {
        SFieldRef field;
        std::string heading;
        std::uint32_t textSize; // characters; 0 for a number
    };
    std::vector<SCell> m_cells;
    std::size_t m_textSize = 0; // of all texts
};

// The columns "Date [s]" and, with a known UTC, "UTC".
std::string GetDateHeadings(const CClock& clock);
char* FormatDates(const CClock& clock, std::int64_t date, CIsoFormatter& iso, char* out);

} // namespace Exportation
