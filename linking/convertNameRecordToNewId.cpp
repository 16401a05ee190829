#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "fieldtext/textHelpers.h"
#include "linking/linking.h"
#include "linking/progress.h"
#include "linking/quickTree.h"
#include "platform/database/database.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "shell/windows/frmWait.h"

namespace appSystem {
namespace {

using linking::QuickTree;
using linking::TreeChanges;

/// The id of the oldest animal whose full name contains the text; empty if there is none.
std::string findAnimal(Database& db, const std::string& name) {
    const auto found = db.select(
        "Select id from tree Where trim(coalesce(prefix, '' ) || ' ' || coalesce(name, '')) LIKE  '%" + name + "%'");
    if (!found || found->atEnd()) return {};
    return std::string(found->requiredField("id").text());
}

bool isKnown(std::string_view name) { return !name.empty() && !text::equals(name, "unknown"); }

/// Tells of the links made so far.
class Progress {
  public:
    Progress(const std::string& tableName, const std::string& idColumn, double total)
        : text_(" " + idColumn + " records for Table " + text::upper(tableName)), total_(total) {}

    void link() {
        ++links_;
        linking::showBar(total_);
        if (links_ % 20 == 0) frmWait().report("Linked " + std::to_string(links_) + text_, links_, total_);
    }

  private:
    std::string text_;
    double total_;
    int links_ = 0;
};

void linkLiterally(Database& db, const std::string& tableName, const std::string& nameColumn,
                   const std::string& idColumn) {
    const auto records = db.select("Select * From " + tableName + " Where " + nameColumn + " <> ''");
    if (!records || records->recordCount() <= 0) return;
    Progress progress(tableName, idColumn, static_cast<double>(records->recordCount()));
    while (!records->atEnd()) {
        records->edit();
        const std::string name(records->requiredField(nameColumn).text());
        const std::string id = isKnown(name) ? findAnimal(db, rma(name)) : std::string();
        if (!id.empty()) {
            records->requiredField(idColumn).setText(id);
            records->update();
            progress.link();
        }
        records->moveNext();
        RuntimeBackgroundTask();
    }
    db.commit();
}

/// Of the two pairs whose change leaves the names as they are; nothing for any other.
struct Parent {
    TreeChanges::Column name;
    TreeChanges::Column id;
};
std::optional<Parent> parentOf(const std::string& tableName, const std::string& nameColumn,
                               const std::string& idColumn) {
    if (tableName != "tree") return std::nullopt;
    if (nameColumn == "ps" && idColumn == "fatherId") return Parent{TreeChanges::ps, TreeChanges::fatherId};
    if (nameColumn == "pd" && idColumn == "motherId") return Parent{TreeChanges::pd, TreeChanges::motherId};
    return std::nullopt;
}

/// The rows whose name column is not empty, as an earlier pass may have changed it.
class NamedRows {
  public:
    NamedRows(QuickTree& tree, const std::string& nameColumn, TreeChanges::Column column)
        : tree_(tree), column_(column), rows_(tree.db.prepare("SELECT id, " + nameColumn + " FROM tree")) {}

    /// False at the end.
    bool next() {
        while (rows_.step()) {
            row = rows_.integer(0);
            const auto changed = tree_.changes.find(row, column_);
            name = changed ? *changed : rows_.text(1);
            if (!name.empty()) return true;
            RuntimeBackgroundTask(yielding::character);
        }
        return false;
    }

    void restart() { rows_.reset(); }

    std::int64_t row = 0;
    std::string_view name;

  private:
    QuickTree& tree_;
    TreeChanges::Column column_;
    SQLiteStatement rows_;
};

void linkQuickly(QuickTree& tree, Parent parent, const std::string& nameColumn, const std::string& idColumn) {
    NamedRows rows(tree, nameColumn, parent.name);
    double total = 0;
    for (; rows.next(); ++total) RuntimeBackgroundTask(yielding::character);
    if (total == 0) return;
    Progress progress("tree", idColumn, total);
    linking::AnimalSearch& search = tree.search();
    try {
        rows.restart();
        while (rows.next()) {
            const std::string id = isKnown(rows.name) ? search.find(rma(rows.name)) : std::string();
            if (!id.empty()) {
                tree.changes.set(rows.row, parent.id, id);
                progress.link();
            }
            RuntimeBackgroundTask();
        }
    } catch (...) {
        // Links made so far stay on the connection, for whoever commits next.
        tree.changes.settle();
        throw;
    }
    tree.changes.commit();
}

}  // namespace

void convertNameRecordToNewId(Database& db, const std::string& tableName, const std::string& nameColumn,
                              const std::string& idColumn, QuickTree* shared) {
    guarded([&] {
        const auto parent = parentOf(tableName, nameColumn, idColumn);
        const auto own = shared != nullptr || !parent ? nullptr : linking::quickTree(db);
        QuickTree* tree = shared != nullptr ? shared : own.get();
        if (tree == nullptr || !parent) {
            if (tree != nullptr) tree->changes.settle();
            return linkLiterally(db, tableName, nameColumn, idColumn);
        }
        linkQuickly(*tree, *parent, nameColumn, idColumn);
        if (own) own->changes.settle();
    });
    frmWait().close();
}

void linkAnimals(Database& db) {
    std::unique_ptr<QuickTree> tree;
    guarded([&] { tree = linking::quickTree(db); });
    convertIdRecordToName(db, "rsd", tree.get());
    convertNameRecordToNewId(db, "tree", "ps", "fatherId", tree.get());
    convertNameRecordToNewId(db, "tree", "pd", "motherId", tree.get());
    if (tree) guarded([&] { tree->changes.settle(); });
}

}  // namespace appSystem
