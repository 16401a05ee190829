#pragma once

#include <deque>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "accessdriver/odbc/handles/descriptor.h"
#include "accessdriver/sql/values/literal.h"

namespace odbc {

/// Whether values can be read from variables of that C type.
bool isParameterType(SQLSMALLINT cType);

/// A parameter of one set of them, both counted from 0.
struct ParameterPosition {
    SQLULEN set = 0;
    std::size_t parameter = 0;
    auto operator<=>(const ParameterPosition&) const = default;
};

/// The values of a statement's parameters: sets of them in arrays of the application, and what it hands over piece by
/// piece at execution.
class ParameterSets {
  public:
    /// The descriptors must outlive this. Throws sql::Error(07002) for a parameter to which nothing is bound.
    ParameterSets(const DescriptorHandle& application, const DescriptorHandle& implementation, std::size_t parameters);

    SQLULEN sets() const { return parameters_ == 0 ? 1 : application_->arraySize; }

    /// Whether the application wants the set left out.
    bool isIgnored(SQLULEN set) const;

    /// Moves to the next parameter whose data is still to come; nothing if there is no further one.
    std::optional<ParameterPosition> nextDataAtExecution();

    /// What the application gave in the place of the data's address.
    SQLPOINTER token(const ParameterPosition& place) const;

    /// Adds a piece of the data of the parameter that nextDataAtExecution() moved to. Throws sql::Error: HY010 if there
    /// is none, HY019 for a second piece of a value that has none, HY020 for a piece beside Null, HY090 for a wrong
    /// length.
    void put(const void* data, SQLLEN length);

    /// The values of a set. Texts that they view are kept in `texts`. Throws sql::Error: HY003 for a C type that is not
    /// offered, HY009 for a missing buffer, 22007 for a date that is none, 22018 for text that is no pair of digits.
    std::vector<sql::Literal> values(SQLULEN set, std::deque<std::string>& texts) const;

  private:
    struct Pieces {
        bool begun = false;
        bool null = false;
        std::string bytes = {};
    };

    SQLSMALLINT cTypeOf(std::size_t parameter) const;
    SQLLEN lengthOf(const ParameterPosition& place) const;
    const char* dataOf(const ParameterPosition& place) const;

    const DescriptorHandle* application_;
    const DescriptorHandle* implementation_;
    std::size_t parameters_;
    std::optional<ParameterPosition> position_;
    bool started_ = false;
    std::map<ParameterPosition, Pieces> dataAtExecution_;
};

}  // namespace odbc
