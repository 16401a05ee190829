#pragma once

#include <map>
#include <span>

#include <sql.h>
#include <sqlext.h>

namespace odbc {

/// What may be done with an attribute.
struct AttributeRule {
    enum class Takes { any, onlyInitial, substitutesInitial, nothing };

    SQLINTEGER attribute;
    SQLULEN initial;
    Takes takes;
};

/// The number-valued attributes of a handle, within the rules of a table.
class Attributes {
  public:
    /// The table must outlive this.
    explicit Attributes(std::span<const AttributeRule> rules) : rules_(rules) {}

    /// Throws sql::Error(HY092) for an attribute that is not in the table.
    SQLULEN get(SQLINTEGER attribute) const;

    /// Whether the application has set the attribute.
    bool isSet(SQLINTEGER attribute) const { return values_.contains(attribute); }

    /// Returns true if the value was set, false if the attribute has its initial value instead (SQLSTATE 01S02). Throws
    /// sql::Error: HY092 unknown or read-only, HYC00 another value than the only one possible.
    bool set(SQLINTEGER attribute, SQLULEN value);

    /// An attribute that holds a pointer.
    template <class T>
    T* pointer(SQLINTEGER attribute) const {
        return reinterpret_cast<T*>(get(attribute));
    }

  private:
    const AttributeRule& rule(SQLINTEGER attribute) const;

    std::span<const AttributeRule> rules_;
    std::map<SQLINTEGER, SQLULEN> values_;
};

}  // namespace odbc
