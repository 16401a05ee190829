#include "platform/values/textPool.h"

#include <cstring>
#include <functional>
#include <limits>
#include <utility>

#include "platform/values/failure.h"

namespace {

using Length = std::uint32_t;

}  // namespace

TextPool::Number TextPool::add(std::string_view text) {
    Number& slot = slots_[slotOf(text)];
    if (slot != none) return slot;
    if (text.size() > std::numeric_limits<Number>::max() - bytes_.size() - sizeof(Length)) {
        throw Failure("too many long texts");
    }
    const auto number = static_cast<Number>(bytes_.size());
    slot = number;
    const auto length = static_cast<Length>(text.size());
    bytes_.append(reinterpret_cast<const char*>(&length), sizeof length).append(text);
    if (++count_ * 2 > slots_.size()) grow();
    return number;
}

std::string_view TextPool::at(Number number) const {
    Length length = 0;
    std::memcpy(&length, bytes_.data() + number, sizeof length);
    return {bytes_.data() + number + sizeof length, length};
}

std::size_t TextPool::slotOf(std::string_view text) const {
    std::size_t slot = std::hash<std::string_view>()(text) % slots_.size();
    while (slots_[slot] != none && at(slots_[slot]) != text) slot = (slot + 1) % slots_.size();
    return slot;
}

void TextPool::grow() {
    const std::vector<Number> numbers = std::exchange(slots_, std::vector<Number>(2 * slots_.size(), none));
    for (const Number number : numbers) {
        if (number != none) slots_[slotOf(at(number))] = number;
    }
}
