#include "accessdriver/jet/indexes/textKey.h"

#include "accessdriver/jet/indexes/textWeight.h"

// Text key, after the published format notes: primary bytes, 01, accents, the parts below if there are any, 00.
//   kana     01 01, flags, FF 02 80 FF 80
//   skipped  01 01 01, or FF 01 behind kana; then for each character its place (2), 06, code
namespace jet {

namespace {

using textKey::Weight;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t separator = 0x01, terminator = 0x00, noAccent = 0x02;
constexpr std::uint8_t skippedMark = 0x06;
constexpr std::size_t firstPlace = 0x8000 + 7, placeStep = 4;

// The lowest `size` bytes of number, the first one highest.
void append(Bytes& to, std::uint32_t number, unsigned size) {
    while (size-- > 0) to.push_back(static_cast<std::uint8_t>(number >> 8 * size));
}

// The accents of a text as one stream of bytes. A letter without one has a filler, but only in front of others.
class Accents {
  public:
    void add(const Weight& weight) {
        if (weight.accentSize == 0) {
            ++plain_;
            return;
        }
        fill();
        append(bytes_, weight.accents, weight.accentSize);
    }

    void combine(std::uint8_t accent) {
        fill();
        if (bytes_.empty()) {
            bytes_.push_back(accent);
            ownFirst_ = 1;
        } else {
            bytes_.back() = static_cast<std::uint8_t>(bytes_.back() + accent);
        }
    }

    /// How many bytes the letters so far have here; a first byte without a letter is none of them.
    std::size_t letters() const { return bytes_.size() + plain_ - ownFirst_; }

    void appendTo(Bytes& key) {
        while (!bytes_.empty() && bytes_.back() <= noAccent) bytes_.pop_back();
        key.insert(key.end(), bytes_.begin(), bytes_.end());
    }

  private:
    void fill() {
        bytes_.insert(bytes_.end(), plain_, noAccent);
        plain_ = 0;
    }

    Bytes bytes_;
    std::size_t plain_ = 0;
    std::size_t ownFirst_ = 0;
};

// Three flags of two bits a byte, the first one highest; the greater flag is not written at the end.
void appendKana(Bytes flags, Bytes& key) {
    constexpr std::uint8_t lead = 0x80, usual = 3;
    constexpr std::uint8_t tail[] = {0xFF, 0x02, 0x80, 0xFF, 0x80};
    while (!flags.empty() && flags.back() == usual) flags.pop_back();
    while (flags.size() % 3 != 0) flags.push_back(0);
    for (std::size_t i = 0; i < flags.size(); i += 3) {
        key.push_back(static_cast<std::uint8_t>(lead | flags[i] << 4 | flags[i + 1] << 2 | flags[i + 2]));
    }
    key.insert(key.end(), std::begin(tail), std::end(tail));
}

}  // namespace

void appendTextKey(std::u16string_view text, std::vector<std::uint8_t>& key) {
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);

    Accents accents;
    Bytes skipped, kana;
    for (const char16_t unit : text) {
        const Weight weight = textKey::weightOf(unit);
        switch (weight.kind) {
            case Weight::Kind::nothing:
                break;
            case Weight::Kind::letter:
                append(key, weight.primary, weight.primarySize);
                accents.add(weight);
                if (weight.kana != 0) kana.push_back(weight.kana);
                break;
            case Weight::Kind::combining:
                accents.combine(static_cast<std::uint8_t>(weight.primary));
                break;
            case Weight::Kind::skipped:
                append(skipped, static_cast<std::uint32_t>(firstPlace + placeStep * accents.letters()), 2);
                skipped.insert(skipped.end(), {skippedMark, static_cast<std::uint8_t>(weight.primary)});
                break;
        }
    }
    key.push_back(separator);
    accents.appendTo(key);
    if (!kana.empty()) {
        key.insert(key.end(), {separator, separator});
        appendKana(kana, key);
    }
    if (!skipped.empty()) {
        // They are the fourth part; the third one is for kana.
        if (kana.empty()) {
            key.insert(key.end(), {separator, separator});
        } else {
            key.push_back(0xFF);
        }
        key.push_back(separator);
        key.insert(key.end(), skipped.begin(), skipped.end());
    }
    key.push_back(terminator);
}

}  // namespace jet
