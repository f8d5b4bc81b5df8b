#include "model/configuration_values.h"

#include "foundation/numbers.h"

#include <cmath>

namespace Metier_Tarvel {

std::optional<std::string_view> GetListField(std::string_view list, int index) {
    for (; index > 0; --index) {
        const std::size_t comma = list.find(',');
        if (comma == std::string_view::npos) return std::nullopt;
        list.remove_prefix(comma + 1);
    }
    return list.substr(0, list.find(','));
}

std::optional<double> GetListNumber(std::string_view list, int index) {
    const auto field = GetListField(list, index);
    const auto number = field ? Outils_Texte::ParseDouble(*field) : std::nullopt;
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<std::int32_t> GetListInteger(std::string_view list, int index) {
    const auto field = GetListField(list, index);
    return field ? Outils_Texte::ParseInt(*field) : std::nullopt;
}

bool ReadLeverArm(CLeverArm& leverArm, const std::string& list) {
    return list.empty() || ReadTriple(leverArm, list);
}

} // namespace Metier_Tarvel
