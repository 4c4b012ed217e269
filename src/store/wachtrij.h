// The lock queue as it is looked at from outside: which keys are reserved. It names no owner, so a key that a dead
// program left behind looks like a living user's; both stay until ixremake is asked to clear them.
#pragma once
#include "store/ix.h"
#include <string>
#include <vector>

namespace zg {

// The parts of a key value as people read them: "4711 ABC". Texts stay in code page 850.
std::string IXSLEUTELTEKST(const IXKEYDEF& def, const uint8_t* waarde);

// The reserved keys in the queue of an index, in that form; none when the block is no queue of this header, whose
// definitions must make sense (IXDEFFOUT). *blok: the block as it stands when asked for; zeros when it is no queue.
std::vector<std::string> IXRESERVERINGEN(int idxfd, const IXHEADER& h, struct IXKNOOP* blok = nullptr);

} // namespace zg
