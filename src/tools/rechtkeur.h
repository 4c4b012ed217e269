// May everybody who works in the directory read and write its files? They are made with 0660 and the group of their directory;
// what came in by hand, out of a copy or an archive, often isn't so.
#pragma once
#include "tools/keurwerk.h"
#include <sys/types.h>

namespace zg {

// One line a file that the package knows and that has wrong rights, or an owner whom this machine doesn't know.
keurbestanden rechten_keur();
// The rights of new files for those that are wrong, as far as the user may give them, and are no links: what was done,
// a line each.
std::vector<std::string> rechten_herstel();

} // namespace zg
