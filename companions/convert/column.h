// A column of external data: which field of a packet it fills, and in which unit.
#pragma once

#include "recording/payload.h"
#include "xpf/layout.h"

#include <optional>
#include <string_view>

namespace Conversion {

struct SColumn {
    const Persistance_Xpf::SFieldLayout* field = nullptr; // null: ignored
    Enregistrement::SPlace place{};
    double factor = 1; // converts the unit of the column into the unit of the field
};

// The column of a title, "Depth" or "Std. dev. depth [cm]", matched without case. A title that is none of the
// packet's fields gives a column that is ignored. Empty for a unit that the field's quantity does not have.
std::optional<SColumn> MakeColumn(const Persistance_Xpf::SPacketLayout& layout, std::string_view title);

// Whether a field can hold the value: whole numbers within their type, angles within the circle.
bool Holds(const Persistance_Xpf::SFieldLayout& field, double value);

} // namespace Conversion
