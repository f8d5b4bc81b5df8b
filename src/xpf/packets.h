// The packet classes of both file kinds: thin types over the layout rows.
#pragma once

#include "xpf/packet.h"
#include "xpf/tarin_layouts.h"
#include "xpf/tarout_layouts.h"

#include <array>
#include <memory>

namespace Persistance_Xpf {

// Every accessor of CXpfPacket, answered from the layout rows.
class CXpfTablePacket : public CXpfDatedPacket {
  public:
    const SPacketLayout& GetLayout() const { return *m_layout; }

    std::uint32_t GetPayloadSize() const override { return m_layout->payloadSize; }
    void Clear() override;
    std::string ToText(std::string_view separator) const override;
    std::string GetHeaderText(std::string_view separator) const override;
    std::uint32_t GetFieldCount() const override {
        return static_cast<std::uint32_t>(m_layout->fields.size());
    }
    bool GetFieldInfo(std::uint32_t field, EFieldType& type, std::uint32_t& count,
                      std::uint8_t& nature) const override;
    bool GetDate(std::uint32_t field, CDateTimeSpan& value) const override;
    bool GetDouble(std::uint32_t field, double& value) const override;
    bool GetFloat(std::uint32_t field, float& value) const override;
    bool GetInt32(std::uint32_t field, std::int32_t& value) const override;
    bool GetInt16(std::uint32_t field, std::int16_t& value) const override;
    bool GetInt8(std::uint32_t field, std::int8_t& value) const override;
    bool GetUInt32(std::uint32_t field, std::uint32_t& value) const override;
    bool GetUInt16(std::uint32_t field, std::uint16_t& value) const override;
    bool GetUInt8(std::uint32_t field, std::uint8_t& value) const override;
    bool SetDate(std::uint32_t field, CDateTimeSpan value) override;
    bool SetDouble(std::uint32_t field, double value) override;
    bool SetFloat(std::uint32_t field, float value) override;
    bool SetInt32(std::uint32_t field, std::int32_t value) override;
    bool SetInt16(std::uint32_t field, std::int16_t value) override;
    bool SetInt8(std::uint32_t field, std::int8_t value) override;
    bool SetUInt32(std::uint32_t field, std::uint32_t value) override;
    bool SetUInt16(std::uint32_t field, std::uint16_t value) override;
    bool SetUInt8(std::uint32_t field, std::uint8_t value) override;
    bool GetDateElement(std::uint32_t field, std::uint32_t element, CDateTimeSpan& value) const override;
    bool GetDoubleElement(std::uint32_t field, std::uint32_t element, double& value) const override;
    bool GetFloatElement(std::uint32_t field, std::uint32_t element, float& value) const override;
    bool GetInt32Element(std::uint32_t field, std::uint32_t element, std::int32_t& value) const override;
    bool GetInt16Element(std::uint32_t field, std::uint32_t element, std::int16_t& value) const override;
    bool GetInt8Element(std::uint32_t field, std::uint32_t element, std::int8_t& value) const override;
    bool GetUInt32Element(std::uint32_t field, std::uint32_t element, std::uint32_t& value) const override;
    bool GetUInt16Element(std::uint32_t field, std::uint32_t element, std::uint16_t& value) const override;
    bool GetUInt8Element(std::uint32_t field, std::uint32_t element, std::uint8_t& value) const override;
    bool GetStatusValue(std::uint32_t statusField, std::uint32_t& value) const override;
    CDateTimeSpan GetPacketDate() const override;

  protected:
    explicit CXpfTablePacket(const SPacketLayout& layout) : m_layout(&layout) {}

  private:
    const SPacketLayout* m_layout;
};

template <const SPacketLayout& Layout>
class TXpfPacket final : public CXpfTablePacket {
  public:
    TXpfPacket() : CXpfTablePacket(Layout) {}
    using CXpfPacket::GetPayload;
    std::uint8_t* GetPayload() override { return m_payload.data(); }

  private:
    std::array<std::uint8_t, Layout.payloadSize> m_payload{};
};

using CXpfTarinImuPacketV2 = TXpfPacket<kImuLayout>;
using CXpfTarinDvlPacketV1 = TXpfPacket<kDvlLayout>;
using CXpfTarinEMLogPacketV1 = TXpfPacket<kEMLogLayout>;
using CXpfTarinGpsPacketV2 = TXpfPacket<kGpsLayout>;
using CXpfTarinDepthPacketV1 = TXpfPacket<kDepthLayout>;
using CXpfTarinUsblPacketV1 = TXpfPacket<kUsblLayout>;
using CXpfTarinLblPacketV1 = TXpfPacket<kLblLayout>;
using CXpfTarinUtcPacketV2 = TXpfPacket<kUtcLayout>;
using CXpfTarinOdometerPacketV2 = TXpfPacket<kOdometerLayout>;
using CXpfTarinSynchroPacketV2 = TXpfPacket<kSynchroLayout>;
using CXpfTarinNelixNavPacketV2 = TXpfPacket<kNelixNavLayout>;
using CXpfTarinTemperaturePacketV1 = TXpfPacket<kTemperatureLayout>;
using CXpfPlatformOrientationPacketV1 = TXpfPacket<kPlatformOrientationLayout>;
using CXpfTaroutMorvexStdPacketV2 = TXpfPacket<kMorvexStdLayout>;
using CXpfTaroutMorvexMsgPacketV1 = TXpfPacket<kMorvexMsgLayout>;
using CXpfTaroutMorvexExtPacketV1 = TXpfPacket<kMorvexExtLayout>;

// A new packet object of a type; null for a type that is not decoded.
std::unique_ptr<CXpfPacket> CreateXpfPacket(std::uint16_t packetType);

} // namespace Persistance_Xpf
