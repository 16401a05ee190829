#include "accessdriver/odbc/data/diagnostics.h"

#include <algorithm>
#include <array>
#include <new>

#include "accessdriver/jet/error.h"
#include "accessdriver/jet/utf8.h"
#include "accessdriver/sql/values/error.h"

namespace odbc {

namespace {

struct FaultCode {
    jet::Fault fault;
    const char* state;
    SQLINTEGER native;
};

// What the storage engine's faults are called outside. The native codes are this driver's own; applications may keep
// them, so a number never changes its meaning.
using jet::Fault;
constexpr std::array<FaultCode, 20> faultCodes = {{
    {Fault::noSuchFile, "08001", -1001},     {Fault::noPermission, "08001", -1002},
    {Fault::inUse, "08004", -1003},          {Fault::notAccess, "08001", -1004},
    {Fault::tooOld, "08001", -1005},         {Fault::tooNew, "08001", -1006},
    {Fault::encoded, "08001", -1007},        {Fault::wrongPassword, "28000", -1008},
    {Fault::corrupt, "HY000", -1009},        {Fault::io, "HY000", -1010},
    {Fault::noSuchTable, "42S02", -1101},    {Fault::notWritable, "42000", -1102},
    {Fault::badValue, "22018", -1103},       {Fault::tooLong, "22001", -1104},
    {Fault::nullNotAllowed, "23000", -1105}, {Fault::duplicateKey, "23000", -1106},
    {Fault::busy, "40001", -1107},           {Fault::readOnly, "HY000", -1108},
    {Fault::ruleBroken, "23000", -1109},     {Fault::otherProcess, "08003", -1110},
}};

constexpr SQLINTEGER refusedStatement = -1200;  // any refused statement; its SQLSTATE says why
constexpr SQLINTEGER internalFault = -1900;

// In bytes. A message may name tables and files of any length, but applications have buffers of about 1,000 bytes.
constexpr std::size_t longestMessage = 900;

constexpr const char* prefix = "[Tolvaris][Access Driver] ";

}  // namespace

void Diagnostics::add(const char* state, SQLINTEGER native, const std::string& message) {
    // Errors come before warnings, and native codes are for errors.
    const auto place = native == 0 ? records_.end() : records_.begin();
    records_.insert(place, {state, native, prefix + jet::abbreviated(message, longestMessage)});
}

void Diagnostics::refuse(const char* state, const std::string& message) { add(state, refusedStatement, message); }

void Diagnostics::addCurrentException() noexcept try {
    try {
        throw;
    } catch (const jet::Error& error) {
        const auto code = std::find_if(faultCodes.begin(), faultCodes.end(),
                                       [&](const FaultCode& c) { return c.fault == error.fault(); });
        add(code->state, code->native, error.what());
    } catch (const sql::Error& error) {
        add(error.state(), refusedStatement, error.what());
    } catch (const std::bad_alloc&) {
        add("HY001", internalFault, "There is not enough memory.");
    } catch (const std::exception& error) {
        add("HY000", internalFault, error.what());
    } catch (...) {
        add("HY000", internalFault, "An unknown failure.");
    }
} catch (...) {
    // Not even memory for the record: the return code has to do.
}

}  // namespace odbc
