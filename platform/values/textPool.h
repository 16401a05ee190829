#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Keeps each of many texts once, under a number. The numbers count up from 0 in the order in which texts are added.
class TextPool {
  public:
    using Number = std::uint32_t;

    /// Returns the number of the text, which is added if it is new. Raises Failure if all texts together get longer
    /// than 4 GiB. After any failure the pool holds what it held before.
    Number add(std::string_view text);

    /// Returns the text of a number, valid until the next text is added.
    std::string_view at(Number number) const;

    std::size_t size() const { return places_.size(); }

  private:
    struct Place {
        std::uint32_t begin;
        std::uint32_t length;
    };
    static constexpr Number noNumber = ~Number{0};
    struct Slot {
        std::uint32_t hash = 0;
        Number number = noNumber;
    };

    /// Returns the slot of the text, or the free slot where it belongs.
    Slot& slotOf(std::string_view text, std::uint32_t hash);
    void grow();

    std::string bytes_;
    std::vector<Place> places_;                          ///< of each text in bytes_
    std::vector<Slot> slots_ = std::vector<Slot>(1024);  ///< hash table, linear probing, size a power of 2
};
