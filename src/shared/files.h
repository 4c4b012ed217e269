// File helpers: tests on paths, unique temporary names, copy and move, directory scans, scrambled strings.
#pragma once
#include <cstdint>
#include <string>

namespace zg {

int IOEXISTS(const char* pad);
int IOISDIR(const char* pad);
int64_t IOSIZE(const char* pad); // -1 when absent
int IOUNLINK(const char* pad);   // 1 if it is gone
int IOCHDIR(const char* pad);
const char* IOTMPNAM(const char* map, const char* prefix); // static; empty on failure
int IOCOPY(const char* van, const char* naar, int hoe);    // hoe <0 refuse existing, 0 overwrite, >0 append
int IOMOVE(const char* van, const char* naar, int overschrijf);
// Directory scan: 'O' open with a pattern, 'N' next name into the buffer, 'C' close. kind 2: directories.
// Scans nest to 10 deep.
int DIRECTORY(char letter, char* patroon_of_naam, int kind);
int DIRECTORYAANTAL();              // of the scan on top, after 'O'
int DIRECTORYLENGTE();              // longest length, at least 12
const char* DIRECTORYNAAM(int index); // from 0
int FILES_PRESENT(const char* patroon);
int64_t IODISKFREE();
int64_t IODIRSIZE(const char* map);
int IOMAXFILES();
const char* IOBASENAME(const char* pad);
// In place; SCRAMBLE needs room for one byte more and the NUL.
void SCRAMBLE(char* s);
void UNSCRAMBLE(char* s);

// The lock primitive, one loop around fcntl: 'S' test-and-hold (read lock), 'E' write lock, 'T' test, 'U' release.
// Never blocks; 1 or 0. Length 0: to the end of the file.
int IOLOCK(char letter, int fd, int64_t start, int64_t lengte);

} // namespace zg
