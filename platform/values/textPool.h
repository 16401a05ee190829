#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Texts that come again and again, each kept once and known by a number.
class TextPool {
  public:
    using Number = std::uint32_t;

    /// Never the number of a text.
    static constexpr Number none = 0;

    /// Raises Failure if all of them together get longer than 4 GiB.
    Number add(std::string_view text);

    /// Good until the next text is added.
    std::string_view at(Number number) const;

    void clear() { *this = TextPool(); }

  private:
    /// Where the number of a text is or would go.
    std::size_t slotOf(std::string_view text) const;
    void grow();

    std::string bytes_ = std::string(1, '\0');  ///< each text's length, and the text, from its number on
    std::size_t count_ = 0;
    std::vector<Number> slots_ = std::vector<Number>(1024, none);  ///< open addressing; always some free
};
