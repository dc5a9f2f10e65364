#include "platform/fil/Varig.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace fil {

namespace {

std::error_code systemfeil() { return {errno, std::generic_category()}; }

std::error_code synkSti(const std::string& sti, int flagg)
{
    const int fd = ::open(sti.c_str(), O_RDONLY | O_CLOEXEC | flagg);
    if (fd < 0) return systemfeil();
    std::error_code feil;
    if (::fsync(fd) != 0) feil = systemfeil();
    ::close(fd);
    return feil;
}

}  // namespace

std::error_code synk(const std::string& sti) { return synkSti(sti, 0); }

std::error_code synkMappe(const std::string& mappe) { return synkSti(mappe.empty() ? "." : mappe, O_DIRECTORY); }

void begynnSkriving(const std::string& sti)
{
#ifdef __linux__
    const int fd = ::open(sti.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    ::sync_file_range(fd, 0, 0, SYNC_FILE_RANGE_WRITE);
    ::close(fd);
#else
    (void)sti;
#endif
}

namespace {

std::error_code flytt(const std::string& tmp, const std::string& endelig, unsigned flagg)
{
    if (auto feil = synk(tmp)) return feil;
    if (::renameat2(AT_FDCWD, tmp.c_str(), AT_FDCWD, endelig.c_str(), flagg) != 0) return systemfeil();
    return synkMappe(std::filesystem::path(endelig).parent_path().string());
}

}  // namespace

std::error_code byttInn(const std::string& tmp, const std::string& endelig) { return flytt(tmp, endelig, 0); }

std::error_code leggInn(const std::string& tmp, const std::string& endelig)
{
    return flytt(tmp, endelig, RENAME_NOREPLACE);
}

}  // namespace fil
