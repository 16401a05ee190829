#include "platform/database/cipherKey.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/params.h>
#include <optional>
#include <tuple>

#include "platform/database/sqliteConnection.h"
#include "platform/database/sqliteWaiting.h"

namespace detail {
namespace {

constexpr std::size_t saltSize = 16;
constexpr std::size_t keySize = 32;

struct FreeMac {
    void operator()(EVP_MAC* mac) const noexcept { EVP_MAC_free(mac); }
    void operator()(EVP_MAC_CTX* context) const noexcept { EVP_MAC_CTX_free(context); }
};

/// HMAC with one key, of any number of texts.
class Hmac {
  public:
    Hmac(const std::string& key, const char* digest)
        : mac_(EVP_MAC_fetch(nullptr, "HMAC", nullptr)), context_(EVP_MAC_CTX_new(mac_.get())) {
        // The library's parameters take their texts without const.
        const std::array parameters{
            OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, const_cast<char*>(digest), 0),
            OSSL_PARAM_construct_end()};
        good_ = context_ && EVP_MAC_init(context_.get(), reinterpret_cast<const unsigned char*>(key.data()), key.size(),
                                         parameters.data()) == 1;
        size_ = good_ ? EVP_MAC_CTX_get_mac_size(context_.get()) : 0;
    }

    bool good() const { return good_; }
    std::size_t size() const { return size_; }

    void of(const unsigned char* text, std::size_t size, unsigned char* out) {
        std::size_t written = 0;
        good_ = good_ && EVP_MAC_init(context_.get(), nullptr, 0, nullptr) == 1 &&
                EVP_MAC_update(context_.get(), text, size) == 1 &&
                EVP_MAC_final(context_.get(), out, &written, size_) == 1;
    }

  private:
    std::unique_ptr<EVP_MAC, FreeMac> mac_;
    std::unique_ptr<EVP_MAC_CTX, FreeMac> context_;
    std::size_t size_ = 0;
    bool good_ = false;
};

using Key = std::array<unsigned char, keySize>;

/// PBKDF2 (RFC 8018, section 5.2), in our own loop, as the cipher's and the cryptographic library's take a tenth of a
/// second and more in one piece.
std::optional<Key> derive(const std::string& text, const std::string& salt, const CipherGeneration& generation) {
    constexpr std::size_t largestDigest = EVP_MAX_MD_SIZE;
    constexpr int iterationsBetweenTurns = 1000;
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
            if (iteration % iterationsBetweenTurns == 0) paintMeanwhile();
        }
        const std::size_t count = std::min(hmac.size(), keySize - filled);
        std::copy_n(block.begin(), count, key.begin() + static_cast<std::ptrdiff_t>(filled));
        filled += count;
    }
    OPENSSL_cleanse(block.data(), block.size());
    OPENSSL_cleanse(round.data(), round.size());
    return hmac.good() ? std::optional(key) : std::nullopt;
}

/// The library's form of a key that is none to derive from.
std::string asRaw(const Key& key) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string raw;
    raw.reserve(2 * keySize + 3);
    raw = "x'";
    for (const unsigned char byte : key) raw.append({digits[byte / 16], digits[byte % 16]});
    return raw + "'";
}

/// All that were derived so far.
struct KnownKeys {
    KnownKeys() = default;
    KnownKeys(const KnownKeys&) = delete;
    KnownKeys& operator=(const KnownKeys&) = delete;
    ~KnownKeys() {
        for (auto& [source, key] : keys) OPENSSL_cleanse(key.data(), key.size());
    }
    using Source = std::tuple<std::string, std::string, std::string, int>;  ///< text, salt, digest and iterations
    std::map<Source, Key> keys;
};

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
    static KnownKeys known;
    const std::string salt = saltOf(handle);
    const KnownKeys::Source source{text, salt, generation.digest, generation.iterations};
    auto place = known.keys.find(source);
    if (place == known.keys.end() && !salt.empty()) {
        if (const auto key = derive(text, salt, generation)) place = known.keys.emplace(source, *key).first;
    }
    std::string key = place == known.keys.end() ? text : asRaw(place->second);
    sqlite3_key(handle, key.data(), static_cast<int>(key.size()));
    OPENSSL_cleanse(key.data(), key.size());
    sqlite3_exec(handle, generation.settings, nullptr, nullptr, nullptr);
}

}  // namespace detail
