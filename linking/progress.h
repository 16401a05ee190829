#pragma once

#include <string_view>

class Database;
class RecordSet;

namespace linking {

class Pedigree;

/// Returns the maximum of the progress bar for a walk over `tree`: the record count if the store knows it. A CAV store
/// doesn't, so its rows are counted by walking them, which gives one more than there are.
double recordTotal(Database& db, std::string_view databaseKind, RecordSet& records);

/// Returns the same for a walk over a pedigree.
double recordTotal(const Pedigree& pedigree, std::string_view databaseKind);

/// Shows frmWait with its bar and the bar's maximum.
void showBar(double total);

}  // namespace linking
