#include "stores/animalNames.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "stores/rsdAccess.h"

namespace stores {
namespace {

/// Returns the number of an id of digits alone, which means the same in a comparison as in the text of a statement.
std::optional<std::int64_t> plainNumber(std::string_view id) {
    std::int64_t number = 0;
    const auto [end, failed] = std::from_chars(id.data(), id.data() + id.size(), number);
    const bool isNumber = failed == std::errc() && end == id.data() + id.size() && id.front() != '-';
    return isNumber ? std::optional(number) : std::nullopt;
}

}  // namespace

/// Returns whether the ids are as they have to be.
bool AnimalNames::read() {
    auto rows = db_->prepare("SELECT id, name FROM tree");
    while (rows.step()) {
        const bool isPlain = rows.type(0) == SQLiteStatement::Type::integer;
        const std::int64_t id = rows.integer(0);
        if (!isPlain || (!ids_.empty() && id <= ids_.back())) return false;
        names_ += rows.text(1);
        ids_.push_back(id);
        ends_.push_back(names_.size());
        RuntimeBackgroundTask(yielding::character);
    }
    return true;
}

std::string_view AnimalNames::find(std::int64_t id) const {
    if (ids_.empty() || id < ids_.front()) return {};
    // Without gaps between the ids the place is known; most herds have few.
    const auto first = static_cast<std::uint64_t>(ids_.front());
    const auto most = std::min<std::uint64_t>(static_cast<std::uint64_t>(id) - first, ids_.size() - 1);
    const auto guess = ids_.begin() + static_cast<std::ptrdiff_t>(most);
    const auto place = *guess == id ? guess : std::lower_bound(ids_.begin(), guess, id);
    if (place == ids_.end() || *place != id) return {};
    const auto number = static_cast<std::size_t>(place - ids_.begin());
    const std::size_t begin = number == 0 ? 0 : ends_[number - 1];
    return std::string_view(names_).substr(begin, ends_[number] - begin);
}

std::string AnimalNames::of(SQLiteDatabase* db, std::string_view id) {
    // A statement without an id is refused; a third of a herd may have no father.
    if (id.empty()) return {};
    const auto number = plainNumber(id);
    if (!number || db == nullptr || db != db_.get() || !db->isOpen()) return appSystem::getNameFromId(db, id);
    if (!std::exchange(tried_, true)) guarded([&] { known_ = read(); });
    // The connection may have been closed while the names were read.
    if (!known_ || !db->isOpen()) return appSystem::getNameFromId(db, id);
    return std::string(find(*number));
}

}  // namespace stores
