#include "stores/animalNames.h"

#include <charconv>

#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "stores/rsdAccess.h"

namespace stores {

std::optional<std::int64_t> plainNumber(std::string_view id) {
    std::int64_t number = 0;
    const auto [end, failed] = std::from_chars(id.data(), id.data() + id.size(), number);
    const bool isNumber = failed == std::errc() && end == id.data() + id.size() && id.front() != '-';
    return isNumber ? std::optional(number) : std::nullopt;
}

bool AnimalNames::read() {
    auto rows = db_->prepare("SELECT id, name FROM tree");
    while (rows.step()) {
        const std::string_view name = rows.text(1);
        const bool plain = rows.type(0) == SQLiteStatement::Type::integer;
        if (!plain || !places_.try_emplace(rows.integer(0), names_.size(), name.size()).second) return false;
        names_ += name;
        RuntimeBackgroundTask(yielding::character);
    }
    return true;
}

std::string AnimalNames::of(SQLiteDatabase* db, std::string_view id) {
    // Without one there is no statement; a third of a herd may have no father.
    if (id.empty()) return {};
    const auto number = plainNumber(id);
    if (!number || db == nullptr || db != db_.get() || !db->isOpen()) return appSystem::getNameFromId(db, id);
    if (!std::exchange(tried_, true)) guarded([&] { known_ = read(); });
    // Closed on the way, maybe.
    if (!known_ || !db->isOpen()) return appSystem::getNameFromId(db, id);
    const auto place = places_.find(*number);
    return place == places_.end() ? std::string() : names_.substr(place->second.first, place->second.second);
}

}  // namespace stores
