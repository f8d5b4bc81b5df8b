#include "convert/nmea_sentence.h"

#include <algorithm>
#include <cstring>

namespace Conversion {
namespace {

// All bytes combined by exclusive or.
std::uint8_t SumUp(std::string_view text) {
    std::uint64_t words = 0;
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + i, sizeof word);
        words ^= word;
    }
    words ^= words >> 32;
    words ^= words >> 16;
    auto sum = static_cast<std::uint8_t>(words ^ (words >> 8));
    for (; i < text.size(); ++i) sum ^= static_cast<std::uint8_t>(text[i]);
    return sum;
}

} // namespace

bool TakeSentence(std::string_view& line, SSentence& sentence) {
    const std::size_t begin = line.find('$');
    if (begin == std::string_view::npos) return false;
    line.remove_prefix(begin + 1);
    // The sentence that follows on the same line, if there is one, limits the search for the sum.
    std::string_view text = line.substr(0, line.find('$'));
    text = text.substr(0, text.find('*'));
    sentence.sum = ECheckSum::missing;
    line.remove_prefix(text.size());
    if (line.starts_with('*')) {
        const auto stated =
            line.size() < 3 ? std::nullopt : ParseInteger<std::uint8_t>(line.substr(1, 2), 16);
        sentence.sum = stated && *stated == SumUp(text) ? ECheckSum::right : ECheckSum::wrong;
        line.remove_prefix(std::min<std::size_t>(line.size(), stated ? 3 : 1));
    }
    const std::size_t comma = std::min(text.find(','), text.size());
    sentence.address = text.substr(0, comma);
    text.remove_prefix(std::min(comma + 1, text.size()));
    sentence.body = text;
    return true;
}

} // namespace Conversion
