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
// The working directory from the root, asked for once: whoever goes to another goes by IOCHDIR. Empty when it can't be told.
const std::string& IOHIER();
// A name that is free at this moment: prefix (4 characters at most), two letters, two digits. Static; empty
// on failure. Nothing is left on disk: the caller makes the file.
const char* IOTMPNAM(const char* map, const char* prefix);
extern int
    IOTMPSLOT; // of the user: on a shared file system the digits, since no two machines have the same; 0 none
// hoe <0 refuse existing, 0 overwrite, >0 append. Locks both files; a target that was begun by a failing copy
// goes again, a part that was appended stays. A file is never copied onto itself: 0.
int IOCOPY(const char* van, const char* naar, int hoe);
// The target is replaced whole or not at all; the source stays when the answer is 0.
int IOMOVE(const char* van, const char* naar, int overschrijf);
// Directory scan: 'O' open with a pattern (1 when anything matches; else nothing is left open), 'N' next name
// into the buffer of DIRNAAM bytes, 'C' close. kind 2: directories, "." and ".." among them. Scans nest to 10
// deep. A pattern with a directory gives names with that directory's full name in front, one without gives
// bare names. Wildcards are '*' and '?', or skipping directives of sscanf, as in "DTKL%*4d.TXT"; no match for
// any other directive.
inline constexpr int DIRNAAM = 1024;
inline constexpr int DIRPATROON = 80;
int DIRECTORY(char letter, char* patroon_of_naam, int kind);
int DIRECTORYAANTAL();                // of the scan on top, after 'O'
int DIRECTORYLENGTE();                // longest length, at least 12
const char* DIRECTORYNAAM(int index); // from 0
// Does a name match '*' and '?', letters in either case?
int IOPAST(const char* patroon, const char* naam);
// Matching plain files. Without "%*" in the pattern: letters in either case, and "NAME.*" takes "NAME" too.
int FILES_PRESENT(const char* patroon);
int64_t IODISKFREE();               // blocks of "."; 2147483647 when unknown
int64_t IODIRSIZE(const char* map); // bytes in the plain files of a directory; null: this one
int IOMAXFILES();                   // descriptors that can still be opened, 200 at most
const char* IOBASENAME(const char* pad);
// Hide a short text and show it again, in place; SCRAMBLE needs room for one byte more and the NUL. The same
// text gives other bytes each second: compare only after UNSCRAMBLE.
void SCRAMBLE(char* s);
void UNSCRAMBLE(char* s);
extern int64_t (*SCRAMBLEKLOK)(); // seconds; tests replace it

// The lock primitive, one loop around fcntl: 'S' test-and-hold (read lock), 'E' write lock, 'T' test, 'U'
// release. Never blocks; 1 or 0. Length 0: to the end of the file.
int IOLOCK(char letter, int fd, int64_t start, int64_t lengte);
// Process that keeps a write lock off the region, 0 when none does, -1 when it has no number here. On a shared file system
// a number may be that of a process of another machine, and here another's.
int64_t IOLOCKPID(int fd, int64_t start, int64_t lengte);
// A write lock on the whole file that belongs to the open file and not to the process: who inherits the descriptor has it
// too, and it goes with the last of them. 1, or 0 with errno, EAGAIN when another has it.
int IOLOCKERF(int fd);
// lockf from the present position: 3 takes, waiting as long as it must, 13 releases; 4 and 14 the same from
// the end of the file. 0 when the length is below 1 or the descriptor can't be locked.
int IOFLOCK(int fd, int commando, int64_t lengte);
// Called after each write to an index or data file, and by IOCOPY. Does nothing; answers 0.
extern int (*IXCOMMITHOOK)();

} // namespace zg
