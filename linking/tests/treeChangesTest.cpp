// Gathered changes against the same changes made at once, on whatever comes between them.

#include <memory>
#include <random>

#include "linking/treeChanges.h"
#include "stores/rsdSchema.h"
#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

namespace {

using linking::TreeChanges;

class Changes : public ProgramTest {};

TEST_F(Changes, LeaveWhatChangesMadeAtOnceWould) {
    static constexpr const char* columns[] = {"ps", "pd", "fatherId", "motherId", "sex"};
    static constexpr std::int64_t ids[] = {-257, -256, -1, 0, 1, 255, 256, 5000, 9223372036854775807};
    const std::string select = "SELECT id, ps, pd, fatherId, motherId, sex, notes FROM tree ORDER BY id";
    SQLiteDatabase db;
    db.DatabaseFile = FileReference(path("gathered.cax"));
    ASSERT_TRUE(db.createDatabaseFile());
    appSystem::makeRSDfields(db);
    for (const std::int64_t id : ids) {
        db.execute("INSERT INTO tree(id, ps, notes) VALUES (" + std::to_string(id) + ", 'old', 'kept')");
    }
    db.commit();
    db.close();
    std::filesystem::copy_file(path("gathered.cax"), path("plain.cax"));
    ASSERT_TRUE(db.connect());
    SqlFile plain(path("plain.cax")), plainFile(path("plain.cax")), file(path("gathered.cax"));
    plain.run("PRAGMA synchronous = OFF; BEGIN");

    std::mt19937 random(20402);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    const auto commit = [&] { plain.run("COMMIT; BEGIN"); };
    auto changes = std::make_unique<TreeChanges>(db);
    for (int step = 0; step < 3000 && !HasFailure(); ++step) {
        SCOPED_TRACE(step);
        const std::string id = std::to_string(ids[below(std::size(ids))]);
        const std::size_t column = below(std::size(columns));
        const std::string text = std::to_string(below(4));
        switch (below(24)) {
            case 0:
                changes->settle();
                EXPECT_EQ(db.select(select)->recordCount(), static_cast<std::int64_t>(std::size(ids)));
                EXPECT_EQ(file.rows(select), plainFile.rows(select));
                break;
            case 1:
            case 2:
                changes->commit();
                commit();
                break;
            case 3:
                changes->settle();
                db.commit();
                commit();
                EXPECT_EQ(file.rows(select), plainFile.rows(select));
                break;
            case 4: {
                // A statement of its own in between, uncommitted.
                changes->settle();
                const std::string update = "UPDATE tree SET notes = '" + text + "' WHERE id = " + id;
                db.execute(update);
                plain.run(update);
                break;
            }
            default:
                changes->set(std::stoll(id), static_cast<TreeChanges::Column>(column), text);
                plain.run(std::string("UPDATE tree SET ") + columns[column] + " = '" + text + "' WHERE id = " + id);
                EXPECT_EQ(changes->find(std::stoll(id), static_cast<TreeChanges::Column>(column)), text);
        }
    }
    changes->commit();
    changes->settle();
    plain.run("COMMIT");
    EXPECT_EQ(file.rows(select), plainFile.rows(select));
}

TEST_F(Changes, ReachTheFileAtEachCommitWhereItCannotBeLocked) {
    SQLiteDatabase db;
    db.DatabaseFile = FileReference(path("a.cax"));
    ASSERT_TRUE(db.createDatabaseFile());
    appSystem::makeRSDfields(db);
    db.execute("INSERT INTO tree(name) VALUES ('Ada')");
    TreeChanges changes(db);
    // That row is not committed yet.
    changes.set(1, TreeChanges::sex, "female");
    changes.commit();
    EXPECT_EQ(SqlFile(path("a.cax")).value("SELECT name || sex FROM tree"), "Adafemale");
    {
        SqlFile reader(path("a.cax"));
        reader.run("BEGIN; SELECT * FROM tree");
        changes.set(1, TreeChanges::ps, "Bob");
        reader.run("COMMIT");
    }
    changes.commit();
    EXPECT_EQ(SqlFile(path("a.cax")).value("SELECT ps FROM tree"), "Bob");
}

}  // namespace
