// Between the files of module ioink: what stands in DTIPG.TXT, its free chain in system record 9, and one set with the
// records of its chain. ioink.h is for everybody else.
#pragma once
#include "shared/ioink.h"
#include "shared/sysrec.h"
#include <string>

namespace zg {

inline constexpr int INK_SYSRECORD = 9;
inline constexpr char INK_GROEPEN[] = "DTIPG.TXT";
inline constexpr auto INK_RECORD = static_cast<int64_t>(sizeof(prijsgroeprec));

// The two files as they are open.
struct inkbestand {
    ICB* dtipa; // null: closed
    int fd;     // of the groups, -1
    int modus;
};
extern inkbestand ink;

// A record of the chain and where it stands.
struct inkrecord {
    int32_t nr;
    prijsgroeprec rec;
};

// What is wrong with a chain: the number is shown.
enum class Inkfout { geen = 0, plaats = 1, lezen = 2, andere = 3, maten = 4 };

struct inkset {
    prijsset set;
    std::vector<inkrecord> keten; // up to the fault
    Inkfout fout;
    int32_t waar; // the record with it
};
// The chain of a set, whole and its own; else what came before the fault, and the record with it.
Inkfout ink_keten(const prijsset& set, std::vector<inkrecord>* keten, int32_t* waar);
bool ink_van_set(const prijsgroeprec& rec, const prijsset& set);
bool ink_leeg(prijsgroeprec rec); // zeros but for its link: a free one
// A box about a damaged set; not `steeds`: once a set while the program runs.
void ink_meld(const prijsset& set, Inkfout fout, int32_t waar, bool steeds);
int64_t ink_records(); // that the file of groups has room for, a cut one too

// The sets under the first parts of the key (3: of a series, 4: of a set number of it, 5: one), by last day.
std::vector<inkset> ink_verzamel(const seriesleutel& serie, int delen, uint16_t setnr = 0, uint16_t tot = 0);
bool ink_heel(const inkset& s); // false: its chain is damaged, which was told

// System record 9, and userstate 10, while an object stands: one writer at a time.
class inkslot {
public:
    inkslot();
    ~inkslot();
    inkslot(const inkslot&) = delete;
    inkslot& operator=(const inkslot&) = delete;
    // Give chains their records and write them: those at the end of the file first, which nobody can reach yet, then
    // the free chain without those that come out of it, then these. The records get their numbers and links. False:
    // refused, told, and all as it was. A free chain that makes no sense stops the program.
    bool schrijf(std::vector<std::vector<inkrecord>*> ketens);
    void terug();                                        // schrijf() never was
    bool geef_vrij(const std::vector<int32_t>& nummers); // in this order to the head of the free chain

    bool opnieuw(const std::vector<int32_t>& nummers); // these, and no others, are the free chain
    const sysprijs& vrij() const { return vrij_; }

private:
    const uint8_t stond_; // 10 and above within a step that is marked already
    sysprijs vrij_;
    bool bewaar();
    bool zet(int32_t nr, const prijsgroeprec* rec, size_t aantal);
    // Before schrijf(): the slot, the end of the file and the free records that were taken.
    sysprijs was_;
    int64_t einde_ = -1;
    std::vector<inkrecord> genomen_;
};

} // namespace zg
