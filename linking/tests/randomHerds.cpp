#include "linking/tests/randomHerds.h"

#include <random>
#include <sstream>

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

/// Texts that are numbers in more than one spelling, the edges of 64 bits, blanks, bytes that are no UTF-8, and texts
/// that turn a statement into another one.
const std::vector<Cell> ids{"1"s,
                            "2"s,
                            "3"s,
                            "01"s,
                            "1.0"s,
                            "1e0"s,
                            " 1"s,
                            "1 "s,
                            "+1"s,
                            "-0"s,
                            "0"s,
                            "0x1"s,
                            "10e-1"s,
                            "A1"s,
                            "a1"s,
                            "A1 "s,
                            "\tA1"s,
                            "é"s,
                            "\xC3"s,
                            "\x80"s,
                            "."s,
                            "-"s,
                            "1\0"s,
                            "1\0002"s,
                            ""s,
                            {},
                            "2.50"s,
                            "2.5"s,
                            ".5"s,
                            "0.1"s,
                            "1e400"s,
                            "nan"s,
                            "9007199254740993"s,
                            "9007199254740992.0"s,
                            "9223372036854775807"s,
                            "9223372036854775808"s,
                            "0.10000000000000001"s,
                            "0.1000000000000000055"s,
                            "-9223372036854775809"s,
                            "-9223372036854775808"s,
                            "-9223372036854775808.0"s,
                            "0.10000000000000002"s};
const std::vector<Cell> oddIds{"'"s,
                               "1'"s,
                               "O''Brien"s,
                               "O'Brien"s,
                               "O''''Brien"s,
                               "''"s,
                               "a'' OR ''b"s,
                               "a' OR 'b"s,
                               "1' OR '1'='1"s,
                               "2' OR ps='Bob"s,
                               "1' AND sex='male"s,
                               "1'; DELETE FROM tree; --"s,
                               "9' OR name LIKE 'b%"s};

/// Names that contain one another, in both cases, wildcards, and characters in well-formed and malformed bytes.
const std::vector<std::string> pieces{"a",
                                      "A",
                                      "b",
                                      "Bob",
                                      "bob",
                                      "Bo",
                                      " ",
                                      "  ",
                                      "é",
                                      "É",
                                      "\xC3",
                                      "\xA9",
                                      "\x80",
                                      "\xFF",
                                      "\xC2\x80",
                                      "`",
                                      "\xED\xA0\x80",
                                      "1",
                                      "Bella",
                                      "ella",
                                      "\xEF\xBF\xBD",
                                      "\xEF\xBF\xBE",
                                      "\xF0\x9F\x90\xB0",
                                      "\xC0\x80",
                                      "unknown",
                                      "UNKNOWN",
                                      "\xE2\x82",
                                      "\xFC\x80\x80\x80\x80\xAF",
                                      "\xEF\xBF\xBF",
                                      "\xED\xB0\x80",
                                      "\xF8\x88\x80\x80\x80",
                                      "abc",
                                      "bca"};
const std::vector<std::string> oddPieces{"%", "_", "\0"s, "'", "''", "a_c", "b%b"};
const std::vector<Cell> oddNames{"', sex='q"s,     "', oldId='2"s,       "', fatherId='1"s,
                                 "' || pd || '"s,  "', motherId='2"s,    "', id=id-1, sex='"s,
                                 "', name='Bob"s,  "', id='77"s,         "', fatherId=x'41"s,
                                 "', oldId=x'31"s, "', prefix='Bo"s,     "', motherId=NULL, sex='"s,
                                 "', oldId='1.0"s, "', ps=NULL, sex='"s, std::string(1200, 'b')};

/// Herds of a few values each, so that they meet.
class Maker {
  public:
    explicit Maker(unsigned seed) : random_(seed), odd_(below(3) == 0) {
        for (int i = 0; i < 5; ++i) ids_.push_back(odd_ && below(4) == 0 ? one(oddIds) : one(ids));
        for (int i = 0; i < 7; ++i) names_.push_back(makeName());
    }

    Herd make() {
        Herd herd(1 + below(12));
        for (Animal& animal : herd) {
            animal = {one(names_), below(2) == 0 ? one(names_) : Cell(),
                      one(ids_),   one(ids_),
                      one(ids_),   one(names_),
                      one(names_), one(sexes_)};
        }
        return herd;
    }

  private:
    std::size_t below(std::size_t limit) { return random_() % limit; }

    template <typename T>
    const T& one(const std::vector<T>& choices) {
        return choices[below(choices.size())];
    }

    Cell makeName() {
        if (below(8) == 0) return {};
        // Too long for a pattern.
        if (odd_ && below(200) == 0) return std::string(50000, 'b');
        if (odd_ && below(6) == 0) return one(oddNames);
        std::string name;
        for (std::size_t count = below(4); count > 0; --count) name += below(10) == 0 ? one(oddPieces) : one(pieces);
        return name;
    }

    std::mt19937 random_;
    bool odd_;
    std::vector<Cell> ids_;
    std::vector<Cell> names_;
    std::vector<Cell> sexes_{"male"s, "female"s, "undefined"s, {}};
};

}  // namespace

Herd makeRandomHerd(unsigned seed) { return Maker(seed).make(); }

std::string shown(const Herd& herd) {
    std::ostringstream out;
    for (const Animal& animal : herd) {
        for (std::size_t i = 0; i < animal.size(); ++i) {
            out << columns[i] << "=" << (animal[i] ? testing::PrintToString(animal[i]->substr(0, 50)) : "NULL") << " ";
        }
        out << "\n";
    }
    return out.str();
}
