// Replicated volumes, on which bytes may be old (docs/hosts.md): which of its servers is good for a file such a file system
// asks when the name is looked up, and not at each read. So there a name is looked up again by who has its file open:
// before the first read, or question of size, behind each lock that was got, and before any other when the last look is
// longer ago than NAAMVERS. All of it hangs in the table of system calls (shared/syscalls.h); elsewhere nothing is asked.
// ZGGEDEELD=replica in the environment: every directory counts as on one, for tests.
#pragma once
#include <string>

namespace zg {

inline constexpr int NAAMVERS = 50; // milliseconds

void IOREPLICABIJ(const std::string& pad); // of a file system of FUSE, from the root: is that one?

void IONAAMSLOT();       // a lock was got
void IONAAMOPEN(int fd); // a name was looked up: it was opened
void IONAAMVERS(int fd); // is going to be read

} // namespace zg
