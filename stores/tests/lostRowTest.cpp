// A row that is lost for another reason than its statement leaves the connection unusable, so that an import stops.

#include <cstdlib>
#include <new>

#include "stores/tests/rsdStoreFixture.h"

namespace {

/// Allocations of this program that still succeed; negative for all of them.
int allocationsLeft = -1;

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = allocationsLeft == 0 ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (allocationsLeft > 0) --allocationsLeft;
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace {

class LostRow : public RsdStore {
  protected:
    static SQLiteDatabase& opened(SQLiteDatabase& database) {
        database.openInMemory();
        database.execute("CREATE TABLE tree(id integer PRIMARY KEY, name, notes)");
        return database;
    }

    static DatabaseRecord recordOf(std::string notes) {
        DatabaseRecord record;
        record.setColumn("name", "a name too long to be stored without an allocation");
        record.setColumn("notes", std::move(notes));
        return record;
    }
};

TEST_F(LostRow, WhereverOurOwnMemoryRunsOut) {
    int failures = 0;
    for (bool failed = true; failed; ++failures) {
        SQLiteDatabase database;
        opened(database);
        const DatabaseRecord record = recordOf("x");
        allocationsLeft = failures;
        database.insertRecord("tree", record);
        failed = allocationsLeft == 0;
        allocationsLeft = -1;
        const bool isThere = !database.select("SELECT id FROM tree")->atEnd();
        EXPECT_EQ(database.connect(), isThere) << failures;
        EXPECT_EQ(database.errorMessage(), isThere ? "not an error" : "out of memory") << failures;
    }
    EXPECT_GT(failures, 5);
}

TEST_F(LostRow, WhereACellIsTooLongButNotWhereTheStatementIsAtFault) {
    SQLiteDatabase database;
    opened(database).insertRecord("no such table", recordOf("x"));
    EXPECT_NE(database.errorCode(), 0);
    EXPECT_TRUE(database.connect());
    database.insertRecord("tree", recordOf(std::string(1'000'000'001, 'x')));
    EXPECT_FALSE(database.connect());
    EXPECT_EQ(database.errorMessage(), "string or blob too big");
}

}  // namespace
