// Values of configuration files: lists separated by commas.
#pragma once

#include "model/forward.h"

#include <array>
#include <optional>
#include <string_view>

namespace Metier_Tarvel {

// The field at `index`; empty when the list is shorter.
std::optional<std::string_view> GetListField(std::string_view list, int index);
// The field as a finite number, or as an integer; empty also when it does not convert.
std::optional<double> GetListNumber(std::string_view list, int index);
std::optional<std::int32_t> GetListInteger(std::string_view list, int index);

// `Count` numbers from field `first` on; empty unless all convert.
template <std::size_t Count>
std::optional<std::array<double, Count>> GetListNumbers(std::string_view list, int first = 0) {
    std::array<double, Count> numbers;
    for (std::size_t i = 0; i < Count; ++i) {
        const auto number = GetListNumber(list, first + static_cast<int>(i));
        if (!number) return std::nullopt;
        numbers[i] = *number;
    }
    return numbers;
}

inline void Assign(CLeverArm& leverArm, const std::array<double, 3>& values) {
    leverArm = CLeverArm(values[0], values[1], values[2]);
}
inline void Assign(CMisalignment& misalignment, const std::array<double, 3>& values) {
    misalignment = CMisalignment(values[0], values[1], values[2]);
}

// Three numbers of `list` into a lever arm or a misalignment; false, and nothing changes, unless all convert.
template <class Triple>
bool ReadTriple(Triple& triple, std::string_view list, int first = 0) {
    const auto values = GetListNumbers<3>(list, first);
    if (values) Assign(triple, *values);
    return values.has_value();
}

// As ReadTriple; an empty list changes nothing and is no failure.
bool ReadLeverArm(CLeverArm& leverArm, const std::string& list);

} // namespace Metier_Tarvel
