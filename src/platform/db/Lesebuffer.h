// Reading the database file in stretches. SQLite asks the system for one 4 KB page at a time;
// a scan of a time index or a window of rows asks for tens of thousands of pages lying close
// together in the file, and each request is a system call. The program's connections read
// the main database file through this layer, which fetches 256 KB at once when a read follows
// closely after the one before and serves the next pages from that stretch.
#pragma once

namespace db {

// The name of the SQLite file layer (VFS) that reads in stretches, registered at the first
// call; the system's own layer does everything else.
const char* lesebuffer();

}  // namespace db
