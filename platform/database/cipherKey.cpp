#include "platform/database/cipherKey.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <openssl/evp.h>
#include <optional>
#include <tuple>
#include <vector>

#include "platform/database/sqliteConnection.h"
#include "platform/database/sqliteProgress.h"

namespace detail {
namespace {

constexpr std::size_t saltSize = 16;
constexpr std::size_t keySize = 32;

struct FreeDigest {
    void operator()(EVP_MD_CTX* context) const noexcept { EVP_MD_CTX_free(context); }
};
using Digest = std::unique_ptr<EVP_MD_CTX, FreeDigest>;

/// Computes HMAC (RFC 2104) of any number of texts with one key. Both digests that begin with the key are kept and
/// copied for each text. OpenSSL's own HMAC loses the key between two texts in its releases 3.0.0 to 3.0.2.
class Hmac {
  public:
    Hmac(const std::string& key, const char* name) {
        const EVP_MD* digest = EVP_get_digestbyname(name);
        if (digest == nullptr || !inner_ || !outer_ || !work_) return;
        size_ = static_cast<std::size_t>(EVP_MD_size(digest));
        std::vector<unsigned char> pad(static_cast<std::size_t>(EVP_MD_block_size(digest)));
        good_ = true;
        if (key.size() <= pad.size()) {
            std::copy(key.begin(), key.end(), pad.begin());
        } else {
            good_ = EVP_Digest(key.data(), key.size(), pad.data(), nullptr, digest, nullptr) == 1;
        }
        begin(inner_, digest, pad, 0x36);
        begin(outer_, digest, pad, 0x36 ^ 0x5C);
    }

    bool good() const { return good_; }
    std::size_t size() const { return size_; }

    void of(const unsigned char* text, std::size_t size, unsigned char* out) {
        digestBehind(inner_, text, size, out);
        digestBehind(outer_, out, size_, out);
    }

  private:
    void begin(const Digest& context, const EVP_MD* digest, std::vector<unsigned char>& pad, unsigned char mask) {
        for (unsigned char& byte : pad) byte ^= mask;
        good_ = good_ && EVP_DigestInit_ex(context.get(), digest, nullptr) == 1 &&
                EVP_DigestUpdate(context.get(), pad.data(), pad.size()) == 1;
    }

    void digestBehind(const Digest& start, const unsigned char* text, std::size_t size, unsigned char* out) {
        good_ = good_ && EVP_MD_CTX_copy_ex(work_.get(), start.get()) == 1 &&
                EVP_DigestUpdate(work_.get(), text, size) == 1 && EVP_DigestFinal_ex(work_.get(), out, nullptr) == 1;
    }

    Digest inner_{EVP_MD_CTX_new()};
    Digest outer_{EVP_MD_CTX_new()};
    Digest work_{EVP_MD_CTX_new()};
    std::size_t size_ = 0;
    bool good_ = false;
};

using Key = std::array<unsigned char, keySize>;

/// Derives a key by PBKDF2 (RFC 8018, section 5.2). The loop is our own, because those of SQLCipher and of the
/// cryptographic library take a tenth of a second and more, during which no window is painted.
std::optional<Key> derive(const std::string& text, const std::string& salt, const CipherGeneration& generation) {
    constexpr std::size_t largestDigest = EVP_MAX_MD_SIZE;
    constexpr int iterationsBetweenPaintings = 1000;
    Hmac hmac(text, generation.digest);
    Key key{};
    std::array<unsigned char, largestDigest> round{};
    std::array<unsigned char, largestDigest> block{};
    std::size_t filled = 0;
    for (unsigned char number = 1; hmac.good() && filled < keySize; ++number) {
        const std::string first = salt + std::string(3, '\0') + static_cast<char>(number);
        hmac.of(reinterpret_cast<const unsigned char*>(first.data()), first.size(), round.data());
        block = round;
        for (int iteration = 1; iteration < generation.iterations; ++iteration) {
            hmac.of(round.data(), hmac.size(), round.data());
            for (std::size_t i = 0; i < hmac.size(); ++i) block[i] ^= round[i];
            if (iteration % iterationsBetweenPaintings == 0) paintIfDue();
        }
        const std::size_t count = std::min(hmac.size(), keySize - filled);
        std::copy_n(block.begin(), count, key.begin() + static_cast<std::ptrdiff_t>(filled));
        filled += count;
    }
    return hmac.good() ? std::optional(key) : std::nullopt;
}

/// Returns the key in SQLCipher's form for a raw key, from which nothing is derived.
std::string asRaw(const Key& key) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string raw = "x'";
    for (const unsigned char byte : key) raw.append({digits[byte / 16], digits[byte % 16]});
    return raw + "'";
}

/// What a key is derived from: text, salt, digest and number of iterations.
using KeySource = std::tuple<std::string, std::string, std::string, int>;

std::string saltOf(sqlite3* handle) {
    std::string salt(saltSize, '\0');
    sqlite3_file* file = openFile(handle);
    const bool read = file != nullptr && file->pMethods->xRead(file, salt.data(), saltSize, 0) == SQLITE_OK;
    return read ? salt : std::string();
}

}  // namespace

std::vector<CipherGeneration> cipherGenerations(sqlite3* handle) {
    sqlite3_stmt* raw = nullptr;
    sqlite3_prepare_v2(handle, "PRAGMA cipher_version", -1, &raw, nullptr);
    const StatementHandle statement(raw);
    const bool known = statement && sqlite3_step(statement.get()) == SQLITE_ROW;
    const std::string_view version = known ? columnOf(statement.get(), 0) : std::string_view{};
    if (version.starts_with("3.")) {
        return {{"SHA1", 64000, ""},
                {"SHA1", 4000, "PRAGMA kdf_iter = 4000"},
                {"SHA1", 4000, "PRAGMA cipher_use_hmac = OFF; PRAGMA kdf_iter = 4000"}};
    }
    return {{"SHA512", 256000, ""},
            {"SHA1", 64000, "PRAGMA cipher_compatibility = 3"},
            {"SHA1", 4000, "PRAGMA cipher_compatibility = 2"},
            {"SHA1", 4000, "PRAGMA cipher_compatibility = 1"}};
}

void giveKey(sqlite3* handle, const std::string& text, const CipherGeneration& generation) {
    static std::map<KeySource, Key> known;
    const std::string salt = saltOf(handle);
    const KeySource source{text, salt, generation.digest, generation.iterations};
    auto place = known.find(source);
    if (place == known.end() && !salt.empty()) {
        if (const auto key = derive(text, salt, generation)) place = known.emplace(source, *key).first;
    }
    const std::string key = place == known.end() ? text : asRaw(place->second);
    sqlite3_key(handle, key.data(), static_cast<int>(key.size()));
    sqlite3_exec(handle, generation.settings, nullptr, nullptr, nullptr);
}

}  // namespace detail
