// The packets of one type as rows of a table: a column a number, an array one column an element, a text one.
#pragma once

#include "batch/table.h"
#include "foundation/date_time.h"
#include "xpf/layout.h"
#include "xpf/packet.h"

#include <string>

namespace Batch {

class CPacketColumns {
  public:
    // `utcOrigin` is the UTC of date zero, invalid when not known.
    // REQUIRES: the packet type is decoded.
    CPacketColumns(std::uint32_t packetType, const Outils_Temps::CDateTime& utcOrigin);

    // The column names with ';' between them: "UTC" after the date, "Name[0]", "Name[1]" for an array.
    std::string GetNames() const;
    // The same of the fields alone, each in the place of %1 of `form`.
    std::string GetNames(Outils_Texte::EText form) const;

    // Adds the cells of a packet of the type to the row, one for each name.
    void Add(CTable& table, const Persistance_Xpf::CXpfPacket& packet) const {
        AddCells(table, packet, true);
    }
    void AddFields(CTable& table, const Persistance_Xpf::CXpfPacket& packet) const {
        AddCells(table, packet, false);
    }

  private:
    void AddCells(CTable& table, const Persistance_Xpf::CXpfPacket& packet, bool withUtc) const;
    void AddUtc(CTable& table, const Persistance_Xpf::CXpfPacket& packet) const;

    const Persistance_Xpf::SPacketLayout& m_layout;
    Outils_Temps::CDateTime m_utcOrigin;
};

} // namespace Batch
