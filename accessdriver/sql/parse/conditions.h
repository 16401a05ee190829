#pragma once

#include "accessdriver/sql/parse/tokenStream.h"

namespace sql {

/// Reads the condition of a WHERE: see parse() for what it may be. Throws Error(42000).
Condition parseCondition(TokenStream& in);

}  // namespace sql
