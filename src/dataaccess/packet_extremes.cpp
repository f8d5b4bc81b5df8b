#include "dataaccess/packet_extremes.h"

#include "xpf/tarin_layouts.h"
#include "xpf/tarout_layouts.h"

#include <cstring>
#include <utility>

// The baseline instruction set knows minima and maxima of few types: a second form of the hot function serves
// the machines that know them all. Both give the same results.
#if defined(__x86_64__) && defined(__GNUC__)
#define VARNE_HAS_AVX2_FORM
#endif

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

constexpr std::size_t kVector = CPacketExtremes::kVector;
using SVector = CPacketExtremes::SVector;

// One vector's worth of neighbouring elements of one type. Only the bytes from `from` to `to` belong to
// fields; what else the vector covers takes part without effect, since each vector has accumulators of its
// own.
struct SChunk {
    EFieldType type = EFieldType::u8;
    int start = 0; // of the vector in the payload; may lie before it, in the packet's header
    int from = 0;
    int to = 0;
};

struct SChunks {
    std::array<SChunk, CPacketExtremes::kMaximumVectors> rows{};
    std::size_t count = 0;
};

constexpr SChunks MakeChunks(const SPacketLayout& layout) {
    SChunks chunks;
    const int last =
        static_cast<int>(layout.payloadSize + kPacketTrailerSize - kVector); // no vector starts behind
    for (std::size_t i = 0; i < layout.fields.size();) {
        const EFieldType type = layout.fields[i].type;
        const int from = layout.offsets[i];
        int to = from;
        // A date and what has several elements, a text say, are no numbers.
        if (type == EFieldType::date || layout.fields[i].count > 1) {
            ++i;
            continue;
        }
        for (; i < layout.fields.size() && layout.fields[i].type == type && layout.fields[i].count == 1; ++i)
            to += static_cast<int>(GetWidth(type));
        const int width = static_cast<int>(GetWidth(type));
        for (int at = from; at < to; at += static_cast<int>(kVector)) {
            int start = at;
            while (start > last) start -= width;
            chunks.rows[chunks.count++] = {
                type, start, at, at + static_cast<int>(kVector) < to ? at + static_cast<int>(kVector) : to};
        }
    }
    return chunks;
}

template <const SPacketLayout& Layout>
inline constexpr SChunks kChunks = MakeChunks(Layout);

// Whole vectors before the payload would leave the packet.
template <const SPacketLayout& Layout>
constexpr bool StaysInPacket() {
    for (std::size_t i = 0; i < kChunks<Layout>.count; ++i) {
        const SChunk& chunk = kChunks<Layout>.rows[i];
        const int end = chunk.start + static_cast<int>(kVector);
        if (chunk.start < -static_cast<int>(kPacketHeaderSize) ||
            end > static_cast<int>(Layout.payloadSize + kPacketTrailerSize) || chunk.from < chunk.start ||
            chunk.to > end)
            return false;
    }
    return true;
}

// Inlined into both forms of Include, and compiled there with the instructions of each.
template <EFieldType Type>
[[gnu::always_inline]] inline void IncludeVector(const std::uint8_t* from, SVector& low, SVector& high) {
    using Element = FieldElement<Type>;
    typedef Element Lanes __attribute__((vector_size(kVector)));
    Lanes value, least, greatest;
    std::memcpy(&value, from, kVector);
    std::memcpy(&least, low.bytes, kVector);
    std::memcpy(&greatest, high.bytes, kVector);
    // The second condition of a floating-point lane is true where the accumulator holds no number yet.
    if constexpr (std::is_floating_point_v<Element>) {
        // NOLINTBEGIN(misc-redundant-expression)
        least = ((value < least) | (least != least)) ? value : least;
        greatest = ((value > greatest) | (greatest != greatest)) ? value : greatest;
        // NOLINTEND(misc-redundant-expression)
    } else {
        least = value < least ? value : least;
        greatest = value > greatest ? value : greatest;
    }
    std::memcpy(low.bytes, &least, kVector);
    std::memcpy(high.bytes, &greatest, kVector);
}

template <const SPacketLayout& Layout>
struct TExtremes {
    static_assert(StaysInPacket<Layout>());
    using Indexes = std::make_index_sequence<kChunks<Layout>.count>;

    static void Begin(const std::uint8_t* payload, SVector* low, SVector* high) {
        for (std::size_t i = 0; i < kChunks<Layout>.count; ++i) {
            std::memcpy(low[i].bytes, payload + kChunks<Layout>.rows[i].start, kVector);
            std::memcpy(high[i].bytes, payload + kChunks<Layout>.rows[i].start, kVector);
        }
    }
    static void Include(const std::uint8_t* const* payloads, std::size_t count, SVector* low, SVector* high) {
        IncludeAll(payloads, count, low, high, Indexes());
    }
#ifdef VARNE_HAS_AVX2_FORM
    [[gnu::target("avx2")]] static void IncludeByAvx2(const std::uint8_t* const* payloads, std::size_t count,
                                                      SVector* low, SVector* high) {
        IncludeAll(payloads, count, low, high, Indexes());
    }
#endif
    static void Finish(const SVector* extremes, std::uint8_t* payload) {
        for (std::size_t i = 0; i < kChunks<Layout>.count; ++i) {
            const SChunk& chunk = kChunks<Layout>.rows[i];
            std::memcpy(payload + chunk.from, extremes[i].bytes + (chunk.from - chunk.start),
                        static_cast<std::size_t>(chunk.to - chunk.from));
        }
    }

  private:
    template <std::size_t... I>
    [[gnu::always_inline]] static inline void IncludeAll(const std::uint8_t* const* payloads,
                                                         std::size_t count, SVector* low, SVector* high,
                                                         std::index_sequence<I...>) {
        // Copies that nothing else can reach, and that therefore live in registers.
        std::array<SVector, sizeof...(I)> least{low[I]...}, greatest{high[I]...};
        for (std::size_t i = 0; i < count; ++i)
            (IncludeVector<kChunks<Layout>.rows[I].type>(payloads[i] + kChunks<Layout>.rows[I].start,
                                                         least[I], greatest[I]),
             ...);
        ((low[I] = least[I], high[I] = greatest[I]), ...);
    }
};

} // namespace

template <const SPacketLayout& Layout>
CPacketExtremes::SFunctions CPacketExtremes::FunctionsFor(bool wide) {
#ifdef VARNE_HAS_AVX2_FORM
    const auto include = wide ? TExtremes<Layout>::IncludeByAvx2 : TExtremes<Layout>::Include;
#else
    const auto include = TExtremes<Layout>::Include;
#endif
    return {TExtremes<Layout>::Begin, include, TExtremes<Layout>::Finish};
}

bool CPacketExtremes::Prepare(std::uint16_t packetType) {
    struct SRow {
        std::uint16_t type;
        SFunctions (*functions)(bool wide);
    };
    static constexpr SRow rows[] = {
#define PACKET_TYPE(code, kind, name, packetClass) {type##name, FunctionsFor<k##name##Layout>},
#define UNDECODED_TYPE(code, kind, name)
#include "xpf/packet_types.inc"
    };
#ifdef VARNE_HAS_AVX2_FORM
    const bool wide = __builtin_cpu_supports("avx2");
#else
    const bool wide = false;
#endif
    for (const SRow& row : rows) {
        if (row.type != packetType) continue;
        m_functions = row.functions(wide);
        return true;
    }
    return false;
}

} // namespace Application_Tarvel
