#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "accessdriver/sql/parse/term.h"
#include "accessdriver/sql/values/calendar.h"

namespace sql {

/// What the terms of a statement stand for while it runs. The clock is read once, so that all its rows get the same
/// moment.
class TermValues {
  public:
    /// identity is the number that @@IDENTITY gives, in digits. Parameters and identity must outlive this and the
    /// literals that it gives.
    TermValues(std::span<const Literal> parameters, DateOrder order, std::string_view identity)
        : parameters_(parameters), order_(order), identity_(identity) {}

    Literal operator()(const Term& term) const;

    /// The order of day and month in texts.
    DateOrder dateOrder() const { return order_; }

  private:
    std::span<const Literal> parameters_;
    DateOrder order_;
    std::string_view identity_;
    mutable std::optional<jet::DateTime> now_;
};

}  // namespace sql
