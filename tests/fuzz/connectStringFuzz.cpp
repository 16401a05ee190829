// A connection string, as it may come from any application: values are found or the string is refused.

#include <string>

#include "accessdriver/odbc/handles/connectString.h"
#include "accessdriver/sql/values/error.h"
#include "tests/fuzz/fuzzTarget.h"

namespace {

/// The value in braces, in which it may hold anything.
std::string inBraces(std::string_view value) {
    std::string out = "{";
    for (const char c : value) out += c == '}' ? std::string("}}") : std::string(1, c);
    return out + "}";
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    try {
        const odbc::ConnectString connection(text);
        for (const char* keyword : {"DRIVER", "dbq", "Uid", "PWD", ""}) {
            fuzz::demand(connection.value(keyword).size() <= size, "a value is a part of the string");
        }
    } catch (const sql::Error&) {
        // Refused, which is as good.
    }
    const odbc::ConnectString braced("DRIVER={x};DBQ=" + inBraces(text) + ";PWD=secret;");
    fuzz::demand(braced.value("dbq") == text, "whatever stands in braces is the value");
    fuzz::demand(braced.value("PWD") == "secret", "what stands in braces ends with them");
    return 0;
}
