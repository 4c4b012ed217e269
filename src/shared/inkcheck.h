// The check of the price file: every set with its chain, periods that overlap, groups that nobody has, the free chain. It
// reads only and takes no lock: beside a writer it may meet a change half done. The repair gives lost groups back. For the
// operators' check and tests; the price file and DTSYS.TXT are open.
#pragma once
#include "shared/registerrec.h"
#include <functional>
#include <string>
#include <vector>

namespace zg {

struct inkkwaal {
    seriesleutel serie; // zeros: of no set
    std::string tekst;  // "DTIPG.TXT record 12: ..."
};
struct inktelling {
    int64_t sets, groepen, vrij, verloren;
};

// Empty when sound; groups that nobody has are only counted, since a broken-off write may leave them. `bij` is called with
// each set in key order, sound or not, `los` behind all of them with each group that has
// something in it and that nobody has; both may be empty.
std::vector<inkkwaal> ink_controle(inktelling* telling, const std::function<void(const prijsset&)>& bij = {},
                                   const std::function<void(const prijsgroeprec&)>& los = {});
// Groups that nobody has into the free chain, which is made anew when it makes no sense; those that bear the name of a
// damaged set stay, and those that `blijft` keeps. Nothing is done while a set leads outside the file: its records would be
// given out again. How many came back that nobody had; -1 when the disk refused, which was told. *opnieuw: the chain was
// made anew.
int64_t ink_herstel(const std::function<bool(const prijsgroeprec&)>& blijft = {}, bool* opnieuw = nullptr);

} // namespace zg
