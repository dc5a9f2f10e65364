// The program's SQLite file layer for its database files. Reading in stretches: SQLite asks
// the system for one 4 KB page at a time; a scan of a time index or a window of rows asks for
// tens of thousands of pages lying close together in the file, and each request is a system
// call. This layer fetches 256 KB at once when a read follows closely after the one before and
// serves the next pages from that stretch. Writing behind: the pages SQLite writes are gathered
// and written by a thread of their own, in runs, while SQLite goes on (an import's 40 000 page
// writes become some 4 000 requests, off the importing thread).
#pragma once

namespace db {

// The name of the SQLite file layer (VFS) that reads in stretches and writes behind,
// registered at the first call; the system's own layer does everything else.
const char* lesebuffer();

}  // namespace db
