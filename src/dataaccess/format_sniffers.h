// The tests that recognise file formats, each over the first bytes of a file.
#pragma once

#include "dataaccess/format_detection.h"
#include "foundation/text_id.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace Application_Tarvel {

// The lines at the head of a text file, up to a count. A line ends with LF or CR LF; of one that is longer
// than `limit` characters the rest is the next line.
class CHeadLines {
  public:
    CHeadLines(std::string_view head, std::size_t count, std::size_t limit)
        : m_rest(head), m_count(count), m_limit(limit) {}

    // False at the end of the text and after the last line that may be read. The line is a part of the head.
    bool Next(std::string_view& line);

  private:
    std::string_view m_rest;
    std::size_t m_count; // that may still be read
    std::size_t m_limit;
};

struct SSniffer;
using SniffTest = bool (*)(std::string_view head, const SSniffer& sniffer,
                           const Outils_Valeurs::CDateTimeAdaptor& dates);

struct SSniffer {
    EFileFormat format;
    Outils_Texte::EText label; // names the format
    SniffTest test;
    std::size_t lines = 0; // read at most
    std::span<const std::string_view> words = {};
    std::size_t lineLimit = 255; // characters
};

// A line begins with one of the words.
bool AnyLineBegins(std::string_view head, const SSniffer& sniffer, const Outils_Valeurs::CDateTimeAdaptor&);
// Each of the words begins a line.
bool EachWordBegins(std::string_view head, const SSniffer& sniffer, const Outils_Valeurs::CDateTimeAdaptor&);
// At least four of five lines begin with one of the words.
bool MostLinesBegin(std::string_view head, const SSniffer& sniffer, const Outils_Valeurs::CDateTimeAdaptor&);
// Two frame marks lie as far apart as the byte after the first one says.
bool HoldsFrame(std::string_view head, const SSniffer&, const Outils_Valeurs::CDateTimeAdaptor&);
// At least four lines are events: a date, then perhaps an edge and a number.
bool HoldsEvents(std::string_view head, const SSniffer& sniffer,
                 const Outils_Valeurs::CDateTimeAdaptor& dates);

} // namespace Application_Tarvel
