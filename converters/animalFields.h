#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The fields of an animal that a CSV file can fill: one table for both imports.
namespace animalFields {

/// The fields, in the order in which their heading words are tested.
enum Key : int {
    name,
    colour,
    breed,
    sex,
    DOB,
    oldId,
    fatherId,
    motherId,
    ps,
    pd,
    tag,
    prefix,
    suffix,
    health,
    cage,
    callname,
    notes,
    dateBought,
    BoughtFrom,
    purchasePrice,
    customfield1,
    customfield15 = customfield1 + 14,
    keyCount
};

constexpr Key customfield(int number) { return static_cast<Key>(customfield1 + number - 1); }

/// How a cell is normalised on its way into its column. Dates, and the id "1", which means no parent, are stored in
/// another form by each of the routes.
enum class Treatment { unchanged, rma, sex, date, parentId };

/// What the route into CAV does with a field. It recognises fewer headings than the route into RSD; a column under
/// another heading becomes a custom field there.
enum class CavUse {
    imported,    ///< its heading words are recognised, and its cells are written
    leftOut,     ///< its heading words are recognised, and its cells are not written
    customOnly,  ///< its heading words are not recognised; custom headings fill it, and its cells are written
    unknown      ///< its heading words are not recognised, and `tree` has no column for it
};

struct Field {
    Key key;
    /// The column of `tree`.
    std::string column;
    Treatment treatment;
    CavUse cav;
    /// The words by which breeders head its column.
    std::vector<std::string> words;

    bool hasCavHeading() const { return cav == CavUse::imported || cav == CavUse::leftOut; }
    bool hasCavColumn() const { return cav == CavUse::imported || cav == CavUse::customOnly; }
};

/// Returns all fields. Heading words are tested from the top, and within a field from left to right. The fields that
/// have a CAV column are in the order of the columns in cavStore::insertTreeOpening().
const std::vector<Field>& all();

/// Returns a cell as both routes store it, for all treatments but `date`. The id "1" is not handled here.
std::string normalised(Treatment treatment, std::string_view cell);

/// Returns whether a cell says that the animal has no parent.
bool isNoParent(Treatment treatment, std::string_view cell);

}  // namespace animalFields
