#include "tests/cav/rsdSource.h"

#include "tests/support/sqlFile.h"

void makeRsdSource(const std::string& path) {
    SqlFile(path).run(
        "CREATE TABLE tree (id integer PRIMARY KEY, name, fatherId, motherId, colour, breed, sex, dob, notes, ps, pd, "
        "cage, tag, health, oldId, prefix, suffix, customField1, customField2, customField3, customField4, "
        "customField5, customField6, CustomField7, CustomField8, CustomField9, CustomField10, CustomField11, "
        "CustomField12, CustomField13, CustomField14, CustomField15);"
        "CREATE TABLE breeding (id integer PRIMARY KEY, fatherId, motherId, breed, Boar, Sow, mated, due, born, "
        "numBoars, numSows, notes, sold, unsuccessful, stillBorn, numUndefined);"
        "CREATE TABLE soldstock (id integer PRIMARY KEY, nameId, motherId, fatherId, Offspring, DateSold, SoldTo, "
        "Notes, Price);"
        "CREATE TABLE vaccinations (id integer PRIMARY KEY, nameId, duedate, name, vaccination, done);");
}
