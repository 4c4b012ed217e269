// Who holds a lock: every running program keeps its own user slot locked, so the process that is in the way
// names its user.
#pragma once
#include <cstddef>
#include <cstdint>

namespace zg {

struct ICB;
struct gebruikerslot;

// Whose program has a region locked? niemand: nobody has, or no user that can be told by name. elders: one on another
// machine of a shared file system. bekend: *slot is his, who may be there too. Never a wrong one: where process
// numbers leave it open there is no name.
enum class Houder { niemand, bekend, elders };
// By what IOLOCKPID answers; dtsys: DTSYS.TXT; fd: the file that is locked, -1 where that isn't known.
Houder houder_van(int64_t proces, int dtsys, gebruikerslot* slot, int fd = -1);
Houder houder_slot(int fd, int64_t start, int64_t lengte, gebruikerslot* slot);
// Text that names the holder of a region. On entry `tekst` may hold "PROG" (a program is in use) or '~' and a
// word (that is in use); else it is about information. ruimte: bytes of `tekst`; 80 holds every such text.
// 1 when it names a user or another machine, 0 when the holder is unknown or gone.
int houder_tekst(char* tekst, size_t ruimte, int fd, int64_t start, int64_t lengte);
// A one-line window above the status line with two texts behind each other, for 2 seconds. Without a screen
// only the wait.
void houder_toon(const char* kop, const char* tekst);
// The wait routine for IXWAITHOOK: names the holder of the record lock at the handle's currec, or the reserved key.
void houder_wacht(ICB* icb);

} // namespace zg
