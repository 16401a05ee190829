#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace linking {

/// The full names of all animals in id order, ready to be searched for those that contain a text, as LIKE would find
/// it.
///
/// All names lie one after the other in one buffer, each ended by a 0, as the characters that LIKE sees: ASCII letters
/// in lower case, and malformed bytes read as the database reads them. Every place in the buffer is listed under the
/// three characters that start there, in ascending order. A text can only stand where its three rarest characters in a
/// row do, so few places have to be looked at, and the first that fits belongs to the first animal.
class NameIndex {
  public:
    /// How many characters in a row a place is listed under.
    static constexpr std::size_t gram = 3;

    /// The characters of a text as LIKE compares them, up to a NUL.
    static std::u32string fold(std::string_view text);

    /// Adds the next animal. All are added before the first search.
    void add(std::int64_t id, std::string_view fullName);

    /// Sorts the places in. Yields.
    void finish();

    /// Calls `visit` with the ids of the animals whose names contain the folded text, in id order, until it gives true.
    /// An animal whose name contains the text twice may come twice. Returns whether `visit` gave true.
    bool search(std::u32string_view folded, const std::function<bool(std::int64_t id)>& visit) const;

    /// The same with the animals whose names have all characters of the folded text, and maybe some others.
    bool searchCharacters(std::u32string_view folded, const std::function<bool(std::int64_t id)>& visit) const;

    /// How many places a search for the text looks at; a measure to choose between texts.
    std::size_t cost(std::u32string_view folded) const;

  private:
    struct Rarest {
        std::size_t offset = 0;  ///< of the three characters in the text
        std::size_t bucket = 0;
        std::size_t places = 0;
    };
    /// A set of characters, several of them to a bit.
    using Characters = std::uint64_t;

    static Characters charactersOf(std::u32string_view folded);
    Rarest rarest(std::u32string_view folded) const;
    std::int64_t idAt(std::size_t place) const;

    std::u32string names_;
    std::vector<std::uint32_t> starts_;      ///< where each animal's name begins in names_
    std::vector<std::int64_t> ids_;          ///< of each animal
    std::vector<Characters> characters_;     ///< of each animal's name
    std::vector<std::uint32_t> bucketEnds_;  ///< bucket b of places_ lies between the ends of b - 1 and b
    std::vector<std::uint32_t> places_;
};

}  // namespace linking
