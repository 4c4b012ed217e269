// Who is in the way, in an operator's words: "process 4711, zgbestel, user Joke".
#pragma once
#include <cstdint>
#include <string>

namespace zg {

// A process by its number, its program, and its user when a slot of DTSYS.TXT (an open descriptor of it, -1 without) is
// held by it. Empty for 0.
std::string wie_is(int64_t proces, int dtsys);
// Who keeps a write lock off a region of the file at `pad`, open as `fd`: " by process ...", empty when nobody does. The
// user is looked up in the DTSYS.TXT of its directory, or of the one above it; that stays open, since a close would drop
// the locks that this program has there.
std::string door_wie(const std::string& pad, int fd, int64_t start, int64_t lengte);
// The same of a program that has the file open without a lock; empty when the system doesn't let us see.
std::string open_bij(const std::string& pad);

} // namespace zg
