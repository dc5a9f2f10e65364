#include "platform/db/Nokkel.h"

#include "platform/db/Database.h"

#include <QFile>
#include <array>
#include <cstring>
#include <map>
#include <mutex>
#include <openssl/evp.h>
#include <openssl/rand.h>

namespace db {

namespace {

using Salt = std::array<unsigned char, 16>;
using Nokkel = std::array<unsigned char, 32>;

// SQLCipher 3's derivation of a page key from the password.
constexpr int Runder = 64000;

// The key of a salt, derived at its first use. Two salts are derived at the same time on two
// threads: the lock is not held while deriving.
Nokkel avledet(const Salt& salt)
{
    static std::mutex mutex;
    static std::map<Salt, Nokkel> kjente;
    {
        std::lock_guard laas(mutex);
        if (auto kjent = kjente.find(salt); kjent != kjente.end()) return kjent->second;
    }
    Nokkel nokkel;
    if (PKCS5_PBKDF2_HMAC_SHA1(Database::Passord, static_cast<int>(std::strlen(Database::Passord)), salt.data(),
                               static_cast<int>(salt.size()), Runder, static_cast<int>(nokkel.size()),
                               nokkel.data()) != 1)
        throw DbFeil("Kan ikke lage databasenøkkelen");
    std::lock_guard laas(mutex);
    kjente.emplace(salt, nokkel);
    return nokkel;
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
    QFile f(fil);
    if (!f.open(QIODevice::ReadOnly) || f.read(reinterpret_cast<char*>(salt.data()),
                                               static_cast<qint64>(salt.size())) != static_cast<qint64>(salt.size()))
        return Database::Passord;
    return raaNokkel(avledet(salt));
}

std::string nyNokkel()
{
    Salt salt;
    if (RAND_bytes(salt.data(), static_cast<int>(salt.size())) != 1) throw DbFeil("Kan ikke lage et nytt salt");
    return raaNokkel(avledet(salt), salt);
}

}  // namespace db
