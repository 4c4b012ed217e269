// The master tables held against each other and against the fixed tables, and the numbers that orders are held against.
// They are read off their data files, record by record.
#pragma once
#include "shared/iomaat.h"
#include "tools/keurwerk.h"
#include <array>
#include <map>
#include <set>

namespace zg {

// The numbers that a table has. Of one that can't be read each number counts as there; 0 is none.
struct keurnummers {
    bool gelezen = false;
    std::set<int32_t> alle = {};
    bool kent(int32_t nr) const { return nr == 0 || !gelezen || alle.contains(nr); }
};
struct stamboek {
    keurnummers leveranciers, merken, groepen, maatsoorten, kleuren, omzetgroepen, etiketsoorten,
        deelseizoenen, inkoopcodes, doelgroepen;
    std::set<std::string> valuta;
    std::map<int, std::array<uint8_t, MAATBYTES>> maten; // of a size type, in the firm's own system
    bool kent_doelgroep(char code) const {
        return code == ' ' || doelgroepen.kent(static_cast<uint8_t>(code));
    }
    bool vreemde_maten(int maatsoort, const uint8_t* bits) const; // sizes that it hasn't, where it is known
};
stamboek stamboek_lees();

// One line a table. `heel`: may its trees be walked? DTSYS.TXT is open, and the firm's settings are read.
keurbestanden stam_keur(const stamboek& boek, const std::function<bool(const char* naam)>& heel);

// Notes on what the link tables name and isn't there; those without an index are wrong.
keurbestanden koppel_keur(const stamboek& boek);
// One line a pair whose fields are known: what stands in the records of its data file.
keurbestanden velden_keur(const std::vector<std::string>& paren);

} // namespace zg
