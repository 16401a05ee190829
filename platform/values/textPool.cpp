#include "platform/values/textPool.h"

#include <functional>
#include <limits>

#include "platform/values/failure.h"

TextPool::Number TextPool::add(std::string_view text) {
    if ((places_.size() + 1) * 2 > slots_.size()) grow();
    Number& slot = slots_[slotOf(text, slots_)];
    if (slot != noNumber) return slot;
    if (text.size() > std::numeric_limits<std::uint32_t>::max() - bytes_.size()) throw Failure("too many long texts");
    const Place place{static_cast<std::uint32_t>(bytes_.size()), static_cast<std::uint32_t>(text.size())};
    bytes_.append(text);
    places_.push_back(place);
    slot = static_cast<Number>(places_.size() - 1);
    return slot;
}

std::string_view TextPool::at(Number number) const {
    const Place place = places_[number];
    return std::string_view(bytes_).substr(place.begin, place.length);
}

std::size_t TextPool::slotOf(std::string_view text, const std::vector<Number>& slots) const {
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = std::hash<std::string_view>()(text) & mask;
    while (slots[slot] != noNumber && at(slots[slot]) != text) slot = (slot + 1) & mask;
    return slot;
}

void TextPool::grow() {
    std::vector<Number> slots(2 * slots_.size(), noNumber);
    for (Number number = 0; number < places_.size(); ++number) slots[slotOf(at(number), slots)] = number;
    slots_.swap(slots);
}
