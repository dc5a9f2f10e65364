// Putting a finished file in place so that it survives a kill and a power cut: the file's data
// reach the disk before its new name does, and the folder's entry reaches the disk before the
// caller reports success. A reader then finds the old file or the whole new one, never a mix.
#pragma once

#include <string>
#include <system_error>

namespace fil {

// Flushes a file's data to the disk.
std::error_code synk(const std::string& sti);
// Flushes a folder's entries (names made, renamed or removed) to the disk.
std::error_code synkMappe(const std::string& mappe);
// Asks the system to start writing the file's changed data to the disk, without waiting for
// it: a long write then finds little left to wait for at its final flush.
void begynnSkriving(const std::string& sti);
// Flushes tmp, renames it over endelig and flushes the folder; the first error, if any.
std::error_code byttInn(const std::string& tmp, const std::string& endelig);
// The same for a name that must not exist yet: file_exists, and tmp left as it is, when another
// process made it first.
std::error_code leggInn(const std::string& tmp, const std::string& endelig);

}  // namespace fil
