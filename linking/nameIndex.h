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
/// row do, so few places have to be looked at, and the first that fits belongs to the first animal. A text too short
/// for that is looked for in the names that have all its characters.
class NameIndex {
  public:
    /// The characters of a text as LIKE compares them, up to a NUL.
    static std::u32string fold(std::string_view text);

    /// Adds the next animal. All are added before the first search.
    void add(std::int64_t id, std::string_view fullName);

    /// Sorts the places in. Yields.
    void finish();

    using Visit = std::function<bool(std::size_t animal)>;

    /// Calls `visit` with the animals, in id order, until it gives true; with all of those whose names have these
    /// pieces of a folded text in them, and some others. An animal may come more than once.
    void search(const std::vector<std::u32string_view>& pieces, const Visit& visit) const;

    std::int64_t id(std::size_t animal) const { return ids_[animal]; }

    /// As it was folded.
    std::u32string_view name(std::size_t animal) const;

  private:
    /// Three characters in a row of a piece, and where they stand in the names.
    struct Gram {
        std::u32string_view piece;
        std::size_t offset = 0;  ///< in the piece
        std::size_t bucket = 0;
        std::size_t places = 0;
    };
    /// A set of characters, several of them to a bit.
    using Characters = std::uint64_t;

    static Characters charactersOf(std::u32string_view folded);
    Gram rarest(const std::vector<std::u32string_view>& pieces) const;
    void searchCharacters(Characters wanted, const Visit& visit) const;
    std::size_t animalAt(std::size_t place) const;

    std::u32string names_;
    std::vector<std::uint32_t> starts_;      ///< where each animal's name begins in names_
    std::vector<std::int64_t> ids_;          ///< of each animal
    std::vector<Characters> characters_;     ///< of each animal's name
    std::vector<std::uint32_t> bucketEnds_;  ///< bucket b of places_ lies between the ends of b - 1 and b
    std::vector<std::uint32_t> places_;
};

}  // namespace linking
