#pragma once

/// What an imported CSV file lacked. Deliberate: only ever set to true: a flag raised by one conversion stays raised
/// for every later one until the program ends.
namespace publicVariables {

extern bool noSexColumn;
extern bool noPd;
extern bool noPS;

}  // namespace publicVariables
