#include "accessdriver/jet/tables/tableStore.h"

#include <algorithm>
#include <limits>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/indexes/indexTree.h"
#include "accessdriver/jet/records/longValue.h"
#include "accessdriver/jet/records/tableDefinitionFormat.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/records/valueCodec.h"
#include "accessdriver/jet/storage/allocation.h"
#include "accessdriver/jet/storage/usageMap.h"

namespace jet {

namespace {

// Pages of the free-space map that are looked at for one row.
constexpr int maxTries = 8;

}  // namespace

struct TableStore::Draft {
    explicit Draft(std::size_t columns) : fields(columns), changed(columns), isLong(columns) {
        pieces.assign(columns, {});
    }

    std::vector<Field> fields;
    std::vector<bool> changed;
    std::vector<bool> isLong;                       // changed long values whose bytes are not stored yet
    std::vector<std::vector<std::uint8_t>> pieces;  // the stored form of changed columns
    std::vector<std::uint8_t> row;
};

// --- values

void TableStore::requireWritable(std::span<const Assignment> values) const {
    if (!table_.notWritable.empty()) throw Error(Fault::notWritable, table_.notWritable);
    for (const Assignment& value : values) {
        if (value.column >= table_.columns.size()) {
            throw Error(Fault::badValue,
                        "The table " + table_.name + " has no column number " + std::to_string(value.column + 1) + ".");
        }
    }
}

void TableStore::applyProperties(const std::vector<PropertyList>& lists) {
    rules_.clear();
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
        const std::string name = foldCase(table_.columns[i].name);
        const auto list = std::find_if(lists.begin(), lists.end(),
                                       [&](const PropertyList& each) { return foldCase(each.owner) == name; });
        rules_.push_back(list == lists.end() ? ColumnRules() : ColumnRules(table_.columns[i], list->properties));
        if (list == lists.end()) continue;
        table_.info.columns[i].required |= rules_[i].required();
        table_.info.columns[i].defaultValue = textOf(find(list->properties, "DefaultValue"));
        table_.info.columns[i].validationRule = textOf(find(list->properties, "ValidationRule"));
    }
    if (lists.empty()) rules_.clear();
}

// The values of a new row, with Null for the columns that have none and need one.
std::vector<Assignment> TableStore::withRequired(std::span<const Assignment> values) const {
    std::vector<Assignment> all(values.begin(), values.end());
    std::vector<bool> given(table_.columns.size());
    for (const Assignment& value : values) given[value.column] = true;
    for (std::size_t i = 0; i < rules_.size(); ++i) {
        if (!given[i] && rules_[i].required()) all.push_back({i, {}});
    }
    return all;
}

void TableStore::encodeAssignments(std::span<const Assignment> values, Draft& draft) const {
    for (const Assignment& assignment : values) {
        const std::size_t i = assignment.column;
        const Column& column = table_.columns[i];
        if (!rules_.empty()) rules_[i].require(table_.name, column, assignment.value);
        draft.changed[i] = true;
        draft.isLong[i] = false;
        std::vector<std::uint8_t>& bytes = draft.pieces[i];
        bytes.clear();
        if (std::holds_alternative<std::monostate>(assignment.value)) {
            draft.fields[i] = {};
        } else if (column.type == ColumnType::boolean) {
            const bool* yes = std::get_if<bool>(&assignment.value);
            if (!yes) {
                throw Error(Fault::badValue, "The value for the column " + column.name + " of the table " +
                                                 table_.name + " is neither yes nor no.");
            }
            draft.fields[i] = {*yes, {}};
        } else {
            encodeValue(table_, column, assignment.value, bytes);
            draft.isLong[i] = column.longValue();
            draft.fields[i] = {true, bytes};
        }
    }
}

void TableStore::storeLongValues(Draft& draft) {
    for (std::size_t i = 0; i < draft.fields.size(); ++i) {
        if (!draft.isLong[i]) continue;
        std::vector<std::uint8_t> definition;
        writeLongValue(pages_, table_.columns[i], draft.pieces[i], true, definition);
        draft.pieces[i] = std::move(definition);
        draft.fields[i].bytes = draft.pieces[i];
    }
}

// The next number for an AutoNumber without a value; a greater one that was given becomes the last one.
void TableStore::fillAutoNumber(Draft& draft) {
    for (std::size_t i = 0; i < draft.fields.size(); ++i) {
        if (!table_.columns[i].autoNumber) continue;
        PageRef definition = pages_.write(table_.page);
        const auto last = static_cast<std::int32_t>(getU32(definition.bytes(), definitionFormat::autoNumberAt));
        Field& field = draft.fields[i];
        std::int32_t number = 0;
        if (field.present) {
            number = static_cast<std::int32_t>(getU32(field.bytes, 0));
            if (number <= last) continue;
        } else {
            if (last == std::numeric_limits<std::int32_t>::max()) {
                throw Error(Fault::badValue, "The table " + table_.name + " has no more numbers to give out.");
            }
            number = last + 1;
            draft.pieces[i].assign(4, 0);
            putU32(draft.pieces[i], 0, static_cast<std::uint32_t>(number));
            field = {true, draft.pieces[i]};
        }
        putU32(definition.writable(), definitionFormat::autoNumberAt, static_cast<std::uint32_t>(number));
    }
}

// Encodes the row; if it is too large, inline long values move out of it.
void TableStore::buildRow(Draft& draft) {
    encodeRow(table_, draft.fields, draft.row);
    for (std::size_t i = 0; i < draft.fields.size() && draft.row.size() > maxRowSize; ++i) {
        if (!table_.columns[i].longValue() || !draft.fields[i].present) continue;
        const ByteSpan inlineValue = inlineLongValue(draft.fields[i].bytes);
        if (inlineValue.empty()) continue;
        std::vector<std::uint8_t> definition;
        writeLongValue(pages_, table_.columns[i], inlineValue, false, definition);
        draft.pieces[i] = std::move(definition);
        draft.fields[i].bytes = draft.pieces[i];
        encodeRow(table_, draft.fields, draft.row);
    }
    if (draft.row.size() > maxRowSize) {
        throw Error(Fault::tooLong, "The row is too long for the table " + table_.name + ": its values take " +
                                        std::to_string(draft.row.size()) + " bytes, but only " +
                                        std::to_string(maxRowSize) + " fit.");
    }
}

void TableStore::requireNotNull(const Index& index, const IndexKey& key) const {
    if (!index.required || !key.anyNull) return;
    std::string columns;
    for (const Index::Part& part : index.parts) {
        columns += (columns.empty() ? "" : ", ") + table_.columns[part.column].name;
    }
    throw Error(Fault::nullNotAllowed, "The table " + table_.name + " needs a value in " + columns + ".");
}

// --- writing

RowId TableStore::insert(std::span<const Assignment> values) {
    requireWritable(values);
    Draft draft(table_.columns.size());
    rules_.empty() ? encodeAssignments(values, draft) : encodeAssignments(withRequired(values), draft);
    fillAutoNumber(draft);
    storeLongValues(draft);
    buildRow(draft);
    const RowId row = place(draft.row, 0);
    IndexKey key;
    for (std::size_t i = 0; i < table_.indexes.size(); ++i) {
        makeIndexKey(pages_, table_, table_.indexes[i], draft.fields, key);
        requireNotNull(table_.indexes[i], key);
        addKey(i, key, row);
    }
    PageRef definition = pages_.write(table_.page);
    const std::uint32_t count = getU32(definition.bytes(), definitionFormat::rowCountAt);
    putU32(definition.writable(), definitionFormat::rowCountAt, count + 1);
    return row;
}

void TableStore::addKey(std::size_t index, const IndexKey& key, RowId row) {
    const Index& info = table_.indexes[index];
    if (!entersIndex(info, key)) return;
    const bool isNew = IndexTree(pages_, table_, info).insert(key.bytes, row, mustBeUnique(info, key));
    if (!isNew) return;
    PageRef definition = pages_.write(table_.page);
    putU32(definition.writable(), info.counterAt, getU32(definition.bytes(), info.counterAt) + 1);
}

void TableStore::update(RowId row, std::span<const Assignment> values) {
    requireWritable(values);
    std::vector<std::uint8_t> old;
    if (!read(row, old))
        failCorrupt(rowName(row) + " of the table " + table_.name + " is to be changed, but is not there");
    std::vector<Field> oldFields;
    decodeRow(table_, old, row, oldFields);

    Draft draft(table_.columns.size());
    draft.fields = oldFields;
    encodeAssignments(values, draft);
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
        if (table_.columns[i].autoNumber && draft.changed[i] && !draft.fields[i].present) {
            throw Error(Fault::nullNotAllowed,
                        "The table " + table_.name + " needs a value in " + table_.columns[i].name + ".");
        }
        if (table_.columns[i].autoNumber && draft.changed[i]) fillAutoNumber(draft);
    }
    // The keys of the old row are made before its long values go.
    const auto touched = [&](const Index& index) {
        return std::any_of(index.parts.begin(), index.parts.end(),
                           [&](const Index::Part& part) { return draft.changed[part.column]; });
    };
    std::vector<IndexKey> oldKeys(table_.indexes.size());
    for (std::size_t i = 0; i < table_.indexes.size(); ++i) {
        if (touched(table_.indexes[i])) makeIndexKey(pages_, table_, table_.indexes[i], oldFields, oldKeys[i]);
    }
    storeLongValues(draft);
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
        if (draft.changed[i] && table_.columns[i].longValue() && oldFields[i].present) {
            releaseLongValue(pages_, table_.columns[i], oldFields[i].bytes);
        }
    }
    buildRow(draft);
    replaceBody(row, draft.row);

    IndexKey key;
    for (std::size_t i = 0; i < table_.indexes.size(); ++i) {
        const Index& index = table_.indexes[i];
        if (!touched(index)) continue;
        makeIndexKey(pages_, table_, index, draft.fields, key);
        requireNotNull(index, key);
        if (key.bytes == oldKeys[i].bytes) continue;
        if (entersIndex(index, oldKeys[i])) IndexTree(pages_, table_, index).remove(oldKeys[i].bytes, row);
        addKey(i, key, row);
    }
}

void TableStore::remove(RowId row) {
    requireWritable({});
    std::vector<std::uint8_t> old;
    if (!read(row, old)) return;
    std::vector<Field> fields;
    decodeRow(table_, old, row, fields);
    // The keys are made before the long values go. The room of row and values is released before the indexes change,
    // which in a full file may need it.
    std::vector<IndexKey> keys(table_.indexes.size());
    for (std::size_t i = 0; i < keys.size(); ++i) makeIndexKey(pages_, table_, table_.indexes[i], fields, keys[i]);
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
        if (table_.columns[i].longValue() && fields[i].present) {
            releaseLongValue(pages_, table_.columns[i], fields[i].bytes);
        }
    }
    const RowId body = bodyOf(row);
    removeSlot(row);
    if (body != row) removeSlot(body);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const Index& index = table_.indexes[i];
        if (entersIndex(index, keys[i])) IndexTree(pages_, table_, index).remove(keys[i].bytes, row);
    }
    PageRef definition = pages_.write(table_.page);
    const std::uint32_t count = getU32(definition.bytes(), definitionFormat::rowCountAt);
    if (count > 0) putU32(definition.writable(), definitionFormat::rowCountAt, count - 1);
}

// Deletes the bytes of a row at one place. A page without rows is released.
void TableStore::removeSlot(RowId place) {
    PageRef page = pages_.write(place.page);
    dataPage::remove(page, place.slot);
    UsageMap owned(pages_, table_.owned), free(pages_, table_.free);
    if (!dataPage::isEmpty(page)) return free.addHint(place.page);
    if (!owned.contains(place.page)) return;
    owned.remove(place.page);
    free.remove(place.page);
    releasePage(pages_, place.page);
}

// Gives a row new bytes without a change of its identity: in its place, grown or shrunk there, or moved away.
void TableStore::replaceBody(RowId row, ByteSpan bytes) {
    const RowId body = bodyOf(row);
    PageRef page = pages_.write(body.page);
    if (dataPage::resize(page, body.slot, bytes.size())) {
        const dataPage::Slot slot = dataPage::slot(page, body.slot);
        std::copy(bytes.begin(), bytes.end(), page.writable().begin() + static_cast<std::ptrdiff_t>(slot.start));
        return;
    }
    const RowId target = place(bytes, dataPage::skipFlag);
    if (body != row) removeSlot(body);
    PageRef original = pages_.write(row.page);
    if (!dataPage::resize(original, row.slot, rowPointerSize)) {
        failCorrupt(rowName(row) + " of the table " + table_.name + " has no room for the pointer to its new place");
    }
    const dataPage::Slot slot = dataPage::slot(original, row.slot);
    putRowPointer(original.writable(), slot.start, {target.slot, target.page});
    dataPage::setFlags(original, row.slot, dataPage::pointerFlag);
}

// --- room

RowId TableStore::place(ByteSpan row, std::uint16_t flags) {
    PageRef page = pageWithRoom(row.size());
    roomyPage_ = page.number();
    return {page.number(), dataPage::append(page, row, flags)};
}

PageRef TableStore::pageWithRoom(std::size_t size) {
    const auto suits = [&](std::uint32_t number) {
        if (number >= pages_.count()) return false;
        const PageRef page = pages_.read(number);
        return dataPage::belongsTo(page.bytes(), table_.page) && dataPage::hasRoom(page, size);
    };
    if (roomyPage_ != 0 && suits(roomyPage_)) return pages_.write(roomyPage_);
    UsageMap free(pages_, table_.free);
    std::uint32_t from = 0;
    for (int i = 0; i < maxTries; ++i) {
        const auto candidate = free.next(from);
        if (!candidate) break;
        if (suits(*candidate) && UsageMap(pages_, table_.owned).contains(*candidate)) return pages_.write(*candidate);
        // Too full for this row: taken out, so that a growing table does not look at all its pages again and again.
        free.remove(*candidate);
        from = *candidate + 1;
    }
    return newDataPage();
}

PageRef TableStore::newDataPage() {
    PageRef page = allocatePage(pages_);
    dataPage::format(page.writable(), table_.page);
    UsageMap(pages_, table_.owned).add(page.number());
    UsageMap(pages_, table_.free).addHint(page.number());
    return page;
}

}  // namespace jet
