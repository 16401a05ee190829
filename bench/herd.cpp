#include "bench/herd.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <vector>

namespace bench {
namespace {

constexpr const char* firstWords[] = {
    "Amber",  "Astra",   "Bella", "Blue",   "Bramble", "Bracken", "Cedar",   "Chloë",  "Clover", "Copper", "Daisy",
    "Dusk",   "Echo",    "Elfin", "Émile",  "Fable",   "Fern",    "Flint",   "Frost",  "Ginger", "Gyp",    "Hazel",
    "Heidi",  "Iris",    "Ivory", "Jasper", "Jet",     "Juno",    "Kestrel", "Laird",  "Lark",   "Linnet", "Lucy",
    "Maggie", "Meadow",  "Misty", "Moss",   "Nell",    "Noël",    "O'Hara",  "Olive",  "Orion",  "Pansy",  "Pearl",
    "Poppy",  "Quill",   "Raven", "Roan",   "Rosie",   "Rusty",   "Sable",   "Shadow", "Skye",   "Sorrel", "Storm",
    "Tansy",  "Thistle", "Topaz", "Umber",  "Velvet",  "Willow",  "Wren",    "Yarrow", "Zoë"};
constexpr const char* secondWords[] = {
    "",          "Angel",   "Arrow",   "Beauty",   "Boy",      "Breeze",  "Charm",   "Dancer",  "Dawn",  "Delight",
    "Dream",     "Duke",    "Ember",   "Fancy",    "Feather",  "Fire",    "Flame",   "Girl",    "Glory", "Heart",
    "Jewel",     "Joy",     "King",    "Knight",   "Lad",      "Lass",    "Legacy",  "Light",   "Magic", "Melody",
    "Moonlight", "Music",   "Mystery", "Night",    "Piper",    "Pride",   "Prince",  "Promise", "Queen", "Rainbow",
    "Ripple",    "River",   "Rose",    "Ruler",    "Señorita", "Shine",   "Silk",    "Song",    "Spark", "Spirit",
    "Star",      "Sunrise", "Tide",    "Treasure", "Tune",     "Victory", "Whisper", "Wind",    "Wish",  "Wonder"};
constexpr const char* prefixes[] = {"",         "",           "Glenmore", "Hollybank", "St. Anne's", "Château",
                                    "Ashdown",  "Brook",      "Ch",       "Kirkby",    "Löwen",      "Northfield",
                                    "Oakhurst", "Ravenswood", "Thornton", "Wold"};
constexpr const char* kennels[] = {"du Chêne",        "von der Heide", "of the Long Meadow", "de la Rivière",
                                   "van het Noorden", "av Fjället",    "del Señorío",        "z Białego Dworu",
                                   "of Kirkby Fell",  "od Řeky"};
constexpr const char* breeds[] = {"Border Collie", "Mini Lop", "Dexter", "Jersey", "Welsh Cob", "Maine Coon"};
constexpr const char* colours[] = {"Black & White", "Agouti", "Red", "Blue Roan", "Chinchilla", "Sable", "Tricolour"};
constexpr const char* headings =
    "ID,Name,Prefix,Post Title,%Breed,Colour,DOB,SireId,DamId,Sire Name,Dam Name,Reg No.,Call Name,Health,Cage,Notes,"
    "Date Purchased,Bought From,Price,CustomField1,CustomField2,CustomField3,CustomField4,CustomField5,CustomField6,"
    "CustomField7,CustomField8,CustomField9,CustomField10,CustomField11,CustomField12,CustomField13,CustomField14,"
    "CustomField15\n";

struct Animal {
    std::string id;
    std::string name;
    std::string prefix;
};

/// What a line says about one parent.
struct ParentCells {
    std::string id;
    std::string name;
};

class Herd {
  public:
    Herd(bool withSex, Kind kind) : withSex_(withSex), kind_(kind) {}

    std::string make(int animals) {
        out_ = headings;
        out_.replace(out_.find('%'), 1, withSex_ ? "Sex," : "");
        for (int number = 0; number < animals; ++number) addAnimal(number);
        return std::move(out_);
    }

  private:
    std::uint32_t below(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

    template <std::size_t n>
    const char* oneOf(const char* const (&words)[n]) {
        return words[below(n)];
    }

    std::string makeName(int number) {
        if (kind_ == Kind::oneName) return "Bella";
        if (kind_ == Kind::wildcards) return std::string(letter()) + letter();
        if (kind_ == Kind::longNames) {
            return oneOf(firstWords) + std::string(" ") + oneOf(kennels) + " " + std::to_string(number);
        }
        std::string name = oneOf(firstWords);
        const std::string second = oneOf(secondWords);
        if (!second.empty()) name += (below(12) == 0 ? " o' " : " ") + second;
        if (below(3) != 0) name += " " + std::to_string(below(2000));
        return name;
    }

    /// Or a wildcard.
    const char* letter() {
        static constexpr const char* letters[] = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "%",
                                                  "n", "o", "p", "q", "r", "s", "t", "u", "v", "w", "x", "y", "z", "_"};
        return oneOf(letters);
    }

    std::string date(int number) {
        std::string text = std::to_string(1 + below(28)) + "/" + std::to_string(1 + below(12)) + "/";
        return text + std::to_string(2000 + number % 24);
    }

    bool isSire(int number) const {
        if (kind_ == Kind::longNames) return number % 5 == 0;
        return number % (kind_ == Kind::twoParents ? 2 : 30) == 0;
    }

    bool isDam(int number) const {
        if (kind_ == Kind::longNames) return !isSire(number);
        return number % (kind_ == Kind::twoParents ? 2 : 8) == 1;
    }

    bool hasTwoParents() const { return kind_ == Kind::twoParents || kind_ == Kind::longNames; }

    ParentCells parentCells(const std::vector<Animal>& parents) {
        if (parents.empty() || (!hasTwoParents() && below(20) == 0)) return {};
        // Where names are long, an animal breeds for a while only, so that most of a herd become parents.
        const std::size_t choice =
            kind_ == Kind::longNames ? std::min<std::size_t>(parents.size(), 1000) : parents.size();
        const Animal& parent = parents[parents.size() - choice + below(choice)];
        if (hasTwoParents()) return {parent.id, ""};
        if (kind_ == Kind::wildcards) return {"", std::string(letter()) + (below(2) == 0 ? "%" : "_%") + letter()};
        switch (below(10)) {
            case 0:
                return {"X" + std::to_string(below(5000)), ""};
            case 1:
                return {"", makeName(0) + " of Elsewhere"};
            case 2:
            case 3:
                return {parent.id, parent.name};
            case 4:
                return {"", parent.name};
            case 5:
                return {"", parent.prefix + (parent.prefix.empty() ? "" : " ") + parent.name};
            case 6:
                return {"", below(4) == 0 ? "Unknown" : parent.name};
            default:
                return {parent.id, ""};
        }
    }

    void cell(const std::string& text) { out_.append(text).append(","); }

    void addAnimal(int number) {
        const int id = 10001 + number;
        const Animal animal{(below(10) == 0 ? "K" : "") + std::to_string(id), makeName(number),
                            kind_ == Kind::wildcards ? "" : oneOf(prefixes)};
        const ParentCells sire = parentCells(sires_);
        const ParentCells dam = parentCells(dams_);
        cell(animal.id);
        cell(animal.name);
        cell(animal.prefix);
        cell(below(9) == 0 ? "Ch" : "");
        if (withSex_) cell(number % 2 == 0 ? "male" : "f");
        cell(oneOf(breeds));
        cell(oneOf(colours));
        cell(date(number));
        cell(sire.id);
        cell(dam.id);
        cell(sire.name);
        cell(dam.name);
        cell("REG" + std::to_string(id));
        cell(animal.name.substr(0, animal.name.find(' ')));
        cell(below(4) == 0 ? "Vaccinated on arrival" : "");
        cell("C-" + std::to_string(below(400)));
        cell(below(3) == 0 ? "Best in class at the county show; kind with children" : "");
        cell(below(8) == 0 ? date(number) : "");
        cell(below(8) == 0 ? "Mrs. R. Dunn" : "");
        cell(below(8) == 0 ? "$" + std::to_string(100 + below(900)) : "");
        for (int field = 1; field < 15; ++field) cell(below(3) == 0 ? "v" + std::to_string(below(1000)) : "");
        out_.append("end\n");
        // Two lists of different animals.
        if (isSire(number)) sires_.push_back(animal);
        if (isDam(number)) dams_.push_back(animal);
    }

    bool withSex_;
    Kind kind_;
    std::mt19937 random_{20240229};
    std::string out_;
    std::vector<Animal> sires_;
    std::vector<Animal> dams_;
};

}  // namespace

std::string makeHerd(int animals, bool withSex, Kind kind) { return Herd(withSex, kind).make(animals); }

}  // namespace bench
