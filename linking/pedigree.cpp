#include "linking/pedigree.h"

#include <algorithm>
#include <charconv>

#include "fieldtext/textHelpers.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace linking {
namespace {

/// Rows that one statement writes: enough to share its cost, few enough to be written between two yields.
constexpr std::size_t rowsOfStatement = 256;

}  // namespace

Pedigree::Pedigree(SQLiteDatabase& db) : db_(db), ids_(db) { db_.lock(); }

void Pedigree::load() {
    if (!animals_.empty()) return;
    try {
        read();
    } catch (...) {
        clear();
        throw;
    }
}

void Pedigree::clear() {
    parentNames_ = TextPool();
    names_ = NameIndex();
    animals_.clear();
    states_.clear();
    foundByName_.clear();
    foundByAnimal_.clear();
}

void Pedigree::read() {
    auto rows = db_.prepare("SELECT id, oldId, fatherId, motherId, ps, pd, prefix, name FROM tree ORDER BY id");
    while (rows.step()) {
        const auto parent = [&](int id) {
            return Parent{ids_.addParent(rows, id), parentNames_.add(rows.text(id + 2))};
        };
        animals_.push_back({rows.integer(0), ids_.addKey(rows, 1), {parent(2), parent(3)}});
        names_.add(rows.text(6), rows.text(7));
        RuntimeBackgroundTask(yielding::character);
    }
    states_.resize(ids_.size());
    for (Animal animal = size(); animal-- > 0;) states_[animals_[animal].oldId].animal = animal;
    states_[IdTable::none].animal = noAnimal;
    foundByName_.resize(parentNames_.size(), notSearched);
    foundByAnimal_.resize(animals_.size(), notSearched);
}

Pedigree::Animal Pedigree::after(std::int64_t row) const {
    const auto isBefore = [](std::int64_t sought, const Row& each) { return sought < each.row; };
    return static_cast<Animal>(std::upper_bound(animals_.begin(), animals_.end(), row, isBefore) - animals_.begin());
}

std::string_view Pedigree::parentName(Animal animal, Side side) const {
    const Parent& parent = animals_[animal].parents[side];
    if (!states_[parent.id].namesOffspring[side]) return parentNames_.at(parent.name);
    const Animal from = namesake(parent.id);
    return from == noAnimal ? std::string_view() : names_.name(from);
}

bool Pedigree::nameOffspring(Side side, IdNumber parent) {
    if (!ids_.isKnown(parent)) return false;
    const IdNumber meant = ids_.meaning(parent);
    if (states_[meant].namesOffspring[side]) return true;
    const Animal from = namesake(meant);
    const std::string_view name = from == noAnimal ? std::string_view() : names_.name(from);
    // U+0000 ends the statement in the middle of the name, so it is refused.
    if (name.find('\0') != std::string_view::npos) return true;
    if (!isPlain(name)) return false;
    states_[meant].namesOffspring[side] = true;
    return true;
}

bool Pedigree::link(Animal animal, Side side) {
    Parent& parent = animals_[animal].parents[side];
    const Animal from = states_[parent.id].namesOffspring[side] ? namesake(parent.id) : noAnimal;
    Animal& found = from == noAnimal ? foundByName_[parent.name] : foundByAnimal_[from];
    if (found == notSearched) {
        names_.prepare();
        const std::string_view name = parentName(animal, side);
        found = text::equals(name, "unknown") ? noAnimal : names_.find(appSystem::rma(name));
    }
    if (found != noAnimal) parent.link = found;
    return found != noAnimal;
}

bool Pedigree::setSex(Side side, IdNumber parent) {
    if (!ids_.isKnown(parent)) return false;
    states_[ids_.key(ids_.meaning(parent))].sex = static_cast<std::uint8_t>(1 + side);
    return true;
}

void Pedigree::writeParents() {
    const auto newText = [this](std::int64_t row, int column) -> std::optional<std::string_view> {
        const auto animal = find(row);
        if (animal == noAnimal) return std::nullopt;
        const Side side = column % 2 == 0 ? father : mother;
        const Parent& parent = animals_[animal].parents[side];
        if (column < 2) {
            if (!states_[parent.id].namesOffspring[side]) return std::nullopt;
            return parentName(animal, side);
        }
        if (parent.link == noAnimal) return std::nullopt;
        char* const end = std::to_chars(decimal_.begin(), decimal_.end(), animals_[parent.link].row).ptr;
        return std::string_view(decimal_.data(), static_cast<std::size_t>(end - decimal_.begin()));
    };
    write({sideNames[father].nameColumn, sideNames[mother].nameColumn, sideNames[father].idColumn,
           sideNames[mother].idColumn},
          newText);
}

void Pedigree::writeSexes() {
    write({"sex"}, [this](std::int64_t row, int) -> std::optional<std::string_view> {
        const auto animal = find(row);
        const int sex = animal == noAnimal ? 0 : states_[animals_[animal].oldId].sex;
        return sex == 0 ? std::nullopt : std::optional<std::string_view>(sideNames[sex - 1].sex);
    });
    for (IdState& state : states_) state.sex = 0;
}

/// Most herds have no gaps between their rows.
Pedigree::Animal Pedigree::find(std::int64_t row) const {
    const auto isBefore = [](const Row& each, std::int64_t sought) { return each.row < sought; };
    const auto guess = static_cast<std::uint64_t>(row) - static_cast<std::uint64_t>(animals_.front().row);
    if (guess < animals_.size() && animals_[guess].row == row) return static_cast<Animal>(guess);
    const auto place = std::lower_bound(animals_.begin(), animals_.end(), row, isBefore);
    if (place == animals_.end() || place->row != row) return noAnimal;
    return static_cast<Animal>(place - animals_.begin());
}

void Pedigree::write(const std::vector<std::string>& columns, const SQLiteRowUpdates::NewText& newText) {
    auto updates = db_.updateRows("tree", columns, newText);
    for (std::size_t first = 0; first < animals_.size(); first += rowsOfStatement) {
        const std::size_t last = std::min(first + rowsOfStatement, animals_.size()) - 1;
        guarded([&] { updates.write(animals_[first].row, animals_[last].row); });
        guarded([] { RuntimeBackgroundTask(); });
    }
}

}  // namespace linking
