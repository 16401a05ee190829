#include "converters/cavStatements.h"

#include <string_view>

#include "fieldtext/normalisers.h"
#include "fieldtext/textHelpers.h"
#include "platform/database/database.h"
#include "shell/state/appSystem.h"
#include "stores/animalNames.h"
#include "stores/cavStore.h"

namespace cavStatements {
namespace {

constexpr std::string_view comma = "','";
constexpr std::string_view end = "')";

/// Puts a statement together, value by value, each with the text that follows it.
class Statement {
  public:
    Statement(RecordSet& records, stores::AnimalNames& names, std::string_view opening)
        : records_(records), names_(names), sql_(opening) {}

    Statement& raw(const char* field, std::string_view after = comma) {
        return add(records_.requiredField(field).text(), after);
    }
    Statement& rma(const std::string& field, std::string_view after = comma) {
        return add(appSystem::rma(records_.requiredField(field).text()), after);
    }
    Statement& animal(const char* idField, std::string_view after = comma) {
        return add(names_.of(appSystem::db.get(), records_.requiredField(idField).text()), after);
    }
    Statement& yesNo(const char* field, std::string_view after = comma) {
        return add(appSystem::getBooleanString(records_.requiredField(field).text()), after);
    }
    /// A column that gets no value at all.
    Statement& nothing(std::string_view after) { return add({}, after); }

    std::string take() { return std::move(sql_); }

  private:
    Statement& add(std::string_view value, std::string_view after) {
        sql_.append(value).append(after);
        return *this;
    }

    RecordSet& records_;
    stores::AnimalNames& names_;
    std::string sql_;
};

}  // namespace

std::string tree(RecordSet& records, stores::AnimalNames& names) {
    Statement statement(records, names, cavStore::insertTreeOpening());
    statement.rma("name").raw("Colour").raw("Breed").raw("Sex").raw("DOB", "',");
    statement.nothing(",").nothing(",").nothing(",'");
    statement.rma("ps").rma("pd").raw("tag").raw("Prefix").raw("Suffix", "',");
    statement.nothing(",'");
    statement.raw("Cage").rma("Notes");
    for (int number = 1; number <= 14; ++number) statement.rma("Customfield" + std::to_string(number));
    return statement.rma("Customfield15", end).take();
}

/// Deliberate: `numUndefined` is a column of the older RSD layout. Today's layout names it `undefined`, and a file of
/// that layout raises NullReference at its first mating.
std::string matings(RecordSet& records, stores::AnimalNames& names) {
    Statement statement(records, names,
                        "INSERT INTO matings (Breed, Boar, Sow, Due, Mated, Born, numBoars, NumSows, Colour, Sold, "
                        "Unsuccessful, Stillborn, numUndefined) VALUES ('");
    statement.raw("breed").animal("fatherId").animal("motherId").raw("due").raw("mated").raw("born");
    statement.raw("numBoars").raw("numSows").raw("notes").yesNo("sold").yesNo("unsuccessful");
    return statement.raw("stillborn").raw("numUndefined", end).take();
}

/// Deliberate: the offspring's name and the notes form one value, so one value is missing and the database refuses the
/// row.
std::string soldStock(RecordSet& records, stores::AnimalNames& names) {
    Statement statement(records, names,
                        "INSERT INTO soldStock (Dam, Offspring, Colour, DateSold, SoldTo, Sire) VALUES ('");
    statement.animal("motherId").animal("nameId", "").raw("notes").raw("dateSold").raw("soldTo");
    return statement.animal("fatherId", end).take();
}

std::string vaccinations(RecordSet& records, stores::AnimalNames& names) {
    Statement statement(records, names, "INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('");
    return statement.raw("dueDate").animal("nameId").raw("vaccination").raw("done", end).take();
}

}  // namespace cavStatements
