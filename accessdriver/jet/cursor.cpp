#include "accessdriver/jet/cursor.h"

#include "accessdriver/jet/error.h"
#include "accessdriver/jet/records/row.h"
#include "accessdriver/jet/storage/sharedFile.h"
#include "accessdriver/jet/tables/tableStore.h"

namespace jet {

using Lock = std::lock_guard<std::mutex>;

Cursor::Cursor(SharedFile& file, const TableStore& table)
    : file_(file), table_(table), stored_(std::make_unique<StoredRow>()) {}

Cursor::~Cursor() = default;

bool Cursor::next() {
    const Lock lock(file_.mutex);
    for (auto at = table_.firstFrom(next_); at; at = table_.firstFrom(next_)) {
        if (load(*at)) return true;
    }
    return false;
}

bool Cursor::moveTo(RowId row) {
    const Lock lock(file_.mutex);
    return load(row);
}

Value Cursor::value(std::size_t column) const {
    const Lock lock(file_.mutex);
    if (changes_ != table_.pages().changes() && !reload()) {
        throw Error(Fault::corrupt, "The row that was to be read is no longer there.");
    }
    if (column >= table_.definition().columns.size()) {
        throw Error(Fault::badValue, "The table " + table_.definition().name + " has no such column.");
    }
    return table_.decode(stored_->field(column), column);
}

bool Cursor::load(RowId row) {
    row_ = row;
    next_ = after(row);
    return reload();
}

bool Cursor::reload() const {
    changes_ = table_.pages().changes();
    if (!table_.read(row_, bytes_)) return false;
    *stored_ = StoredRow(table_.definition(), bytes_, row_);
    return true;
}

}  // namespace jet
