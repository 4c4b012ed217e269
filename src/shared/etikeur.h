// The check of labels and codes: every block of DTETI.TXT in one place, chain or free, and what the series say of them;
// codes against their series. It reads only; the repair gives back what nobody has and recounts. Called by the operators'
// check, which walks the series.
#pragma once
#include "shared/ioeti.h"
#include "shared/sysrec.h"
#include <functional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace zg {

struct ICB;

using keurmelding =
    std::function<void(const std::string& regel)>; // one finding, in English, with block or series

struct etitelling { // labels of a series by status
    int32_t in_nota, voorraad, verkopen, correcties;
};

enum class Etiblok : uint8_t { los, keten, vrij };
enum class Etiketen : uint8_t { geen, heel, stuk }; // the chain of a series
struct etikeuring {
    struct blok {
        seriesleutel serie;
        int32_t volgende;
        Etiblok waar;
        uint8_t slecht; // places with a status above 4
        uint8_t per[5]; // places by status
        uint8_t buiten; // labels of a size or branch that there isn't
        bool breuk;     // a series' chain breaks here
    };
    std::vector<blok> blokken;
    std::unordered_map<sleutelwaarde, int32_t> van_serie; // blocks that bear its name
    bool half;                                            // the file ends inside one more
    bool erbuiten;                                        // a chain leads to blocks that the file hasn't got
    bool nullen; // a chain leads to a block without a series, and may go on in others
    std::unordered_map<sleutelwaarde, Etiketen> ketens; // of the series that there are
    std::set<sleutelwaarde> sporen; // series without a record that something else tells of
    sysetiket tellers;
    bool vrijketen_heel; // the free chain and its counters agree, but for the count of blocks
    int64_t labels, fouten, verloren;
};

// Read file and counters; DTETI.TXT is open. False: it can't be read. `bij` is called with each label, VAT apart, and its
// block.
using etiketbezoek = std::function<void(int32_t blok, const etiket& label)>;
bool etikeur_begin(etikeuring* k, const etiketbezoek& bij = {});
// Blocks for which room is taken at once: those of the file, as far as that may be true.
size_t etikeur_vooraf();
// The chain of a series; *telling are its labels. False: damaged, told.
bool etikeur_serie(etikeuring* k, const serrec& serie, etitelling* telling, const keurmelding& meld);
// Behind all series: the free chain, and the blocks that nobody has.
void etikeur_einde(etikeuring* k, const keurmelding& meld);
// Give blocks back that nobody has, and count the free ones: only with counters and free chain whole, or else, when no
// series' chain is damaged or leads outside the file, the free chain made anew. Half a block at the end becomes a free one.
// The caller keeps everybody out. False: refused or not to be repaired, told.
bool etikeur_herstel(etikeuring* k, const keurmelding& meld);

// All codes of DTEAN: valid, one a size, of a series that has the size (`heeft` says), below the counter. With `herstel`
// those of series that are gone are deleted, and a counter that lies behind is moved; `meld` gets what was done then, and
// false is the answer where the disk refused, which was told.
enum class Eanstaat { goed, dubbel, andere_maat, kwijt }; // kwijt: no series
using keurserie = std::function<Eanstaat(const seriesleutel& serie, uint8_t maat)>;
bool eankeur(ICB* dtean, const keurserie& heeft, bool herstel, const keurmelding& meld);

} // namespace zg
