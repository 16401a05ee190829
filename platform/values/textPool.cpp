#include "platform/values/textPool.h"

#include <functional>
#include <limits>

#include "platform/values/failure.h"

TextPool::Number TextPool::add(std::string_view text) {
    if ((places_.size() + 1) * 2 > slots_.size()) grow();
    const auto hash = static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
    Slot& slot = slotOf(text, hash);
    if (slot.number != noNumber) return slot.number;
    if (text.size() > std::numeric_limits<std::uint32_t>::max() - bytes_.size()) throw Failure("too many long texts");
    const Place place{static_cast<std::uint32_t>(bytes_.size()), static_cast<std::uint32_t>(text.size())};
    bytes_.append(text);
    places_.push_back(place);
    slot = {hash, static_cast<Number>(places_.size() - 1)};
    return slot.number;
}

std::string_view TextPool::at(Number number) const {
    const Place place = places_[number];
    return std::string_view(bytes_).substr(place.begin, place.length);
}

TextPool::Slot& TextPool::slotOf(std::string_view text, std::uint32_t hash) {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    const auto isOther = [&](const Slot& slot) {
        return slot.number != noNumber && (slot.hash != hash || this->at(slot.number) != text);
    };
    while (isOther(slots_[at])) at = (at + 1) & mask;
    return slots_[at];
}

void TextPool::grow() {
    std::vector<Slot> slots(2 * slots_.size());
    const std::size_t mask = slots.size() - 1;
    for (const Slot& slot : slots_) {
        if (slot.number == noNumber) continue;
        std::size_t at = slot.hash & mask;
        while (slots[at].number != noNumber) at = (at + 1) & mask;
        slots[at] = slot;
    }
    slots_.swap(slots);
}
