// The pairs of a directory as the store sees them: header, trees, free chain (store/diepcheck.h), before anything is read by
// their keys: a walk along a broken tree would tell what isn't so, or end the tool.
#pragma once
#include "tools/keurwerk.h"
#include <set>

namespace zg {

// Names of the pairs in a directory ("" or ending in "/"): each index, and each data file that the dictionary knows.
std::vector<std::string> keur_paren(const std::string& map);

// One line a pair; *stuk: those that are to be rebuilt. They are read without a lock; what looks wrong is looked at again
// with the header held, for which it waits so many seconds. Who can't be held off that long is noted. The files are opened
// and closed here: nothing of them is open or locked by this process.
keurbestanden bomen_keur(const std::vector<std::string>& namen, int seconden, std::set<std::string>* stuk);
// Temporary indexes, as "DTSER.12": likewise, each over the data file of its name.
keurbestanden bijbomen_keur(const std::vector<std::string>& namen);
bool is_bijboom(const std::string& naam); // is that a name of one?

} // namespace zg
