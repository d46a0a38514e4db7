#include "linear_algebra/detail/csr_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using kvx3d::detail::PositionOf;

TEST(PositionOf, EveryColumnOfEveryRowLengthIsFound) {
    for (int length = 0; length <= 40; ++length) {
        std::vector<int> Ja(1, 0);
        for (int k = 1; k <= length; ++k) {
            Ja.push_back(1000 - 7 * k);
        }
        for (int k = 1; k <= length; ++k) {
            EXPECT_EQ(PositionOf(Ja[k], Ja.data(), 1, length + 1), k) << length;
        }
    }
}

TEST(PositionOf, AnUnknownColumnGivesZero) {
    for (int length = 0; length <= 40; ++length) {
        const std::vector<int> Ja(length + 1, 5);

        EXPECT_EQ(PositionOf(6, Ja.data(), 1, length + 1), 0) << length;
    }
}

TEST(PositionOf, EntriesOfTheNeighboringRowsAreIgnored) {
    std::vector<int> Ja(60, 5);
    std::fill(Ja.begin() + 20, Ja.begin() + 40, 7);

    EXPECT_EQ(PositionOf(5, Ja.data(), 20, 40), 0);
    EXPECT_EQ(PositionOf(7, Ja.data(), 20, 40), 20);
}

TEST(PositionOf, TheFirstOfEqualEntriesIsFound) {
    for (int firstAt = 1; firstAt <= 30; ++firstAt) {
        std::vector<int> Ja(32, 0);
        std::fill(Ja.begin() + firstAt, Ja.end(), 9);

        EXPECT_EQ(PositionOf(9, Ja.data(), 1, 32), firstAt);
    }
}

TEST(RowProduct, AnEmptyRowReadsNeitherColumnsNorValues) {
    const int Ia[] = {0, 1, 1};

    EXPECT_EQ(kvx3d::detail::RowProduct({1, Ia, nullptr, nullptr}, 1, nullptr), 0.0);
}

TEST(RowProduct, ProductsAreAddedInStorageOrderFromZero) {
    for (int length = 0; length <= 40; ++length) {
        const int Ia[] = {0, 3, 3 + length};
        std::vector<int> Ja(3 + length);
        std::vector<double> Aa(3 + length);
        std::vector<double> x = {0.0, 1.0, 0.3, -1e16, 7.1, 1e16};
        double sum = 0.0;
        for (int k = 3; k < 3 + length; ++k) {
            Ja[k] = 1 + (7 * k) % 5;
            Aa[k] = 1.0 + 0.1 * k;
            sum += x[Ja[k]] * Aa[k];
        }

        EXPECT_EQ(kvx3d::detail::RowProduct({1, Ia, Ja.data(), Aa.data()}, 1, x.data()), sum)
            << length;
    }
}

}  // namespace
