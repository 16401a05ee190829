#include "linking/quickStore.h"

#include <string>

#include "platform/database/sqliteDatabase.h"
#include "platform/values/failure.h"
#include "stores/rsdSchema.h"

namespace linking {
namespace {

/// What the file says of `tree` and all that hangs on it.
std::string layoutOf(SQLiteDatabase& db) {
    std::string layout;
    auto parts = db.prepare("SELECT type, sql FROM sqlite_master WHERE lower(tbl_name) = 'tree'");
    while (parts.step()) layout.append(parts.text(0)).append(" ").append(parts.text(1)).append("\n");
    return layout;
}

/// Asked of a database in memory that is laid out like a new file.
const std::string& ownLayout() {
    static const std::string layout = [] {
        SQLiteDatabase memory;
        memory.DatabaseFile = FileReference(":memory:");
        memory.createDatabaseFile();
        appSystem::makeRSDfields(memory);
        return layoutOf(memory);
    }();
    return layout;
}

}  // namespace

SQLiteDatabase* quickStore(Database& db) {
    auto* store = dynamic_cast<SQLiteDatabase*>(&db);
    bool own = false;
    guarded([&] { own = store != nullptr && layoutOf(*store) == ownLayout(); });
    return own ? store : nullptr;
}

}  // namespace linking
