// The rough misalignment as the user describes it: where the side with the logo and the side with the
// connectors of the unit look on the vehicle.
#pragma once

#include "foundation/texts.h"

#include <cstdint>
#include <string_view>

namespace Dialogue_Tarvel {

using Outils_Texte::EText;

// A side of the vehicle: 0 up, 1 down, 2 starboard, 3 port, 4 bow, 5 stern. Two neighbours make an axis.
inline constexpr int kSideCount = 6;

class CRoughMisalignmentChooser {
  public:
    static constexpr EText kTitle = EText::roughMisalignmentTitle;
    static constexpr EText kGroups[] = {EText::logoSide, EText::connectorSide};

    // Starts from a code of the INS configuration; one out of range shows as 0.
    CRoughMisalignmentChooser(std::int32_t code, std::int32_t equipment);

    std::int32_t GetEquipment() const { return m_equipment; }
    int GetLogo() const { return m_logo; }
    int GetConnector() const { return m_connector; }
    // Moves the connectors to the next axis when they would be on the axis of the logo. False for a side that
    // is none.
    bool SetLogo(int side);
    // Refused, with false, on the axis of the logo and for a side that is none.
    bool SetConnector(int side);
    bool IsConnectorEnabled(int side) const;
    // The wording depends on the equipment.
    std::string_view GetLabel(int side) const;

    // The code of the two sides, 0 to 23.
    std::int32_t GetCode() const;

  private:
    std::int32_t m_equipment;
    int m_logo = 0;
    int m_connector = 0;
};

} // namespace Dialogue_Tarvel
