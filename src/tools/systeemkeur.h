// The files that every program of the package reads first: the fixed tables, the branches, the settings of the order program.
#pragma once
#include "tools/keurwerk.h"

namespace zg {

// One line a file. DTSYS.TXT is open.
keurbestanden systeem_keur();
// DTSYS.TXT alone is open: the branches can be read (iofil) as long as the check runs. False: they can't.
bool filialen_open();

// Who has what in the directory: locks with process and user, by file. DTSYS.TXT is open and looked at through its one
// descriptor, since closing another would drop its locks.
keurbestanden sloten_keur(const std::vector<std::string>& bestanden);
// The process as people know it (tools/wie.h); "a program" for one that the system doesn't name.
std::string keur_proces(int64_t pid);
// The process that has a user's slot, and its program; empty when none has.
std::string keur_houder(int32_t slot);
// Slots of users who are in, or on their way to their next program.
std::vector<int32_t> wie_zijn_er();

} // namespace zg
