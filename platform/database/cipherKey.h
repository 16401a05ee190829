#pragma once

#include <string>
#include <vector>

struct sqlite3;

namespace detail {

/// A generation of the cipher: how it turns a text into the key of a file, and what to tell the library of it.
struct CipherGeneration {
    const char* digest;  ///< of PBKDF2 with HMAC
    int iterations;
    const char* settings;  ///< statements that follow the key
};

/// Those whose files the library opens, its own first. Source: SQLCipher's API documentation, "cipher_compatibility",
/// and for the third release of the library its "cipher_default_use_hmac" and "kdf_iter".
std::vector<CipherGeneration> cipherGenerations(sqlite3* handle);

/// Tells the library the key of the connection's file: derived from a text and the file's first 16 bytes, in the form
/// that it takes as it is. A key is derived once, as that takes long, kept as long as the process lives, and wiped at
/// its end. Has the program paint meanwhile. Where there is nothing to derive from, as in an empty file, the library
/// gets the text.
void giveKey(sqlite3* handle, const std::string& text, const CipherGeneration& generation);

}  // namespace detail
