// What kind of file system a directory is on: of this machine alone, or shared with others. On a shared one nothing is
// mapped, every call goes over a wire, a lock may be lost without its holder's doing, and process numbers are those of
// several machines. ZGGEDEELD=1 in the environment (or "replica", see shared/replica.h): every directory counts as shared, for tests.
#pragma once

namespace zg {

struct IOSOORT {
    bool gedeeld;
    bool kaart;  // a mapping and the calls of others are the same pages
    bool zetten; // and a block that stands is written over in its own place, which needs no room
};
IOSOORT IOSOORTVAN(int fd); // of an open file or directory

// Is the data directory on a shared one, or any file that IOSOORTVAN was asked about? Asks the system once.
bool IOGEDEELD();

// On a shared file system: how many microseconds to wait behind the n-th refusal (n from 0) of a lock that others hold for
// moments only. The first ones cost a turn over the wire, which is pause enough; then by chance, so that two hosts don't
// keep step, and longer and longer.
int IONETPAUZE(int n);
void IOWACHT(int n, int us); // that long on a shared one, `us` on any other

} // namespace zg
