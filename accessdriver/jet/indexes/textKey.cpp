#include "accessdriver/jet/indexes/textKey.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/indexes/textKeyTable.h"
#include "accessdriver/jet/records/text.h"

namespace jet {

namespace {

using textKey::Weight;

constexpr std::uint8_t separator = 0x01, terminator = 0x00, noAccent = 0x02;
// A skipped character's entry: place (2), this byte, code.
constexpr std::uint8_t skippedMark = 0x06;
constexpr unsigned firstPlace = 0x8000 + 7, placeStep = 4;

Weight weightOf(char16_t c) {
    if (c < textKey::firstWeights.size()) return textKey::firstWeights[c];
    const auto* const end = std::end(textKey::furtherWeights);
    const auto* const found =
        std::lower_bound(std::begin(textKey::furtherWeights), end, c,
                         [](const textKey::Further& entry, char16_t wanted) { return entry.character < wanted; });
    return found != end && found->character == c ? found->weight : Weight{};
}

[[noreturn]] void failUnknown(std::u16string_view text, std::size_t at) {
    const bool pair = text[at] >= 0xD800 && text[at] < 0xDC00 && at + 1 < text.size();
    unsigned code = text[at];
    if (pair) code = 0x10000 + ((code & 0x3FFU) << 10) + (text[at + 1] & 0x3FFU);
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", code);
    throw Error(Fault::badValue, "The character " + utf8FromUtf16(text.substr(at, pair ? 2 : 1)) + " (" + name +
                                     ") can't be kept in an indexed column.");
}

}  // namespace

void appendTextKey(std::u16string_view text, std::vector<std::uint8_t>& key) {
    text = text.substr(0, maxKeyUnits);
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);

    std::vector<std::uint8_t> accents;
    std::vector<std::uint8_t> skipped;
    unsigned letters = 0;
    bool anyAccent = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const Weight weight = weightOf(text[i]);
        switch (weight.kind) {
            case Weight::Kind::unknown:
                failUnknown(text, i);
            case Weight::Kind::nothing:
                break;
            case Weight::Kind::letter:
                if (weight.primary > 0xFF) key.push_back(static_cast<std::uint8_t>(weight.primary >> 8));
                key.push_back(static_cast<std::uint8_t>(weight.primary & 0xFF));
                accents.push_back(weight.mark == 0 ? noAccent : weight.mark);
                anyAccent |= weight.mark != 0;
                ++letters;
                break;
            case Weight::Kind::skipped: {
                const unsigned place = firstPlace + placeStep * letters;
                skipped.insert(skipped.end(), {static_cast<std::uint8_t>(place >> 8),
                                               static_cast<std::uint8_t>(place & 0xFF), skippedMark, weight.mark});
                break;
            }
        }
    }
    key.push_back(separator);
    if (anyAccent) {
        while (accents.back() == noAccent) accents.pop_back();
        key.insert(key.end(), accents.begin(), accents.end());
    }
    if (!skipped.empty()) {
        // The first two close the accents and a part that is never used, the third opens this one.
        key.insert(key.end(), {separator, separator, separator});
        key.insert(key.end(), skipped.begin(), skipped.end());
    }
    key.push_back(terminator);
}

}  // namespace jet
