#pragma once

#include "accessdriver/sql/parse/tokenStream.h"

namespace sql {

/// Reads the condition of a WHERE: see parse() for its grammar. Throws Error(42000).
Predicate parseCondition(TokenStream& in);

/// Reads a validation rule: a condition whose comparisons need not name their first operand, which is `column` then, as
/// in `>=5 And <=10`. Throws Error(42000).
Predicate parseRule(TokenStream& in, const Name& column);

/// Reads a column or value, in brackets or not. Throws Error(42000).
Operand parseOperand(TokenStream& in);

}  // namespace sql
