#include "accessdriver/jet/making/cavTables.h"

#include <array>

#include "accessdriver/jet/database.h"

namespace jet {

namespace {

ColumnSpec text(std::string name, int length) { return {std::move(name), ColumnType::text, length, false, true}; }
ColumnSpec of(std::string name, ColumnType type) { return {std::move(name), type, 0, false, true}; }
ColumnSpec date(std::string name) { return of(std::move(name), ColumnType::dateTime); }
ColumnSpec memo(std::string name) { return of(std::move(name), ColumnType::memo); }
ColumnSpec number(std::string name) { return of(std::move(name), ColumnType::longInteger); }
ColumnSpec yesNo(std::string name) { return of(std::move(name), ColumnType::boolean); }
ColumnSpec counter() { return {"id", ColumnType::longInteger, 0, true, true}; }

constexpr int nameLength = 255, wordLength = 100, idLength = 50, flagLength = 20, customFields = 15;

TableSpec tree() {
    TableSpec table{
        "tree",
        {counter(), text("name", nameLength), text("colour", wordLength), text("breed", wordLength),
         text("sex", flagLength), date("dob"), text("oldId", idLength), text("fatherId", idLength),
         text("motherId", idLength), text("ps", nameLength), text("pd", nameLength), text("tag", wordLength),
         text("prefix", wordLength), text("suffix", wordLength), memo("health"), text("cage", idLength), memo("notes")},
        {}};
    for (int i = 1; i <= customFields; ++i)
        table.columns.push_back(text("customfield" + std::to_string(i), nameLength));
    table.columns.push_back(yesNo("deceased"));
    table.columns.push_back(of("weight", ColumnType::doubleFloat));
    table.columns.push_back(of("price", ColumnType::currency));
    return table;
}

TableSpec matings() {
    return {"matings",
            {counter(), text("Breed", wordLength), text("Boar", nameLength), text("Sow", nameLength), date("Due"),
             date("Mated"), date("Born"), number("numBoars"), number("NumSows"), memo("Colour"), yesNo("Sold"),
             yesNo("Unsuccessful"), number("Stillborn"), number("numUndefined")},
            {}};
}

TableSpec cavyUser() {
    TableSpec table{"cavyUser", {number("id"), text("owner", wordLength)}, {}};
    for (int i = 1; i <= customFields; ++i) {
        table.columns.push_back(text("fldCustomName" + std::to_string(i), wordLength));
    }
    return table;
}

IndexSpec plainIndex(const std::string& column) { return {column, {column}, false, false, false, false, {}}; }

}  // namespace

std::vector<TableSpec> emptyCav(CavColumns columns) {
    std::vector<TableSpec> tables = {
        tree(),
        matings(),
        {"soldStock",
         {counter(), text("Dam", nameLength), text("Offspring", nameLength), text("Colour", wordLength),
          date("DateSold"), text("SoldTo", nameLength), text("Sire", nameLength)},
         {}},
        {"vaccinations",
         {counter(), date("dueDate"), text("name", nameLength), text("vaccination", nameLength),
          text("done", flagLength)},
         {}},
        cavyUser(),
        {"contacts", {counter(), text("name", wordLength), text("phone", idLength)}, {}}};
    for (TableSpec& table : tables) {
        table.indexes.push_back({"PrimaryKey", {"id"}, true, true, false, true, {}});
        if (columns == CavColumns::typed) continue;
        for (std::size_t i = 1; i < table.columns.size(); ++i)
            table.columns[i] = text(table.columns[i].name, nameLength);
    }
    if (columns == CavColumns::typed) {
        tables[0].indexes.push_back(plainIndex("name"));
        tables[1].indexes.push_back(plainIndex("Mated"));
    }
    return tables;
}

void makeCavFile(const std::string& path, CavColumns columns, const std::string& password) {
    makeFile(path, {password, emptyCav(columns)});
    const auto database = Database::open(path, password);
    const std::array<Assignment, 1> row = {Assignment{0, std::int32_t{1}}};
    database->insert(database->table("cavyUser"), row);
    database->commit();
}

}  // namespace jet
