// Arithmetic and lengths of positions and vectors.
#include "ORV_pos.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(pos, arithmetic_and_size_take_every_coordinate)
{
    EXPECT_EQ((pos2i(1, 2) + pos2i(10, 20) - pos2i(3, 5)) * 4 / 3, pos2i(10, 22));
    EXPECT_EQ((pos3i(1, 2, 3) + pos3i(10, 20, 30) - pos3i(3, 5, 7)) * 4 / 3, pos3i(10, 22, 34));
    EXPECT_EQ((pos4i(1, 2, 3, 4) + pos4i(10, 20, 30, 40) - pos4i(3, 5, 7, 9)) * 4 / 3, pos4i(10, 22, 34, 46));
    EXPECT_EQ(((pos2d(1, 3) + pos2d(10, 20) - pos2d(8, 19)) * 0.5 / 0.25).size(), std::sqrt(36 + 64));
    EXPECT_EQ(((pos3d(1, 3, 4) + pos3d(10, 20, 30) - pos3d(9, 20, 28)) * 3 / 1.5).size(),
              std::sqrt(16 + 36 + 144));
    for (const pos4i other : {pos4i(9, 2, 3, 4), pos4i(1, 9, 3, 4), pos4i(1, 2, 9, 4), pos4i(1, 2, 3, 9)})
        EXPECT_FALSE(pos4i(1, 2, 3, 4) == other);
    EXPECT_EQ(pos2i(3, 4).size() + pos3i(2, 3, 6).size() + pos4i(2, 4, 5, 6).size(), 5 + 7 + 9);
    EXPECT_EQ(pos4i(2'000'000'000, 0, 0, 0).size(), 2e9) << "beyond what int can square";
}

TEST(pos, vectors_follow_ieee_arithmetic)
{
    EXPECT_TRUE(std::isnan((pos3d() / pos3d().size()).x()));
    EXPECT_TRUE(std::isinf((pos3d(0, 0, 1) / 0).z()));
    EXPECT_EQ(inner_product({1, 2, 3}, {5, 7, 11}), 52);
    EXPECT_EQ(inner_product({1e16, -1e16, 1}, {1, 1, 1}), 1);    // another order gives 0
}
