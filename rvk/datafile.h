// The check every datafile passes before Allegro's loader sees it. That
// loader trusts each count and size in the file: a file cut short, or one that
// counts more objects than it holds, crashes it.
#pragma once
#include <allegro.h>
#include <cstddef>
#include <string>

// What keeps Allegro's loader from reading these bytes safely, as a clause
// for the person who made the file ("object 3 is cut short"); empty when
// nothing does. Only what the library reads is vouched for: fonts, pictures,
// and objects that Allegro keeps as plain bytes.
std::string RVK_DatafileProblem(const unsigned char *data, size_t size);

// True when the file can be opened and passes the check. A file that is
// there but fails it is reported in the error log with the reason.
bool RVK_DatafileIsSound(const char *path);

// load_datafile for a file that passes the check, else null.
DATAFILE *RVK_LoadDatafile(const char *path);
