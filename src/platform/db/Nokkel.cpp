// The key derivation hashes single SHA-1 blocks, which only OpenSSL's low-level SHA-1 functions
// do; OpenSSL 3 marks them deprecated in favour of its general digest interface, but keeps them.
#define OPENSSL_SUPPRESS_DEPRECATED
#include "platform/db/Nokkel.h"

#include "platform/db/Database.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <cstring>
#include <future>
#include <map>
#include <mutex>
#include <openssl/rand.h>
#include <openssl/sha.h>
#include <thread>

namespace db {

namespace {

using Salt = std::array<unsigned char, 16>;
using Nokkel = std::array<unsigned char, 32>;

// SQLCipher 3's derivation of a page key from the password: PBKDF2 with HMAC-SHA1, 64 000 rounds.
constexpr int Runder = 64000;

// The hash state after one 64-byte block, and the 20-byte digest of one more block holding the
// 20 bytes given, padded as the last block of an 84-byte message (an HMAC round's second block).
void etterBlokk(const SHA_CTX& foran, const unsigned char (&inn)[20], unsigned char (&ut)[20])
{
    unsigned char blokk[64] = {};
    std::memcpy(blokk, inn, sizeof inn);
    blokk[20] = 0x80;
    blokk[62] = (84 * 8) >> 8;
    blokk[63] = (84 * 8) & 0xff;
    SHA_CTX c = foran;
    SHA1_Transform(&c, blokk);
    const unsigned int h[5] = {c.h0, c.h1, c.h2, c.h3, c.h4};
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 4; ++j) ut[4 * i + j] = static_cast<unsigned char>(h[i] >> (24 - 8 * j));
}

// The same key as OpenSSL's PKCS5_PBKDF2_HMAC_SHA1, in less than half its time: the HMAC's inner
// and outer hash states of the password are made once, and each round hashes one block with
// each, where OpenSSL's general HMAC copies and finishes whole digest contexts.
Nokkel utled(const Salt& salt)
{
    unsigned char passord[64] = {};
    std::memcpy(passord, Database::Passord, std::strlen(Database::Passord));  // shorter than a block
    unsigned char indre[64], ytre[64];
    for (int i = 0; i < 64; ++i) {
        indre[i] = passord[i] ^ 0x36;
        ytre[i] = passord[i] ^ 0x5c;
    }
    SHA_CTX medIndre, medYtre;
    SHA1_Init(&medIndre);
    SHA1_Update(&medIndre, indre, sizeof indre);
    SHA1_Init(&medYtre);
    SHA1_Update(&medYtre, ytre, sizeof ytre);

    Nokkel nokkel;
    for (size_t fylt = 0, nr = 1; fylt < nokkel.size(); fylt += 20, ++nr) {
        const unsigned char blokkNr[4] = {0, 0, 0, static_cast<unsigned char>(nr)};
        unsigned char u[20], sum[20];
        SHA_CTX c = medIndre;  // the first round hashes the salt and the block number
        SHA1_Update(&c, salt.data(), salt.size());
        SHA1_Update(&c, blokkNr, sizeof blokkNr);
        SHA1_Final(u, &c);
        etterBlokk(medYtre, u, u);
        std::memcpy(sum, u, sizeof u);
        for (int r = 1; r < Runder; ++r) {
            etterBlokk(medIndre, u, u);
            etterBlokk(medYtre, u, u);
            for (int i = 0; i < 20; ++i) sum[i] ^= u[i];
        }
        std::memcpy(nokkel.data() + fylt, sum, std::min<size_t>(20, nokkel.size() - fylt));
    }
    return nokkel;
}

// The keys by salt, each derived once: on the thread that first needs it, or ahead on a thread
// of its own (forbered); whoever needs a key that is being derived waits for it.
class Nokler {
public:
    Nokkel hent(const Salt& salt)
    {
        try {
            return finn(salt, false).get();
        } catch (...) {
            std::lock_guard laas(mutex_);
            kjente_.erase(salt);  // tried again at the next opening
            throw;
        }
    }
    void forbered(const Salt& salt) { finn(salt, true); }

private:
    // The key being derived or derived; a key not yet asked for is derived now, here or ahead.
    std::shared_future<Nokkel> finn(const Salt& salt, bool foran)
    {
        std::unique_lock laas(mutex_);
        if (auto kjent = kjente_.find(salt); kjent != kjente_.end()) return kjent->second;
        std::packaged_task<Nokkel()> oppgave([salt] { return utled(salt); });
        std::shared_future<Nokkel> nokkel = oppgave.get_future().share();
        kjente_.emplace(salt, nokkel);
        laas.unlock();
        if (foran)
            std::thread(std::move(oppgave)).detach();
        else
            oppgave();
        return nokkel;
    }

    std::mutex mutex_;
    std::map<Salt, std::shared_future<Nokkel>> kjente_;
};

Nokler& nokler()
{
    static Nokler alle;
    return alle;
}

// The salt in the first bytes of the file; false when it has none.
bool saltFra(const QString& fil, Salt& salt)
{
    QFile f(fil);
    return f.open(QIODevice::ReadOnly) && f.read(reinterpret_cast<char*>(salt.data()),
                                                 static_cast<qint64>(salt.size())) == static_cast<qint64>(salt.size());
}

// Raw key data as SQLCipher reads it: x'…' around the bytes in hexadecimal.
template <class... Deler>
std::string raaNokkel(const Deler&... deler)
{
    static const char Siffer[] = "0123456789ABCDEF";
    std::string ut = "x'";
    auto hex = [&ut](const auto& bytes) {
        for (unsigned char b : bytes) {
            ut += Siffer[b >> 4];
            ut += Siffer[b & 15];
        }
    };
    (hex(deler), ...);
    return ut + '\'';
}

}  // namespace

std::string nokkelFor(const QString& fil)
{
    Salt salt;
    if (!saltFra(fil, salt)) return Database::Passord;
    return raaNokkel(nokler().hent(salt));
}

void forberedNokkel(const QString& fil)
{
    Salt salt;
    if (saltFra(fil, salt)) nokler().forbered(salt);
}

std::string nyNokkel()
{
    Salt salt;
    if (RAND_bytes(salt.data(), static_cast<int>(salt.size())) != 1) throw DbFeil("Kan ikke lage et nytt salt");
    return raaNokkel(nokler().hent(salt), salt);
}

}  // namespace db
