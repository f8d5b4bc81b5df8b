// One sentence of NMEA 0183 in a line that may hold more.
#pragma once

#include "convert/fields.h"

#include <string_view>

namespace Conversion {

enum class ECheckSum : std::uint8_t { right, wrong, missing };

struct SSentence {
    std::string_view address; // "GPGGA"
    std::string_view body;    // what follows the address and its comma
    ECheckSum sum = ECheckSum::missing;

    std::string_view GetTalker() const { return address.substr(0, 2); }
    // The kind of a standard sentence, "GGA"; empty for one of a maker.
    std::string_view GetKind() const {
        bool isStandard = address.size() == 5 && address.front() != 'P';
        for (const char c : address) isStandard = isStandard && c >= 'A' && c <= 'Z';
        return isStandard ? address.substr(2) : std::string_view();
    }
};

// Takes the next sentence out of a line: it begins with "$" and ends with its check sum, with the next "$" or
// with the line. What precedes it (a logger's time stamp, noise) is passed over. False when there is none.
bool TakeSentence(std::string_view& line, SSentence& sentence);

} // namespace Conversion
