#include "accessdriver/jet/storage/header.h"

#include <algorithm>
#include <array>

#include "accessdriver/jet/failure.h"

namespace jet {

namespace {

// Page 0, after the published format notes. Integers are little-endian.
//   offset  size  field
//     0x00     4  00 01 00 00
//     0x04    16  "Standard Jet DB" and a zero
//     0x14     1  version: 0 Jet 3, 1 Jet 4, more: later formats
//     0x18   128  masked with a fixed stream of bytes:
//     0x18    24    where the parts that every file has lie: rows 0 and 1 of page 1, then pages 2 to 5
//     0x3C     2    code page
//     0x3E     4    key of the page encoding, 0 for none
//     0x42    40    password, UTF-16, masked once more with the creation day
//     0x6E     2    language of the sort order
//     0x71     1    version of the sort order
//     0x72     8    creation date
//     0x98     7  constant in every known file
//    0xE00   512  states of up to 256 users, two bytes each
constexpr std::size_t nameAt = 0x04, nameSize = 16, versionAt = 0x14, maskedAt = 0x18, maskedSize = 128,
                      fixedPartsAt = 0x18, codePageAt = 0x3C, pageKeyAt = 0x3E, passwordAt = 0x42, passwordSize = 40,
                      languageAt = 0x6E, sortVersionAt = 0x71, creationAt = 0x72, tailAt = 0x98, usersAt = 0xE00,
                      userSize = 2, userCount = 256;
static_assert(passwordAt == pageKeyAt + 4 && passwordSize == 2 * maxPasswordUnits);

constexpr std::string_view jetName("Standard Jet DB\0", nameSize);
constexpr std::string_view laterName("Standard ACE DB\0", nameSize);
constexpr std::uint8_t jet3 = 0, jet4 = 1;
constexpr std::uint16_t westernCodePage = 1252, generalLanguage = 0x0409;
constexpr std::array<std::uint32_t, 6> fixedParts = {0x100, 0x101, 2, 3, 4, 5};
constexpr std::uint16_t idleUser = 0x0100, firstUser = 0x0101;
constexpr std::array<std::uint8_t, 7> tail = {0x54, 0x06, 0x00, 0x00, 0x34, 0x2E, 0x30};

// The first bytes of the RC4 stream of this key mask the header.
constexpr std::array<std::uint8_t, 4> maskKey = {0xC7, 0xDA, 0x39, 0x6B};

std::array<std::uint8_t, maskedSize> maskStream() {
    std::array<std::uint8_t, 256> state;
    for (std::size_t i = 0; i < state.size(); ++i) state[i] = static_cast<std::uint8_t>(i);
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state.size(); ++i) {
        j = static_cast<std::uint8_t>(j + state[i] + maskKey[i % maskKey.size()]);
        std::swap(state[i], state[j]);
    }
    std::array<std::uint8_t, maskedSize> stream;
    std::uint8_t a = 0, b = 0;
    for (std::uint8_t& byte : stream) {
        a = static_cast<std::uint8_t>(a + 1);
        b = static_cast<std::uint8_t>(b + state[a]);
        std::swap(state[a], state[b]);
        byte = state[static_cast<std::uint8_t>(state[a] + state[b])];
    }
    return stream;
}

void maskHeader(PageBytes page) {
    const auto stream = maskStream();
    for (std::size_t i = 0; i < maskedSize; ++i) page[maskedAt + i] ^= stream[i];
}

// A mask once more: the whole days of the creation date, as four bytes over and over.
void maskPassword(PageBytes page) {
    const double created = getF64(page, creationAt);
    const bool inRange = created > -2147483648.0 && created < 2147483648.0;
    const auto days = static_cast<std::uint32_t>(inRange ? static_cast<std::int32_t>(created) : 0);
    for (std::size_t i = 0; i < passwordSize; ++i) {
        page[passwordAt + i] ^= static_cast<std::uint8_t>(days >> (8 * (i % 4)));
    }
}

void requireJet4(ConstPageBytes page, const std::string& path) {
    const std::string_view name(reinterpret_cast<const char*>(page.data()) + nameAt, nameSize);
    const std::string tooNew = path +
                               " is in a format of Access 2007 or later. Save it in the format of Access 2000 "
                               "or Access 2002-2003, then it can be used.";
    if (name == laterName) throw Error(Fault::tooNew, tooNew);
    if (name != jetName) throw Error(Fault::notAccess, path + " is no Access file.");
    const std::uint8_t version = page[versionAt];
    if (version == jet3) {
        throw Error(Fault::tooOld, path +
                                       " is in the format of Access 97 or earlier. Save it in the format of Access "
                                       "2000 or Access 2002-2003, then it can be used.");
    }
    if (version != jet4) throw Error(Fault::tooNew, tooNew);
}

}  // namespace

Header readHeader(ConstPageBytes raw, const std::string& path) {
    requireJet4(raw, path);
    std::array<std::uint8_t, pageSize> page;
    std::copy(raw.begin(), raw.end(), page.begin());
    maskHeader(page);
    if (getU32(page, pageKeyAt) != 0) {
        throw Error(Fault::encoded, path + " is encoded. Decode it in Access, then it can be used.");
    }
    maskPassword(page);
    Header header;
    header.sortOrder = getU16(page, languageAt) | static_cast<std::uint32_t>(page[sortVersionAt]) << 24;
    for (std::size_t i = 0; i < maxPasswordUnits; ++i) {
        const char16_t unit = getU16(page, passwordAt + 2 * i);
        if (unit == 0) break;
        header.password.push_back(unit);
    }
    return header;
}

void writeHeader(PageBytes page, const std::u16string& password, double creationDate) {
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    page[1] = 1;
    std::copy(jetName.begin(), jetName.end(), page.begin() + nameAt);
    page[versionAt] = jet4;
    for (std::size_t i = 0; i < fixedParts.size(); ++i) putU32(page, fixedPartsAt + 4 * i, fixedParts[i]);
    putU16(page, codePageAt, westernCodePage);
    for (std::size_t i = 0; i < std::min(password.size(), maxPasswordUnits); ++i) {
        putU16(page, passwordAt + 2 * i, password[i]);
    }
    putU16(page, languageAt, generalLanguage);
    putF64(page, creationAt, creationDate);
    maskPassword(page);
    maskHeader(page);
    std::copy(tail.begin(), tail.end(), page.begin() + tailAt);
    for (std::size_t i = 0; i < userCount; ++i) putU16(page, usersAt + userSize * i, i == 0 ? firstUser : idleUser);
}

}  // namespace jet
