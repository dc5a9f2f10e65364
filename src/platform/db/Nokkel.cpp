#include "platform/db/Nokkel.h"

#include "platform/db/Database.h"

#include <QFile>
#include <array>
#include <cstring>
#include <future>
#include <map>
#include <mutex>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <thread>

namespace db {

namespace {

using Salt = std::array<unsigned char, 16>;
using Nokkel = std::array<unsigned char, 32>;

// SQLCipher 3's derivation of a page key from the password.
constexpr int Runder = 64000;

Nokkel utled(const Salt& salt)
{
    Nokkel nokkel;
    if (PKCS5_PBKDF2_HMAC_SHA1(Database::Passord, static_cast<int>(std::strlen(Database::Passord)), salt.data(),
                               static_cast<int>(salt.size()), Runder, static_cast<int>(nokkel.size()),
                               nokkel.data()) != 1)
        throw DbFeil("Kan ikke lage databasenøkkelen");
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
