#pragma once

#include <string_view>

class Database;
class RecordSet;

namespace linking {

/// The maximum of the progress bar for a walk over `tree`: the record count where the store knows it. A CAV store does
/// not, so its rows are counted by walking them, which gives one more than there are.
double recordTotal(Database& db, std::string_view databaseKind, RecordSet& records);

/// Shows frmWait with its bar and the bar's maximum.
void showBar(double total);

}  // namespace linking
