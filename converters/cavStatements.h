#pragma once

#include <string>

class RecordSet;

namespace stores {
class AnimalNames;
}

/// The INSERT statements that carry one row of an RSD table into a CAV file. Only what goes through rma is safe from
/// apostrophes; a statement that a raw value spoils is refused by the driver and its row is lost. Each raises
/// NullReference if the record set lacks a column that it reads.
namespace cavStatements {

/// Leaves the ids and the health empty: the parents travel as names alone.
std::string tree(RecordSet& records, stores::AnimalNames& names);

/// The notes of a mating go into its colour.
std::string matings(RecordSet& records, stores::AnimalNames& names);

/// Names six columns and carries five values, the second being the animal's name and the notes run together.
std::string soldStock(RecordSet& records, stores::AnimalNames& names);

std::string vaccinations(RecordSet& records, stores::AnimalNames& names);

}  // namespace cavStatements
