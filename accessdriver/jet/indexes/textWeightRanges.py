#!/usr/bin/env python3
"""textWeightRanges.py TABLE > textWeightRanges.h

Packs the table of text keys that was published with the notes on the Access file format. A line of the table is
FIRST[-LAST] WEIGHT [step N] [k2|k3], where WEIGHT is one of
    .          no effect                   ~CC    skipped, with this code
    PP..+SS..  primary and accent bytes    &MM    combining: MM is added to the accent before
and the primary bytes, taken as a number, grow by N from one character of a range to the next.
"""
import re
import sys

KINDS = {".": "nothing", "~": "skipped", "&": "combining"}


def size(digits):
    return len(digits) // 2


def number(digits):
    return int(digits or "0", 16)


def read(lines):
    """Yields first character, primary bytes as a number, step, and what the characters of a range have in common."""
    for line in lines:
        if line.startswith("#") or not line.strip():
            continue
        place, weight, *further = line.split()
        first, last = (number(end) for end in (place.split("-") * 2)[:2])
        step = int(further[further.index("step") + 1]) if "step" in further else 0
        kana = next((int(word[1]) for word in further if re.fullmatch("k[23]", word)), 0)
        name = KINDS.get(weight[0], "letter")
        primary, accents = (weight.strip(".~&").split("+") + [""])[:2]
        kind = (name, size(primary) if name == "letter" else 0, size(accents), kana, number(accents))
        if step < 256:
            yield first, number(primary), step, kind
        else:
            for character in range(first, last + 1):
                yield character, number(primary) + step * (character - first), 0, kind


def lines(items, perLine):
    for i in range(0, len(items), perLine):
        print("    " + " ".join(items[i : i + perLine]))


ranges = list(read(open(sys.argv[1])))
kinds = sorted({kind for *_, kind in ranges})
print(f"""#pragma once

// Made by textWeightRanges.py from the table of text keys that was published with the notes on the file format.

#include "accessdriver/jet/indexes/textWeight.h"

// clang-format off
namespace jet::textKey {{

/// Ranges of characters from U+0100 to U+FFFF but the surrogates, each up to the next one: first character (16 bits),
/// primary bytes or code of the first one (32), step from one to the next (8), kind (8).
inline constexpr std::uint64_t ranges[] = {{""")
lines([f"0x{first << 48 | primary << 16 | step << 8 | kinds.index(kind):016X}," for first, primary, step, kind in ranges], 6)
print("""};

inline constexpr Weight kinds[] = {""")
lines(["{Weight::Kind::%s, %d, %d, %d, 0x%X}," % kind for kind in kinds], 3)
print("""};

}  // namespace jet::textKey
// clang-format on""")
