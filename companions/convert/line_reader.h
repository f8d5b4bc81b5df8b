// Lines of a text of any size.
#pragma once

#include "convert/byte_source.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace Conversion {

class CLineReader {
  public:
    // Of a longer line each piece of this size counts as a line: binary noise may hold no line end at all.
    static constexpr std::size_t kLongestLine = 64 << 10;

    // `source` must outlive the reader.
    explicit CLineReader(CByteSource& source)
        : m_source(source), m_buffer(kLongestLine + CByteSource::kPieceSize) {}

    // The next line without its end and without a byte order mark at the start of the text. Lines end with
    // LF, after any number of CR; in a text whose first piece has no LF, with CR. Valid until the next call.
    // False at the end.
    bool Next(std::string_view& line);

    // The number of the line, from 1; 0 before the first.
    std::uint64_t GetNumber() const { return m_number; }
    // The line has no end: a recording that was cut, whose last line is no fault.
    bool IsUnfinished() const { return m_unfinished; }

  private:
    bool Fill();
    void FindLineEnd();
    std::string_view Take(std::size_t size, std::size_t end);

    CByteSource& m_source;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0, m_end = 0; // of what waits in the buffer
    std::uint64_t m_number = 0;
    bool m_unfinished = false;
    char m_lineEnd = '\n';
};

} // namespace Conversion
