// makeEverything OUT [bytes]: a file with one table that has a column of each type, and a relationship with itself.
// It is empty, or has one row with bytes, for clients that can read them only.

#include <cstdio>
#include <cstring>

#include "accessdriver/jet/database.h"
#include "accessdriver/jet/making/maker.h"

namespace {

void insertBytes(const char* path) {
    constexpr std::size_t chip = 11, photo = 12;
    const auto database = jet::Database::open(path, "");
    jet::Bytes picture = {'p', 'i', 'c'};
    picture.insert(picture.end(), 100, 0xAB);
    const jet::Assignment values[] = {{chip, jet::Bytes{0x00, 0x01, 0xFE, 0xFF}}, {photo, picture}};
    database->insert(database->table("everything"), values);
    database->commit();
}

}  // namespace

int main(int count, char** values) {
    const bool bytes = count == 3 && std::strcmp(values[2], "bytes") == 0;
    if (count != 2 && !bytes) return 2;
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
        jet::makeFile(values[1], {.password = "",
                                  .tables = {everything},
                                  .relationships = {{"Parents", "everything", "everything", {{"id", "tag"}}}}});
        if (bytes) insertBytes(values[1]);
    } catch (const jet::Error& error) {
        std::fprintf(stderr, "makeEverything: %s\n", error.what());
        return 1;
    }
    return 0;
}
