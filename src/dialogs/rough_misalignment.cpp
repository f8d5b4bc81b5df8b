#include "dialogs/rough_misalignment.h"

#include "foundation/texts.h"
#include "model/nelix_configuration.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace Dialogue_Tarvel {

using Outils_Texte::EText;

using Metier_Tarvel::kRoughMisalignmentCount;

namespace {

struct SSides {
    int logo, connector;
    bool operator==(const SSides&) const = default;
};
using CTable = std::array<SSides, kRoughMisalignmentCount>; // by code

constexpr CTable kUsual{{{0, 5}, {3, 5}, {1, 5}, {2, 5}, {0, 4}, {3, 4}, {1, 4}, {2, 4},
                         {0, 3}, {3, 1}, {1, 2}, {2, 0}, {0, 2}, {3, 0}, {1, 3}, {2, 1},
                         {4, 2}, {4, 0}, {4, 3}, {4, 1}, {5, 3}, {5, 1}, {5, 2}, {5, 0}}};
constexpr CTable kTurned{{{4, 0}, {4, 3}, {4, 1}, {4, 2}, {5, 0}, {5, 3}, {5, 1}, {5, 2},
                          {2, 0}, {0, 3}, {3, 1}, {1, 2}, {3, 0}, {1, 3}, {2, 1}, {0, 2},
                          {3, 4}, {1, 4}, {2, 4}, {0, 4}, {2, 5}, {0, 5}, {3, 5}, {1, 5}}};

constexpr std::int32_t kTurnedEquipment[] = {11, 12, 16};
constexpr std::int32_t kShortLabelEquipment[] = {13, 14, 15, 18};

constexpr int AxisOf(int side) { return side / 2; }
constexpr bool IsSide(int side) { return side >= 0 && side < kSideCount; }

// Four connector sides for each of six logo sides are all the 24 there are: each pair has its code.
constexpr bool HasEveryPair(const CTable& table) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (!IsSide(table[i].logo) || !IsSide(table[i].connector)) return false;
        if (AxisOf(table[i].logo) == AxisOf(table[i].connector)) return false;
        for (std::size_t k = 0; k < i; ++k)
            if (table[i] == table[k]) return false;
    }
    return true;
}
static_assert(HasEveryPair(kUsual) && HasEveryPair(kTurned));

template <class List>
bool Contains(const List& list, std::int32_t value) {
    return std::find(std::begin(list), std::end(list), value) != std::end(list);
}

const CTable& TableOf(std::int32_t equipment) {
    return Contains(kTurnedEquipment, equipment) ? kTurned : kUsual;
}

} // namespace

CRoughMisalignmentChooser::CRoughMisalignmentChooser(std::int32_t code, std::int32_t equipment)
    : m_equipment(equipment) {
    const bool known = code >= 0 && code < kRoughMisalignmentCount;
    const SSides& sides = TableOf(equipment)[static_cast<std::size_t>(known ? code : 0)];
    m_logo = sides.logo;
    m_connector = sides.connector;
}

bool CRoughMisalignmentChooser::SetLogo(int side) {
    if (!IsSide(side)) return false;
    m_logo = side;
    if (!IsConnectorEnabled(m_connector)) m_connector = (AxisOf(side) + 1) % 3 * 2;
    return true;
}

bool CRoughMisalignmentChooser::SetConnector(int side) {
    if (!IsConnectorEnabled(side)) return false;
    m_connector = side;
    return true;
}

bool CRoughMisalignmentChooser::IsConnectorEnabled(int side) const {
    return IsSide(side) && AxisOf(side) != AxisOf(m_logo);
}

std::string_view CRoughMisalignmentChooser::GetLabel(int side) const {
    using Outils_Texte::EText;
    constexpr int kFirstOfShort = 2; // up and down have one wording
    const bool isShort = side >= kFirstOfShort && Contains(kShortLabelEquipment, m_equipment);
    return Outils_Texte::GetText(isShort ? EText::sideStarboardShort + (side - kFirstOfShort)
                                         : EText::sideUp + side);
}

std::int32_t CRoughMisalignmentChooser::GetCode() const {
    const CTable& table = TableOf(m_equipment);
    return static_cast<std::int32_t>(std::find(table.begin(), table.end(), SSides{m_logo, m_connector}) -
                                     table.begin());
}

} // namespace Dialogue_Tarvel
