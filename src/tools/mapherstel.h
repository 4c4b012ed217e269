// What a repair of a data directory does besides the register's: indexes, reservations that nobody has, what killed programs
// left, rights. The caller holds group 5 of the batch exclusion. Each step runs in a process of its own, since it opens and
// closes files whose locks are the caller's; a report of the store ends that step alone.
#pragma once
#include "tools/keurwerk.h"
#include <set>

namespace zg {

// Keys in the queues of these pairs, one line a pair. Without a user in, and with nobody who has the pair open, they are
// wrong: who would reserve them again waits for ever.
keurbestanden reserveringen_keur(const std::vector<std::string>& paren);

// What was done goes to standard output, a line each, unless `stil`. False: something was refused, or could not be done.
bool indexen_herstel(const std::set<std::string>& stuk, int wacht, bool stil);
bool reserveringen_herstel(const std::vector<std::string>& paren, bool stil);
bool resten_herstel(bool stil);

} // namespace zg
