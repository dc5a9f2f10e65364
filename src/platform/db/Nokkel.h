// The database key without its slow derivation. SQLCipher derives a file's key from the
// password and the file's salt (its first 16 bytes) with 64 000 rounds of PBKDF2-HMAC-SHA1,
// some 35 ms, at every opening; an import opens four files. The program derives each salt's key
// once and hands SQLCipher the key itself from then on, which SQLCipher takes as it is.
#pragma once

#include <QString>
#include <string>

namespace db {

// The key text to give SQLCipher for the existing file: the key derived for its salt as raw key
// data ("x'…'"), or the password itself for a file too short to hold a salt.
std::string nokkelFor(const QString& fil);
// Starts deriving the key of the file's salt on a thread of its own, so that the file's opening a
// moment later finds it ready; nothing for a file without a salt.
void forberedNokkel(const QString& fil);
// The key text for a new file: a fresh salt and the key derived for it, as raw key data with
// the salt, which SQLCipher writes into the file.
std::string nyNokkel();

}  // namespace db
