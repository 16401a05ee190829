#include "accessdriver/odbc/handles/attributes.h"

#include <algorithm>
#include <string>

#include "accessdriver/sql/values/error.h"

namespace odbc {

const AttributeRule& Attributes::rule(SQLINTEGER attribute) const {
    const auto found =
        std::find_if(rules_.begin(), rules_.end(), [&](const auto& r) { return r.attribute == attribute; });
    if (found != rules_.end()) return *found;
    throw sql::Error("HY092", "The driver has no attribute " + std::to_string(attribute) + ".");
}

SQLULEN Attributes::get(SQLINTEGER attribute) const {
    const AttributeRule& known = rule(attribute);
    const auto set = values_.find(attribute);
    return set == values_.end() ? known.initial : set->second;
}

bool Attributes::set(SQLINTEGER attribute, SQLULEN value) {
    using Takes = AttributeRule::Takes;
    const AttributeRule& known = rule(attribute);
    if (known.takes == Takes::any) {
        values_[attribute] = value;
        return true;
    }
    if (known.takes == Takes::nothing) {
        throw sql::Error("HY092", "The attribute " + std::to_string(attribute) + " can only be read.");
    }
    if (value != known.initial && known.takes == Takes::onlyInitial) {
        throw sql::Error("HYC00", "The driver does not offer the value " + std::to_string(value) +
                                      " of the attribute " + std::to_string(attribute) + ".");
    }
    return value == known.initial;
}

}  // namespace odbc
