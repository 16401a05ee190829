// makeEverything OUT: a file with one empty table that has a column of each type, and a herd's tables beside it.

#include <cstdio>

#include "accessdriver/jet/making/cavTables.h"

int main(int count, char** values) {
    if (count != 2) return 2;
    using enum jet::ColumnType;
    jet::TableSpec everything{
        .name = "everything",
        .columns = {{.name = "id", .type = longInteger, .autoNumber = true},
                    {.name = "name", .type = text, .length = 255},
                    {.name = "notes", .type = memo},
                    {.name = "tame", .type = boolean},
                    {.name = "legs", .type = byte},
                    {.name = "cage", .type = integer},
                    {.name = "tag", .type = longInteger},
                    {.name = "price", .type = currency},
                    {.name = "ratio", .type = single},
                    {.name = "weight", .type = doubleFloat},
                    {.name = "born", .type = dateTime},
                    {.name = "chip", .type = binary, .length = 20},
                    {.name = "photo", .type = ole},
                    {.name = "mark", .type = guid},
                    {.name = "amount", .type = numeric, .precision = 18, .scale = 4}},
        .indexes = {{.name = "PrimaryKey", .columns = {"id"}, .primaryKey = true, .descending = {}},
                    {.name = "cage", .columns = {"cage", "tag"}, .descending = {}}}};
    try {
        jet::makeFile(values[1], {.password = "", .tables = {everything}});
    } catch (const jet::Error& error) {
        std::fprintf(stderr, "makeEverything: %s\n", error.what());
        return 1;
    }
    return 0;
}
