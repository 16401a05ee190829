#include "converters/headingWords.h"

namespace columnRecognition {
namespace {

std::vector<HeadingWords> makeVocabulary() {
    std::vector<HeadingWords> rows{
        {name, {"name", "animal name"}},
        {colour, {"color", "colour"}},
        {breed, {"breed"}},
        {sex, {"sex"}},
        {DOB, {"dob", "birthdate", "born", "birth date"}},
        {oldId, {"uid", "id", "oldid"}},
        {fatherId, {"sireId", "fatherId"}},
        {motherId, {"damId", "motherId"}},
        {ps, {"father", "sire", "sire name", "ps", "cock", "buck", "boar", "bull"}},
        {pd, {"mother", "dam", "dam name", "pd", "hen", "doe", "sow", "cow"}},
        {tag, {"tag", "reg", "reg no.", "reg no", "registration", "tag/reg."}},
        {prefix, {"prefix", "title", "pre title", "show title", "titles"}},
        {suffix, {"suffix", "post title", "obedience"}},
        {health, {"health", "medication", "vaccinations", "vetinary", "vet", "treatment", "treatments"}},
        {cage, {"cage no.", "cage", "pen"}},
        {callname, {"callname", "pet name", "call name"}},
        {notes, {"notes", "awards", "certifications"}},
        {dateBought,
         {"date purchased", "purchased date", "purchase date", "date of purchase", "bought", "date bought"}},
        {BoughtFrom, {"purchased from", "bought from", "seller"}},
        {purchasePrice, {"purchase price", "price", "paid", "bought for"}},
    };
    for (int number = 1; number <= 15; ++number) {
        const std::string digits = std::to_string(number);
        rows.push_back({customfield(number), {"customfield" + digits, "user field" + digits, digits}});
    }
    return rows;
}

}  // namespace

const std::vector<HeadingWords>& headingWords() {
    static const std::vector<HeadingWords> vocabulary = makeVocabulary();
    return vocabulary;
}

}  // namespace columnRecognition
