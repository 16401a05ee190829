#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A compiled pattern of SQL's LIKE, in SQLite's dialect: `%` matches any text, `_` any one character, ASCII letters
/// match in either case, and a pattern or text ends at its first NUL. After an escape character, `%`, `_` and the
/// escape character itself stand for themselves; a pattern that ends in its escape character matches nothing.
///
/// Characters are read as SQLite reads UTF-8, malformed or not. A lead byte takes all continuation bytes that follow
/// it, a continuation byte elsewhere is the character of its value, and an overlong form, a surrogate, U+FFFE and
/// U+FFFF are U+FFFD. Source: https://sqlite.org/lang_expr.html#the_like_glob_regexp_match_and_extract_operators, and
/// comparison with the library.
class LikePattern {
  public:
    /// Compiles a pattern; `escape` is one character, as decode() returns it.
    explicit LikePattern(std::string_view pattern, std::optional<char32_t> escape = std::nullopt);

    /// Returns the characters of a text up to its first NUL.
    static std::u32string decode(std::string_view text);

    /// Returns the characters of a text up to its first NUL, with ASCII letters in lower case.
    static std::u32string caseFold(std::string_view text);

    /// Returns whether the whole text matches. The time is proportional to the length of the text, multiplied by a 64th
    /// of the longest part of the pattern between two `%`. No pattern takes longer.
    bool matches(std::string_view text) const;

    /// Does the same for a text that caseFold() returned.
    bool matches(std::u32string_view folded) const;

    /// Returns the parts of the pattern between its wildcards, case folded and none of them empty. Each of them is
    /// found in every text that matches.
    std::vector<std::u32string> literals() const;

  private:
    using Word = std::uint64_t;

    void compile();
    std::size_t rowOf(char32_t folded) const;
    template <class Next>
    bool run(Next next) const;

    /// The pattern without its `%`: case folded characters, or `anyCharacter`.
    std::u32string steps_;
    /// Bit i is set if a `%` comes before step i, or at the end of the pattern for i = steps_.size().
    std::vector<Word> anyText_;

    /// The different characters of the pattern, in ascending order. Row 0 of `masks_` belongs to all others.
    std::u32string characters_;
    std::array<std::uint8_t, 128> asciiRows_{};
    /// Rows of anyText_.size() words; bit i is set if step i matches the character of the row.
    std::vector<Word> masks_;
};
