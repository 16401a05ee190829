#include "accessdriver/jet/sortKey.h"

#include "accessdriver/jet/error.h"
#include "accessdriver/jet/indexes/textKey.h"
#include "accessdriver/jet/records/text.h"

namespace jet {

std::optional<std::string> sortKey(std::string_view text) try {
    std::vector<std::uint8_t> key;
    appendTextKey(utf16FromUtf8(text), key);
    return std::string(key.begin(), key.end());
} catch (const Error&) {
    return std::nullopt;
}

}  // namespace jet
