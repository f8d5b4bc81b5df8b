#include "graph/curve_style.h"

#include <gtest/gtest.h>

using namespace Presentation_Tarvel_Graphics;

namespace {

TEST(CurveStyle, StyleIsKeptBesideTheColour) {
    for (int i = 0; i < static_cast<int>(ELineStyle::count); ++i) {
        const SCurveLook look{0xFF56B4E9, static_cast<ELineStyle>(i)};
        EXPECT_EQ(ReadLook(WriteLook(look)), look) << i;
        EXPECT_GT(WriteLook(look) >> 24, 0xFAu) << "the colour looks the same to other programs";
    }
    EXPECT_EQ(WriteLook({0xFF123456, ELineStyle::solid}), 0xFF123456u);
    for (const Colour saved : {0x80123456u, 0x00000000u, 0xFA123456u})
        EXPECT_EQ(ReadLook(saved), (SCurveLook{saved, ELineStyle::solid})) << "as older programs saved it";
}

} // namespace
