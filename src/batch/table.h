// The one writer of what commands report: a table on standard output, as rows of cells or as JSON.
#pragma once

#include "foundation/date_time.h"
#include "foundation/text_id.h"

#include <charconv>
#include <concepts>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Batch {

enum class EForm {
    rows, // a line of column names, then one line for each row, ';' between cells
    json, // one object for each row and line, the column names as keys
};

// A text that is quoted in both forms, whatever is in it: what a file holds as text.
struct SQuoted {
    std::string_view text;
};

// Writes a table row by row. A row begins with the first cell added and ends with EndRow; cells that are
// missing at its end are empty. A number has the shortest form that reads back as the same value. A cell
// without a value is empty, null in JSON; JSON shows a number that is not finite as text.
class CTable {
  public:
    // `out` must outlive the table. The column names are one text with ';' between them, which may be a
    // header text or made by the caller. Writes the header at once.
    CTable(std::ostream& out, EForm form, std::string_view columns);
    CTable(std::ostream& out, EForm form, Outils_Texte::EText columns)
        : CTable(out, form, Outils_Texte::GetText(columns)) {}

    // Adds the next cell of the row. REQUIRES: the row has fewer cells than the table has columns.
    CTable& Add(std::string_view word); // quoted in rows only where it has a separator, quote or line end
    CTable& Add(SQuoted quoted);
    CTable& Add(Outils_Texte::EText word) { return Add(Outils_Texte::GetText(word)); }
    CTable& Add(Outils_Temps::CDateTimeSpan span);    // seconds; empty when invalid
    CTable& Add(const Outils_Temps::CDateTime& date); // ISO 8601; empty when invalid
    template <class Number>
    requires std::integral<Number> || std::floating_point<Number> CTable& Add(Number number) {
        char digits[32];
        return AddDigits({digits, std::to_chars(digits, std::end(digits), number).ptr});
    }
    CTable& AddEmpty();
    // Leaves the cells before the column empty; columns count from 0.
    CTable& SkipTo(std::size_t column);
    // Ends the row. With `flush` a reader sees it at once.
    void EndRow(bool flush = false);

    template <class... Cells>
    void Row(const Cells&... cells) {
        (Add(cells), ...);
        EndRow();
    }

    std::size_t GetColumnCount() const { return m_keys.size(); }

  private:
    CTable& AddDigits(std::string_view digits);
    void AddCell(std::string_view text);

    std::ostream& m_out;
    EForm m_form;
    std::vector<std::string> m_keys; // column names, for JSON as strings with their quotes
    std::string m_line;
    std::size_t m_cells = 0;
};

// A length of time in seconds, without zeros at its end: "2.5".
std::string ToSeconds(Outils_Temps::CDateTimeSpan span);
// "2024-05-14T08:00:00.25Z", the fraction as long as it must be; empty for a date that no calendar has.
std::string ToIsoText(const Outils_Temps::CDateTime& date);

} // namespace Batch
