#include "platform/values/likePattern.h"

#include <algorithm>

namespace {

/// The step of `_`. A surrogate is never read from a text.
constexpr char32_t anyCharacter = 0xD800;

constexpr std::size_t wordBits = 64;

/// Returns the bits of a lead byte that belong to the character.
char32_t leadBits(unsigned char lead) {
    if (lead < 0xE0) return lead & 0x1FU;
    if (lead < 0xF0) return lead & 0x0FU;
    if (lead < 0xF8) return lead & 0x07U;
    if (lead < 0xFC) return lead & 0x03U;
    return lead < 0xFE ? lead & 0x01U : 0;
}

/// Reads the character at `at` and moves past it; U+0000 at the end of the text.
char32_t nextCharacter(std::string_view text, std::size_t& at) {
    if (at >= text.size()) return 0;
    const auto byte = static_cast<unsigned char>(text[at++]);
    if (byte < 0xC0) return byte;
    char32_t code = leadBits(byte);
    for (; at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U; ++at) {
        code = (code << 6U) + (static_cast<unsigned char>(text[at]) & 0x3FU);
    }
    const bool malformed = code < 0x80 || (code & 0xFFFFF800U) == 0xD800 || (code & 0xFFFFFFFEU) == 0xFFFE;
    return malformed ? 0xFFFD : code;
}

char32_t lowerAscii(char32_t character) { return character >= 'A' && character <= 'Z' ? character + 32 : character; }

}  // namespace

LikePattern::LikePattern(std::string_view pattern, std::optional<char32_t> escape) : anyText_(1) {
    std::size_t at = 0;
    while (const char32_t character = nextCharacter(pattern, at)) {
        if (character == escape) {
            // At the end of the pattern this is U+0000, which no text has in it.
            steps_ += lowerAscii(nextCharacter(pattern, at));
        } else if (character == '%') {
            anyText_.back() |= Word{1} << steps_.size() % wordBits;
        } else {
            steps_ += character == '_' ? anyCharacter : lowerAscii(character);
        }
        anyText_.resize(steps_.size() / wordBits + 1);
    }
    compile();
}

void LikePattern::compile() {
    characters_ = steps_;
    std::sort(characters_.begin(), characters_.end());
    characters_.erase(std::unique(characters_.begin(), characters_.end()), characters_.end());
    for (std::size_t i = 0; i < characters_.size() && characters_[i] < asciiRows_.size(); ++i) {
        asciiRows_[characters_[i]] = static_cast<std::uint8_t>(i + 1);
    }
    const std::size_t words = anyText_.size();
    masks_.resize((characters_.size() + 1) * words);
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        const Word bit = Word{1} << i % wordBits;
        if (steps_[i] != anyCharacter) {
            masks_[rowOf(steps_[i]) * words + i / wordBits] |= bit;
        } else {
            for (std::size_t word = i / wordBits; word < masks_.size(); word += words) masks_[word] |= bit;
        }
    }
}

/// Returns the row of `masks_` for a character.
std::size_t LikePattern::rowOf(char32_t folded) const {
    if (folded < asciiRows_.size()) return asciiRows_[folded];
    const auto found = std::lower_bound(characters_.begin(), characters_.end(), folded);
    return found == characters_.end() || *found != folded ? 0
                                                          : static_cast<std::size_t>(found - characters_.begin()) + 1;
}

std::u32string LikePattern::decode(std::string_view text) {
    std::u32string characters;
    std::size_t at = 0;
    while (const char32_t character = nextCharacter(text, at)) characters += character;
    return characters;
}

std::u32string LikePattern::caseFold(std::string_view text) {
    std::u32string folded = decode(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), lowerAscii);
    return folded;
}

/// Follows all ways to match at once (the "shift-and" method): bit i of `state` is set if the characters read so far
/// match the first i steps. As soon as a `%` is reached, earlier words are given up: what is left of the text then
/// is the longest rest that any way leaves, so no other way could match more.
template <class Next>
bool LikePattern::run(Next next) const {
    const std::size_t words = anyText_.size();
    const Word accepted = Word{1} << steps_.size() % wordBits;
    std::vector<Word> state(words);
    state[0] = 1;
    std::size_t first = 0;
    std::size_t last = 0;
    while (char32_t character = next()) {
        // Whatever follows matches the `%` at the end of the pattern.
        if ((state.back() & anyText_.back() & accepted) != 0) return true;
        const Word* const mask = masks_.data() + rowOf(character) * words;
        Word carry = 0;
        const std::size_t end = std::min(last + 2, words);
        for (std::size_t word = first; word < end; ++word) {
            const Word matched = state[word] & mask[word];
            state[word] = matched << 1U | carry | (state[word] & anyText_[word]);
            carry = matched >> (wordBits - 1);
            if (state[word] != 0) last = word;
            if ((state[word] & anyText_[word]) != 0) first = word;
        }
        while (state[last] == 0) {
            if (last == first) return false;
            --last;
        }
    }
    return (state.back() & accepted) != 0;
}

bool LikePattern::matches(std::string_view text) const {
    return run([text, at = std::size_t{0}]() mutable { return lowerAscii(nextCharacter(text, at)); });
}

bool LikePattern::matches(std::u32string_view folded) const {
    return run([folded, at = std::size_t{0}]() mutable { return at < folded.size() ? folded[at++] : U'\0'; });
}

std::vector<std::u32string> LikePattern::literals() const {
    std::vector<std::u32string> parts(1);
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        const bool afterAnyText = (anyText_[i / wordBits] >> i % wordBits & 1U) != 0;
        if (afterAnyText || steps_[i] == anyCharacter) parts.emplace_back();
        if (steps_[i] != anyCharacter) parts.back() += steps_[i];
    }
    std::erase(parts, std::u32string());
    return parts;
}
