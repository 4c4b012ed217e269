// The master tables held against each other and against the fixed tables, and the numbers that orders are held against.
// They are read off their data files, record by record.
#pragma once
#include "tools/keurwerk.h"
#include <set>

namespace zg {

// The numbers that a table has. Of one that can't be read each number counts as there; 0 is none.
struct keurnummers {
    bool gelezen = false;
    std::set<int32_t> alle = {};
    bool kent(int32_t nr) const { return nr == 0 || !gelezen || alle.contains(nr); }
};
struct stamboek {
    keurnummers leveranciers, merken, groepen, maatsoorten, kleuren, omzetgroepen;
};
stamboek stamboek_lees();

// One line a table. `heel`: may its trees be walked? DTSYS.TXT is open, and the firm's settings are read.
keurbestanden stam_keur(const stamboek& boek, const std::function<bool(const char* naam)>& heel);

} // namespace zg
