// The two kinds of packet files: input data file (.tarin) and result file (.tarout).
#pragma once

#include "xpf/file.h"

#include <map>

namespace Persistance_Xpf {

struct SStatusTable;

// What both file kinds share: channels by number, and header reading by the tables of the kind.
class CXpfTableFile : public CXpfFile {
  public:
    explicit CXpfTableFile(EFileKind kind) : m_kind(kind) {}

    bool ReadFileHeader(bool& outdated, HeaderBuffer& headerBuffer) override;
    // Why ReadFileHeader has returned false; reads the header again.
    EOpening ExplainRefusal();
    CXpfChannel* FindChannelByName(std::string_view name) override;
    CXpfChannel* FindChannelByNumber(std::uint16_t number) override;
    std::uint32_t GetStatusFieldCount(std::uint16_t packetType) const override;
    bool GetStatusField(std::uint16_t packetType, std::uint32_t index, std::string& name,
                        std::string& description, std::uint32_t& literalCount) const override;
    bool GetStatusLiteral(std::uint16_t packetType, std::uint32_t index, std::uint32_t literal,
                          std::string& name, std::string& description) const override;

  private:
    bool ReadChannelRecord();
    EOpening ExplainChannels(std::uint32_t count);
    bool ReadDefinitions(std::uint32_t count);
    const SStatusTable* FindStatus(std::uint16_t packetType) const;

    EFileKind m_kind;
    std::map<std::uint16_t, CXpfChannel*> m_byNumber; // of a repeated number the later record
};

// The recording of an INS and its aiding sensors.
class CXpfTarinFileV3 : public CXpfTableFile {
  public:
    CXpfTarinFileV3() : CXpfTableFile(EFileKind::tarin) {}
};

// The result of the processing engine (.tarout), read while the engine still writes it.
class CXpfTaroutFileV2 : public CXpfTableFile {
  public:
    CXpfTaroutFileV2() : CXpfTableFile(EFileKind::tarout) {}
};

} // namespace Persistance_Xpf
