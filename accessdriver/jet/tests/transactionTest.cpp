#include <cerrno>
#include <fstream>
#include <map>
#include <random>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/making/cavTables.h"
#include "accessdriver/jet/storage/sharedFile.h"
#include "accessdriver/jet/tests/fixture.h"
#include "accessdriver/jet/tests/systemCalls.h"

namespace jet::test {
namespace {

// The cache holds so few pages that larger transactions spill.
class TransactionTest : public FileTest {
  protected:
    ~TransactionTest() override {
        setWriteHook({});
        SharedFile::setCacheCapacity(Pager::defaultCapacity);
    }
    const std::string path = folder.file("made.mdb");
};

// A table as it should be: rows by their identity.
using Model = std::map<RowId, Row>;

Model modelOf(Database& database, const std::string& table) {
    const TableInfo& info = database.table(table);
    Model model;
    for (auto cursor = database.scan(info); cursor->next();) {
        Row row;
        for (std::size_t i = 0; i < info.columns.size(); ++i) row.push_back(cursor->value(i));
        model[cursor->rowId()] = std::move(row);
    }
    return model;
}

// Random work on one connection, with a second one that must see commits and nothing else.
class RandomWork {
  public:
    RandomWork(const std::string& path, unsigned seed)
        : random_(seed), one_(Database::open(path, "")), other_(Database::open(path, "")) {}

    void step() {
        const unsigned dice = random_() % 100;
        if (dice < 50) {
            insertRow();
        } else if (dice < 88) {
            updateRow();
        } else if (dice < 92) {
            refuse();
        } else if (dice < 97) {
            one_->commit();
            committed_ = current_;
        } else {
            one_->rollback();
            current_ = committed_;
        }
    }

    void expectAgreement() {
        EXPECT_EQ(modelOf(*one_, "everything"), current_);
        EXPECT_EQ(modelOf(*other_, "everything"), committed_);
        EXPECT_EQ(findings(*one_), "");
        EXPECT_EQ(findings(*other_), "");
    }

  private:
    Row randomRow() {
        Row row = everyTypeRow(static_cast<int>(random_() % 10000));
        if (random_() % 8 == 0) row[11] = longText(random_() % 9000, static_cast<int>(random_() % 100));
        return row;
    }

    void insertRow() {
        Row row = randomRow();
        const RowId id = insert(*one_, "everything", row);
        row[0] = one_->fetch(one_->table("everything"), id)->value(0);
        current_[id] = std::move(row);
    }

    void updateRow() {
        if (current_.empty()) return;
        auto at = current_.begin();
        std::advance(at, random_() % current_.size());
        const Row fresh = randomRow();
        std::vector<Assignment> changes;
        for (std::size_t i = 1; i < fresh.size(); ++i) {
            if (random_() % 3 != 0) continue;
            changes.push_back({i, fresh[i]});
            at->second[i] = fresh[i];
        }
        update(*one_, one_->table("everything"), at->first, changes);
    }

    // The last value is refused after everything else, a long value too, has been written.
    void refuse() {
        if (current_.empty()) return;
        Row row = randomRow();
        row[0] = current_.begin()->second[0];
        row[13] = Bytes(20000);
        EXPECT_EQ(refusalOf([&] { insert(*one_, "everything", row); }).fault, Fault::duplicateKey);
        EXPECT_EQ(refusalOf([&] { insert(*other_, "everything", row); }).fault == Fault::busy,
                  current_ != committed_ || busy());
    }

    // Whether the first connection has changes, even such as left everything as it was.
    bool busy() {
        const TableInfo& info = other_->table("everything");
        const Assignment nothing[] = {{99, Value{}}};
        return refusalOf([&] { other_->insert(info, nothing); }).fault == Fault::busy;
    }

    std::mt19937 random_;
    std::unique_ptr<Database> one_, other_;
    Model current_, committed_;
};

TEST_F(TransactionTest, RandomWorkAgreesWithAModel) {
    for (const unsigned seed : {1U, 2U, 3U}) {
        // 60 pages: work on this table spills all the time.
        SharedFile::setCacheCapacity(seed == 1 ? Pager::defaultCapacity : 60);
        makeFile(path, {"", {everyType()}});
        RandomWork work(path, seed);
        for (int i = 0; i < 800; ++i) {
            work.step();
            if (i % 100 == 99) work.expectAgreement();
            if (HasFailure()) return;
        }
    }
}

TEST_F(TransactionTest, OneWriterAtATime) {
    makeCavFile(path, CavColumns::typed, "");
    const auto one = Database::open(path, "");
    const auto other = Database::open(path, "");
    const std::uint64_t before = other->foreignChanges(), own = one->foreignChanges();
    insert(*one, "contacts", {Value{}, std::string("Ann")});
    EXPECT_EQ(refusalOf([&] { insert(*other, "tree", {Value{}, std::string("Bo")}); }).fault, Fault::busy);
    EXPECT_EQ(other->foreignChanges(), before);
    one->commit();
    EXPECT_NE(other->foreignChanges(), before);
    EXPECT_EQ(one->foreignChanges(), own);
    insert(*other, "tree", {Value{}, std::string("Bo")});
    other->rollback();
    EXPECT_EQ(one->foreignChanges(), own);
    // A first statement that is refused opens no transaction.
    const Assignment nothing[] = {{99, Value{}}};
    EXPECT_EQ(refusalOf([&] { one->insert(one->table("tree"), nothing); }).fault, Fault::badValue);
    insert(*other, "tree", {Value{}, std::string("Bo")});
    EXPECT_EQ(refusalOf([&] { one->insert(one->table("tree"), nothing); }).fault, Fault::busy);
    EXPECT_EQ(rowsOf(*one, "tree").size(), 0U);
}

TEST_F(TransactionTest, AConnectionThatGoesTakesItsChangesAlong) {
    makeCavFile(path, CavColumns::typed, "");
    const std::string before = readWhole(path);
    {
        const auto one = Database::open(path, "");
        SharedFile::setCacheCapacity(50);
        for (int i = 0; i < 300; ++i) insert(*one, "tree", {Value{}, longText(200, i)});
    }
    EXPECT_EQ(readWhole(path), before);
    EXPECT_FALSE(std::filesystem::exists(path + "-jetjournal"));
    {
        const auto one = Database::open(path, "");
        for (int i = 0; i < 3000; ++i) insert(*one, "tree", {Value{}, longText(200, i)});
        EXPECT_GT(std::filesystem::file_size(path), before.size());
        EXPECT_EQ(rowsOf(*Database::open(path, ""), "tree").size(), 0U);
        one->rollback();
        EXPECT_EQ(rowsOf(*one, "tree").size(), 0U);
    }
    EXPECT_EQ(readWhole(path), before);
}

TEST_F(TransactionTest, CursorsSeeTheRowAsItIsNow) {
    makeCavFile(path, CavColumns::typed, "");
    const auto database = Database::open(path, "");
    const TableInfo& tree = database->table("tree");
    for (int i = 0; i < 50; ++i) insert(*database, "tree", {Value{}, std::string("old")});
    int met = 0;
    for (auto cursor = database->scan(tree); cursor->next(); ++met) {
        const std::vector<Assignment> change = {{1, std::string("new")}, {16, longText(3000, met)}};
        update(*database, tree, cursor->rowId(), change);
        EXPECT_EQ(cursor->value(1), Value(std::string("new")));
        EXPECT_EQ(cursor->value(16), Value(longText(3000, met)));
    }
    EXPECT_EQ(met, 50);
    const auto cursor = database->scan(tree);
    ASSERT_TRUE(cursor->next());
    database->rollback();
    EXPECT_EQ(refusalOf([&] { (void)cursor->value(1); }).fault, Fault::corrupt);
    EXPECT_FALSE(cursor->next());
}

// All rows of an update or none, also in a transaction that goes on; in a small cache most pages leave it before the
// statement is undone.
TEST_F(TransactionTest, AnUpdateThatFailsChangesNoRow) {
    for (const std::size_t cache : {Pager::defaultCapacity, std::size_t{60}}) {
        SharedFile::setCacheCapacity(cache);
        makeFile(path, {"", {everyType()}});
        const auto database = Database::open(path, "");
        std::vector<RowId> rows;
        for (int n = 0; n < 150; ++n) rows.push_back(insert(*database, "everything", everyTypeRow(n)));
        database->commit();
        for (const bool open : {false, true}) {
            if (open) insert(*database, "everything", everyTypeRow(1000));
            const Model before = modelOf(*database, "everything");
            std::vector<RowUpdate> updates;
            for (const RowId row : rows) updates.push_back({row, {{9, longText(90, 1)}, {11, longText(5000, 2)}}});
            updates.push_back({rows.front(), {{0, std::int32_t{2}}}});
            EXPECT_EQ(refusalOf([&] { database->update(database->table("everything"), updates); }).fault,
                      Fault::duplicateKey);
            const std::vector<Assignment> same = {{0, std::int32_t{5000}}};
            EXPECT_EQ(refusalOf([&] { database->update(database->table("everything"), rows, same); }).fault,
                      Fault::duplicateKey);
            EXPECT_EQ(modelOf(*database, "everything"), before) << cache << open;
            EXPECT_EQ(findings(*database), "");
        }
        database->rollback();
        EXPECT_EQ(rowsOf(*database, "everything").size(), 150U);
    }
}

#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
// Undoing a statement takes the originals, which lie in the journal, and no copy of every page in memory.
TEST_F(TransactionTest, ALargeDeletionNeedsLittleMemory) {
    makeFile(path, {"", {{"t", {{"blob", ColumnType::ole, 0, false, false}}, {}}}});
    SharedFile::setCacheCapacity(500);
    const auto database = Database::open(path, "");
    std::vector<RowId> rows;
    for (int n = 0; n < 600; ++n) rows.push_back(insert(*database, "t", {Bytes(100000)}));
    database->commit();
    for (const bool open : {false, true}) {
        if (open) insert(*database, "t", {Bytes(1)});
        const auto peakMiB = [] {
            std::ifstream in("/proc/self/status");
            std::string word;
            while (in >> word && word != "VmHWM:") continue;
            std::size_t kibibytes = 0;
            in >> kibibytes;
            return kibibytes >> 10;
        };
        std::ofstream("/proc/self/clear_refs") << "5";  // the peak begins anew
        const std::size_t before = peakMiB();
        database->remove(database->table("t"), rows);
        EXPECT_LT(peakMiB(), before + 20) << "of 60 MiB that are deleted";
        database->rollback();
    }
    EXPECT_EQ(findings(*database), "");
}
#endif

// Writing fails at the n-th call for every n: what was refused is not there, what was committed is.
TEST_F(TransactionTest, AFullDiskRefusesAndKeepsTheTransaction) {
    if (!replacesSystemCalls) GTEST_SKIP() << "no write can be made to fail here";
    for (int failing = 1; failing < 60; ++failing) {
        SharedFile::setCacheCapacity(60);
        makeFile(path, {"", {everyType()}});
        const auto database = Database::open(path, "");
        Model model;
        const auto add = [&](int n) {
            Row row = everyTypeRow(n);
            const RowId id = insert(*database, "everything", row);
            row[0] = database->fetch(database->table("everything"), id)->value(0);
            model[id] = std::move(row);
        };
        for (int n = 0; n < 40; ++n) add(n);
        database->commit();
        int calls = 0;
        setWriteHook(
            [&](int, off_t, std::span<const iovec>) { return ++calls >= failing && calls < failing + 3 ? ENOSPC : 0; });
        int refused = 0;
        for (int n = 0; n < 150; ++n) {
            if (refusalOf([&] { add(n); }).fault) ++refused;
        }
        const Refusal commit = refusalOf([&] { database->commit(); });
        setWriteHook({});
        EXPECT_EQ(modelOf(*database, "everything"), model) << failing;
        if (commit.fault) {
            EXPECT_EQ(*commit.fault, Fault::io);
            database->commit();
        }
        EXPECT_EQ(findings(*database), "") << failing << ", refused " << refused;
        EXPECT_EQ(modelOf(*Database::open(path, ""), "everything"), model) << failing;
    }
}

}  // namespace
}  // namespace jet::test
