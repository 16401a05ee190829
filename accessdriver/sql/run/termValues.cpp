#include "accessdriver/sql/run/termValues.h"

#include <cmath>

namespace sql {

Literal TermValues::operator()(const Term& term) const {
    if (term.function == Function::none) return term.isParameter() ? parameters_[term.parameter] : term.literal;
    if (term.function == Function::identity) return {.kind = Literal::Kind::number, .text = identity_};
    if (!now_) now_ = currentMoment();
    const double day = std::trunc(now_->days);
    const double days = term.function == Function::date   ? day
                        : term.function == Function::time ? now_->days - day
                                                          : now_->days;
    return {.kind = Literal::Kind::date, .date = {days}};
}

}  // namespace sql
