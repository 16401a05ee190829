#pragma once

#include <string>
#include <vector>

struct sqlite3;

namespace detail {

/// A generation of the cipher: how it derives the key of a file from a text, and the settings that go with it.
struct CipherGeneration {
    const char* digest;  ///< for PBKDF2 with HMAC
    int iterations;
    const char* settings;  ///< SQL statements to run after the key is set
};

/// Returns the generations whose files the library opens, its own first. Source: SQLCipher's API documentation,
/// "cipher_compatibility", and for its third release "cipher_default_use_hmac" and "kdf_iter".
std::vector<CipherGeneration> cipherGenerations(sqlite3* handle);

/// Sets the key of the connection's file, derived from a text and the file's first 16 bytes, as a raw key. Each key is
/// derived once in the process, as that takes long, and the windows are painted meanwhile. If there is nothing to
/// derive from, as in an empty file, the text itself is set.
void giveKey(sqlite3* handle, const std::string& text, const CipherGeneration& generation);

}  // namespace detail
