#include <gtest/gtest.h>

#include "accessdriver/sql/run/rowSet.h"

namespace {

// Values of every type, in rows around the size of a chunk, come back as they went in.
TEST(RowSetTest, GivesBackWhatItGot) {
    sql::RowSet rows(std::vector<sql::ResultColumn>(3));
    std::vector<std::vector<jet::Value>> wanted = {
        {jet::Value{}, true, std::int32_t{-7}},
        {jet::Currency{-1}, -0.5, jet::DateTime{-1.25}},
        {std::string(), std::string(200000, 'm'), jet::Bytes{0, 255}},
        {std::string("Zoë\0x", 6), false, jet::Bytes{}},
    };
    for (int i = 0; i < 5000; ++i) wanted.push_back({std::int32_t{i}, std::to_string(i), jet::Value{}});
    for (const auto& row : wanted) rows.add(row);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        ASSERT_TRUE(rows.next());
        for (std::size_t column = 0; column < 3; ++column) ASSERT_EQ(rows.value(column), wanted[i][column]) << i;
    }
    EXPECT_FALSE(rows.next());
    EXPECT_FALSE(rows.next());
}

}  // namespace
