#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace linking {

/// The names of all animals, searched for the oldest animal whose full name contains a text, as LIKE compares.
///
/// The full names lie one after the other in one buffer, case folded, each ended by a 0. Every position in the buffer
/// is listed, in ascending order, under a hash of the bytes from there on. A text can only be found where its rarest
/// four bytes in a row are, so few positions have to be compared, and the first that matches belongs to the oldest
/// animal. A text of one or two bytes is compared with the names that have all its bytes.
class NameIndex {
  public:
    /// The number of an animal, counted from 0 in the order of add().
    using Animal = std::uint32_t;
    static constexpr Animal noAnimal = ~Animal{0};

    /// Adds the next animal. All are added before prepare().
    void add(std::string_view prefix, std::string_view name);

    /// Returns the name of an animal, as it was added.
    std::string_view name(Animal animal) const { return slice(names_, ends_, 2 * std::size_t{animal} + 1); }

    /// Builds the index, before the first find(); does nothing the second time. Yields.
    void prepare();

    /// Returns the first animal whose full name is LIKE '%text%'; noAnimal if there is none, or if the database refuses
    /// the pattern. The full name is prefix and name, joined by one blank and trimmed. Yields.
    Animal find(std::string_view text) const;

  private:
    /// Some bytes in a row of a literal part of a pattern. All positions where they may be are in buckets `first` to
    /// `last` - 1, each of which is in ascending order.
    struct Gram {
        std::string_view part;
        std::size_t offset;  ///< in `part`
        std::size_t first;
        std::size_t last;
    };
    /// A set of bytes, several of them to a bit.
    using Bytes = std::uint64_t;
    using Matches = std::function<bool(Animal animal)>;

    static std::string_view slice(const std::string& texts, const std::vector<std::uint32_t>& ends, std::size_t number);
    static Bytes bytesOf(std::string_view text);
    void addFullName(Animal animal);
    std::string_view fullName(Animal animal) const;
    std::size_t begin(std::size_t bucket) const { return bucket == 0 ? 0 : bucketEnds_[bucket - 1]; }
    Gram rarest(const std::vector<std::string>& parts) const;
    Animal search(const std::vector<std::string>& parts, const Matches& matches) const;
    Animal searchBytes(const std::vector<std::string>& parts, const Matches& matches) const;

    std::string names_;                ///< prefix and name of each animal
    std::vector<std::uint32_t> ends_;  ///< of each prefix and name
    std::string fullNames_;
    std::vector<std::uint32_t> fullEnds_;
    std::vector<Bytes> bytes_;               ///< of each full name
    std::vector<std::uint32_t> bucketEnds_;  ///< bucket b of positions_ lies between the ends of b - 1 and b
    std::vector<std::uint32_t> positions_;
};

}  // namespace linking
