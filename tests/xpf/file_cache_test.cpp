#include "xpf/file_cache.h"

#include <gtest/gtest.h>

using namespace Application_Tarvel;

namespace {

TEST(FileCache, PositionsBelongToOneChannel) {
    CXpfFileCache cache;
    CXpfFilePosition position;
    EXPECT_FALSE(cache.GetFirstPosition("/a", 1, position));
    cache.SetFirstPosition("/a", 1, 100);
    cache.SetFirstPosition("/a", 0x101, 200);
    cache.SetFirstPosition("/A", 1, 300);
    cache.SetFirstPosition("/b/a", 1, 400); // a path that ends with the other's text
    cache.SetLastPosition("/a", 1, 900);
    cache.SetFirstPosition("/a", 1, 101);
    ASSERT_TRUE(cache.GetFirstPosition("/a", 1, position));
    EXPECT_EQ(position.Get(), 101);

    cache.InvalidateFirst("/a");
    EXPECT_FALSE(cache.GetFirstPosition("/a", 1, position));
    EXPECT_FALSE(cache.GetFirstPosition("/a", 0x101, position));
    EXPECT_TRUE(cache.GetFirstPosition("/A", 1, position));
    EXPECT_TRUE(cache.GetFirstPosition("/b/a", 1, position));
    EXPECT_TRUE(cache.GetLastPosition("/a", 1, position));
    cache.InvalidateLast("/a");
    EXPECT_FALSE(cache.GetLastPosition("/a", 1, position));
}

TEST(FileCache, SamplesBracketADate) {
    CXpfFileCache cache;
    const auto find = [&cache](std::int64_t ticks, SDateSamples& samples) {
        std::uint32_t exact = 77;
        return cache.FindDate("/a", 1, CDateTimeSpan(ticks), exact, samples) ? exact : 77;
    };
    SDateSamples samples;
    EXPECT_EQ(find(5, samples), 77u);
    EXPECT_FALSE(samples.lowerDate.IsValid() || samples.upperDate.IsValid());
    for (std::uint32_t i = 1; i <= 3; ++i) cache.InsertDate("/a", 1, CDateTimeSpan(i * 10), i);
    EXPECT_EQ(find(20, samples), 2u);
    EXPECT_FALSE(samples.lowerDate.IsValid() || samples.upperDate.IsValid());
    find(25, samples);
    EXPECT_EQ(samples.lowerNumber, 2u);
    EXPECT_EQ(samples.upperNumber, 3u);
    find(5, samples);
    EXPECT_FALSE(samples.lowerDate.IsValid());
    EXPECT_EQ(samples.upperDate, CDateTimeSpan(10));
    find(99, samples);
    EXPECT_FALSE(samples.upperDate.IsValid());
    EXPECT_EQ(samples.lowerDate, CDateTimeSpan(30));
    cache.InvalidateDates("/a");
    EXPECT_EQ(find(20, samples), 77u);
}

TEST(FileCache, SamplesAreBoundedAndKeepHits) {
    CXpfFileCache cache;
    std::uint32_t exact = 0;
    SDateSamples samples;
    for (std::uint32_t i = 0; i < 10 * CXpfFileCache::kMaximumSamples; ++i) {
        cache.InsertDate("/a", 1, CDateTimeSpan(i), i);
        ASSERT_TRUE(cache.FindDate("/a", 1, CDateTimeSpan(0), exact, samples)) << i;
    }
    std::uint32_t kept = 0;
    for (std::uint32_t i = 0; i < 10 * CXpfFileCache::kMaximumSamples; ++i)
        kept += cache.FindDate("/a", 1, CDateTimeSpan(i), exact, samples) ? 1 : 0;
    EXPECT_GE(kept, CXpfFileCache::kMaximumSamples - CXpfFileCache::kEvictionBatch);
    EXPECT_LT(kept, CXpfFileCache::kMaximumSamples);
}

} // namespace
