#include "linking/treeChanges.h"

#include <utility>

#include "platform/desktop/yield.h"
#include "platform/values/failure.h"

namespace linking {

TreeChanges::TreeChanges(SQLiteDatabase& db)
    : db_(db), updates_(db.updateRows("tree", {"ps", "pd", "fatherId", "motherId", "sex"})) {}

void TreeChanges::set(std::int64_t row, Column column, std::string_view text) {
    const SQLiteRowUpdates::Columns bit = 1U << static_cast<unsigned>(column);
    // No pass comes to a column of another; what was committed of one can't be told from what was not.
    if ((committed_ & bit) != 0) settle();
    lock();
    updates_.set(row, column, text);
    changed_ |= bit;
}

void TreeChanges::lock() {
    if (!std::exchange(tried_, true)) locked_ = db_.lock();
}

void TreeChanges::commit() {
    committed_ = changed_;
    if (locked_) return;
    settle();
    db_.commit();
}

void TreeChanges::settle() {
    // A transaction that is left open keeps no reader out.
    if (locked_ && committed_ == 0) db_.commit();
    if (committed_ != 0) {
        write(committed_);
        db_.commit();
    }
    write(SQLiteRowUpdates::allColumns);
    changed_ = committed_ = 0;
    tried_ = locked_ = false;
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void TreeChanges::write(SQLiteRowUpdates::Columns columns) {
    for (bool more = true; more;) {
        // A refused statement is not noticed.
        guarded([&] { more = updates_.writeNext(columns); });
        try {
            RuntimeBackgroundTask();
        } catch (...) {
            failure_ = std::current_exception();
        }
    }
}

}  // namespace linking
