#include "converters/animalFields.h"

#include "fieldtext/normalisers.h"
#include "fieldtext/textHelpers.h"
#include "platform/values/text.h"

namespace animalFields {
namespace {

std::vector<Field> makeFields() {
    using enum Treatment;
    using Cav = CavUse;
    std::vector<Field> fields{
        {name, "name", rma, Cav::imported, {"name", "animal name"}},
        {colour, "colour", rma, Cav::imported, {"color", "colour"}},
        {breed, "breed", rma, Cav::imported, {"breed"}},
        {Key::sex, "sex", Treatment::sex, Cav::imported, {"sex"}},
        {DOB, "DOB", date, Cav::imported, {"dob", "birthdate", "born", "birth date"}},
        {oldId, "oldId", unchanged, Cav::imported, {"uid", "id", "oldid"}},
        {fatherId, "fatherId", parentId, Cav::imported, {"sireId", "fatherId"}},
        {motherId, "motherId", parentId, Cav::imported, {"damId", "motherId"}},
        {ps, "ps", rma, Cav::imported, {"father", "sire", "sire name", "ps", "cock", "buck", "boar", "bull"}},
        {pd, "pd", rma, Cav::imported, {"mother", "dam", "dam name", "pd", "hen", "doe", "sow", "cow"}},
        {tag, "tag", unchanged, Cav::imported, {"tag", "reg", "reg no.", "reg no", "registration", "tag/reg."}},
        {prefix, "prefix", unchanged, Cav::imported, {"prefix", "title", "pre title", "show title", "titles"}},
        {suffix, "suffix", unchanged, Cav::imported, {"suffix", "post title", "obedience"}},
        {health,
         "health",
         rma,
         Cav::imported,
         {"health", "medication", "vaccinations", "vetinary", "vet", "treatment", "treatments"}},
        {cage, "cage", unchanged, Cav::imported, {"cage no.", "cage", "pen"}},
        {callname, "callname", unchanged, Cav::leftOut, {"callname", "pet name", "call name"}},
        {notes, "notes", rma, Cav::imported, {"notes", "awards", "certifications"}},
        {dateBought,
         "dateBought",
         date,
         Cav::unknown,
         {"date purchased", "purchased date", "purchase date", "date of purchase", "bought", "date bought"}},
        {BoughtFrom, "BoughtFrom", rma, Cav::unknown, {"purchased from", "bought from", "seller"}},
        {purchasePrice, "purchasePrice", unchanged, Cav::unknown, {"purchase price", "price", "paid", "bought for"}},
    };
    for (int number = 1; number <= 15; ++number) {
        const std::string digits = std::to_string(number);
        fields.push_back({customfield(number),
                          "customfield" + digits,
                          rma,
                          Cav::customOnly,
                          {"customfield" + digits, "user field" + digits, digits}});
    }
    return fields;
}

}  // namespace

const std::vector<Field>& all() {
    static const std::vector<Field> fields = makeFields();
    return fields;
}

std::string normalised(Treatment treatment, std::string_view cell) {
    if (treatment == Treatment::rma) return appSystem::rma(cell);
    if (treatment == Treatment::sex) return appSystem::convertSex(cell);
    return std::string(cell);
}

bool isNoParent(Treatment treatment, std::string_view cell) {
    return treatment == Treatment::parentId && text::equals(cell, "1");
}

}  // namespace animalFields
