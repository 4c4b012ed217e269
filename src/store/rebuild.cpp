// Rebuild of an index from its data file, in three steps. 1: every record is read once and its keys are set aside;
// 2: the keys are sorted and the trees grown in ranks, as one insert after the other by record number would grow
// them, the keys of a file taking turns by pieces of 16 KB of records, and the blocks made; 3: these are written.
// Until step 3 nothing of the pair changes. Then the header goes first, marked as being changed and with all
// definitions, and last, unmarked: what is killed between the two is refused by all, and can be built again.
// The index keeps its file and so do the locks on it; a file renamed over it would leave other programs that have
// the pair open with the old one in hand.
#include "store/rebuild.h"
#include "shared/files.h"
#include "store/bestand.h"
#include "store/blokbak.h"
#include "store/groei.h"
#include "store/kop.h"
#include "store/node.h"
#include "store/sorteer.h"
#include "store/spoel.h"
#include "store/teksten.h"
#include "store/voortgang.h"
#include "store/wachtrij.h"
#include "term/scherm.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <new>
#include <optional>
#include <unistd.h>

namespace zg {
namespace {

constexpr int STUK = 16384;            // bytes of records for which one key after the other has its turn
constexpr int LEESBUFFER = 256 * 1024; // bytes read at once, fewer of a small file
constexpr int VENSTER = 1 << 18;       // records whose ranks are in memory at once
constexpr int64_t RECORDSMAX = INT32_MAX;

// A key on its way from records to blocks.
struct Sleutelbouw {
    const IXKEYDEF& def;
    Spoel ruw, klaar; // entries by record, entries by key
    std::optional<Rangen> rangen;
    std::optional<Groei> groei;
};

class Bouw {
public:
    Bouw(ICB* icb, std::vector<std::string>* gewist)
        : icb_(icb), gewist_(gewist), pad_(IXINDEXPAD(icb->path)) {
        for (int k = 0; k < icb->h.nkeys; k++)
            sleutels_.push_back({icb->h.keydef[k], Spoel(pad_), Spoel(pad_), {}, {}});
    }
    bool bereid_voor(int64_t records); // steps 1 and 2; false: no room, nothing was changed
    void zet_op_zijn_plaats();         // step 3

private:
    template <class F> bool elk_record(F doe) const;
    bool verzamel();
    bool groei();
    IXKNOOP wachtrij();
    bool reserveer() const;
    bool bouw_boom(int sleutel);
    void keten_vrijen();
    void vooruit(int64_t n) {
        gedaan_ += n;
        VOORTGANG(VG_TOON, gedaan_, records_ * static_cast<int64_t>(1 + 2 * sleutels_.size()));
    }
    size_t reclen() const { return static_cast<size_t>(icb_->h.reclen); }
    // A slot too short for its link is free without being in the chain.
    bool in_keten() const { return icb_->h.reclen >= 5; }

    ICB* icb_;
    std::vector<std::string>* gewist_;
    std::string pad_;
    std::vector<Sleutelbouw> sleutels_;
    std::optional<Blokbak> blokken_;
    int64_t records_ = 0, levend_ = 0, gedaan_ = 0;
    int64_t keten_anders_ = -1; // first free slot whose link is not what it shall be
    int32_t freehead_ = -1;
};

bool Bouw::bereid_voor(int64_t records) {
    records_ = records;
    const std::string map = pad_;
    if (!verzamel())
        return false;
    const int per_stuk = STUK / icb_->h.reclen;
    for (Sleutelbouw& s : sleutels_) {
        s.rangen.emplace(map, records_, std::max(VENSTER / per_stuk, 1) * per_stuk);
        if (!SORTEER(s.def, s.ruw, s.klaar, *s.rangen, map, [this](int64_t n) { vooruit(n); }))
            return false;
    }
    if (!groei())
        return false;
    blokken_.emplace(map, int{icb_->h.nblocks});
    const IXKNOOP rij = wachtrij();
    bool goed = blokken_->zet(WACHTRIJBLOK(icb_), &rij);
    for (int k = 1; goed && k <= icb_->h.nkeys; k++)
        goed = bouw_boom(k);
    return goed && reserveer();
}

// The queue block to write. Its lock, which others take without the header's, is held from here to the end.
IXKNOOP Bouw::wachtrij() {
    const int64_t plaats = int64_t{WACHTRIJBLOK(icb_)} * IXBLOK;
    for (int poging = 1; !IOLOCK('E', icb_->idxfd, plaats, IXBLOK); poging++)
        if (poging % 300 == 0)
            IXWAITHOOK(icb_);
        else
            usleep(1000);
    IXKNOOP oud, rij{};
    const std::vector<std::string> sleutels = IXRESERVERINGEN(icb_->idxfd, icb_->h, &oud);
    rij.keyno = 1;
    if (gewist_) {
        gewist_->insert(gewist_->end(), sleutels.begin(), sleutels.end());
    } else {
        rij.count = oud.count;
        memcpy(rij.entries, oud.entries, size_t{oud.count} * icb_->h.keydef[0].keylen);
    }
    return rij;
}

// Every record in turn, as doe(number, bytes); false at the first that can't be read or that `doe` refuses.
template <class F> bool Bouw::elk_record(F doe) const {
    const int64_t per_keer =
        std::clamp<int64_t>(LEESBUFFER / icb_->h.reclen, 1, std::max<int64_t>(records_, 1));
    std::vector<uint8_t> buffer(static_cast<size_t>(per_keer) * reclen());
    for (int64_t nr = 0; nr < records_;) {
        const int64_t n = std::min(per_keer, records_ - nr);
        const size_t bytes = static_cast<size_t>(n) * reclen();
        if (SYSLEES(icb_->datfd, buffer.data(), bytes, nr * icb_->h.reclen) != static_cast<ssize_t>(bytes))
            return false;
        for (uint8_t *rec = buffer.data(), *einde = rec + bytes; rec < einde; rec += reclen(), nr++)
            if (!doe(static_cast<int32_t>(nr), rec))
                return false;
    }
    return true;
}

bool Bouw::verzamel() {
    constexpr int PER_STAP = 4096;
    uint8_t entry[IXSLEUTELMAX + 8];
    return elk_record([&](int32_t nr, const uint8_t* rec) {
        if (nr % PER_STAP == PER_STAP - 1)
            vooruit(PER_STAP);
        if (!IXRECLIVE(rec, icb_->h.reclen)) {
            if (in_keten()) {
                if (keten_anders_ < 0 && LEES32(rec + 1) != freehead_)
                    keten_anders_ = nr;
                freehead_ = nr;
            }
            return true;
        }
        levend_++;
        for (Sleutelbouw& s : sleutels_) {
            IXMAAKSLEUTEL(s.def, rec, nr, s.def.keylen, entry);
            ZET32(entry + s.def.keylen, nr);
            if (!s.ruw.schrijf(entry, s.def.keylen + size_t{4}))
                return false;
        }
        return true;
    });
}

bool Bouw::groei() {
    int32_t nblocks = icb_->h.nkeys + 2;
    const int per_stuk = STUK / icb_->h.reclen, venster = std::max(VENSTER / per_stuk, 1) * per_stuk;
    std::vector<const uint32_t*> rang(sleutels_.size());
    for (size_t k = 0; k < sleutels_.size(); k++)
        sleutels_[k].groei.emplace(static_cast<int32_t>(k + 1), sleutels_[k].def.maxent, levend_);
    for (int64_t nr = 0; nr < records_; nr += per_stuk) {
        if (nr % venster == 0)
            for (size_t k = 0; k < sleutels_.size(); k++)
                if (!(rang[k] = sleutels_[k].rangen->laad(nr / venster)))
                    return false;
        const int64_t in_venster = nr % venster, n = std::min<int64_t>(per_stuk, records_ - nr);
        for (size_t k = 0; k < sleutels_.size(); k++)
            for (const uint32_t *r = rang[k] + in_venster, *einde = r + n; r < einde; r++)
                if (*r != Rangen::GEEN && !sleutels_[k].groei->voeg(*r, &nblocks))
                    return false;
    }
    for (Sleutelbouw& s : sleutels_)
        s.rangen.reset();
    icb_->h.nblocks = nblocks;
    return true;
}

// Room on the disk for what the index grows by, so that step 3 doesn't end half-way for want of it.
bool Bouw::reserveer() const {
    const int64_t nu = SYSOMVANG(icb_->idxfd), straks = int64_t{icb_->h.nblocks} * IXBLOK;
    return straks <= nu || SYS.ruimte(icb_->idxfd, nu, straks - nu) == 0 || errno != ENOSPC;
}

void Bouw::zet_op_zijn_plaats() {
    ICB* icb = icb_;
    uint8_t oud[IXBLOK]{};
    const bool gelezen = IXBLOKLEES(icb->idxfd, 0, oud, sizeof oud) == IXBLOK;
    icb->h.nrecs = static_cast<int32_t>(records_);
    icb->h.freehead = freehead_;
    icb->h.version = IXVERSIE;
    icb->h.busy = 1;
    uint8_t kop[IXBLOK]{};
    uint32_t telling = 0;
    memcpy(&telling, oud + TELPLAATS, sizeof telling);
    bool geschreven = IXKOPSCHRIJF(icb->idxfd, icb->h, K_BEZIG, &telling);
    if (geschreven) {
        keten_vrijen();
        geschreven = blokken_->schrijf(icb->idxfd);
    }
    if (!geschreven) {
        const int fout = errno;
        // Nothing but the header was touched yet: that as it was, and the index is what it was.
        if (gelezen && keten_anders_ < 0 && !blokken_->begonnen() &&
            (IXBLOKSCHRIJF(icb->idxfd, 0, oud) ||
             (IXBLOKLEES(icb->idxfd, 0, kop, sizeof kop) == IXBLOK && memcmp(kop, oud, sizeof kop) == 0)))
            icb->h.busy = 0;
        errno = fout;
        IXSCHIJFFOUT(icb, icb->idxfd, 0, IXBLOK);
    }
    IXCOMMITHOOK();
    const int64_t lengte = int64_t{icb->h.nblocks} * IXBLOK;
    if (SYSOMVANG(icb->idxfd) != lengte && SYS.ftruncate(icb->idxfd, lengte) < 0)
        IXSCHIJFFOUT(icb, icb->idxfd, lengte, 0);
    icb->h.busy = 0; // to the disk with IXCLOSE
}

// Each free slot gets the number of the free slot before it. Slots that have it already are left alone.
void Bouw::keten_vrijen() {
    if (keten_anders_ < 0)
        return;
    int32_t vorige = -1;
    const bool gelezen = elk_record([&](int32_t nr, uint8_t* rec) {
        if (IXRECLIVE(rec, icb_->h.reclen))
            return true;
        if (LEES32(rec + 1) != vorige) {
            ZET32(rec + 1, vorige);
            icb_->currec = nr;
            IXWRREC(icb_, rec);
        }
        vorige = nr;
        return true;
    });
    if (!gelezen)
        IXSCHIJFFOUT(icb_, icb_->datfd, 0, icb_->h.reclen);
}

// The leaves from left to right out of the sorted entries; the nodes above fill up on the way.
bool Bouw::bouw_boom(int sleutel) {
    Sleutelbouw& s = sleutels_[static_cast<size_t>(sleutel - 1)];
    const size_t keylen = s.def.keylen, maat = keylen + 4;
    const Groei& g = *s.groei;
    struct Niveau {
        IXKNOOP knoop{};
        Groei::Loop loop;
        Groei::Knoop doel{0, 0};
    };
    std::vector<Niveau> niveaus(static_cast<size_t>(g.diepte()));
    auto begin = [&](size_t n) {
        Niveau& nu = niveaus[n];
        nu.knoop = {};
        nu.knoop.keyno = static_cast<int8_t>(sleutel);
        nu.knoop.level = static_cast<int8_t>(n + 1);
        return g.volgende(static_cast<int>(n + 1), &nu.loop, &nu.doel);
    };
    auto weg = [&](size_t n) { return blokken_->zet(niveaus[n].doel.blok, &niveaus[n].knoop); };
    Spoellezer lezer(s.klaar, 0, s.klaar.lengte(), maat, LEESBUFFER);
    for (size_t n = 1; n < niveaus.size(); n++)
        begin(n);
    while (begin(0)) {
        IXKNOOP& blad = niveaus[0].knoop;
        const int aantal = niveaus[0].doel.aantal;
        for (uint8_t* naar = blad.entries; blad.count < aantal; blad.count++, naar += maat) {
            const uint8_t* entry;
            if (!lezer.volgende(&entry))
                return false;
            if (entry)
                memcpy(naar, entry, maat);
            else
                memset(naar, 0xFF, maat); // the sentinel: the one entry that is in no record
        }
        vooruit(aantal);
        if (!weg(0))
            return false;
        // The highest key goes up, with the block; and on up for as long as it fills a node there.
        for (size_t n = 0; n + 1 < niveaus.size(); n++) {
            Niveau &onder = niveaus[n], &boven = niveaus[n + 1];
            const uint8_t* hoogste = onder.knoop.entries + (onder.knoop.count - 1u) * maat;
            uint8_t* naar = boven.knoop.entries + boven.knoop.count * maat;
            memcpy(naar, hoogste, keylen);
            ZET32(naar + keylen, onder.doel.blok);
            if (n > 0)
                begin(n);
            if (++boven.knoop.count < boven.doel.aantal)
                break;
            if (!weg(n + 1))
                return false;
        }
    }
    s.groei.reset();
    s.klaar.weg();
    return true;
}

// Old header with nothing left of a former version.
bool lees_kop(int fd, IXHEADER* h) {
    return IXBLOKLEES(fd, 0, h, sizeof *h) == static_cast<ssize_t>(sizeof *h);
}

// Records in the data file; -1 when its length is not theirs.
int64_t aantal_records(int fd, const IXHEADER& h) {
    const int64_t lengte = SYSOMVANG(fd);
    return lengte < 0 || lengte % h.reclen || lengte / h.reclen > RECORDSMAX ? -1 : lengte / h.reclen;
}

} // namespace

void IXFIXHDR(ICB* icb) {
    IXEIS(icb, "IXFIXHDR");
    icb->h.nkeys = std::min(icb->h.nkeys, static_cast<int8_t>(IXSLEUTELS));
    for (int k = 0; k < icb->h.nkeys; k++)
        icb->h.keydef[k].maxent = static_cast<uint8_t>(KNOOPRUIMTE / (icb->h.keydef[k].keylen + 4));
}

int IXBLDIX(const char* naam, std::vector<std::string>* gewist) {
    if (IXTIJDELIJKENAAM(naam))
        return 0; // what belongs in it is not to be read from the data file
    const std::string datapad = IXDATAPAD(naam);
    const int idxfd = IXBESTANDOPEN(IXINDEXPAD(naam).c_str(), O_RDWR);
    if (idxfd < 0)
        return 0;
    ICB* icb = IXHANDVAT(naam, 1, idxfd, -1);
    if (!lees_kop(idxfd, &icb->h)) {
        IXLAATLOS(icb);
        return 0;
    }
    IXFIXHDR(icb);
    if (IXDEFFOUT(icb->h)) {
        IXLAATLOS(icb);
        return 0;
    }
    icb->datfd = IXBESTANDOPEN(datapad.c_str(), O_RDWR | O_CREAT);
    if (icb->datfd < 0) {
        IXLAATLOS(icb);
        SCRFATAL(TXT(T_OPEN_MISLUKT), datapad.c_str());
    }
    if (aantal_records(icb->datfd, icb->h) < 0) {
        IXLAATLOS(icb);
        return 0;
    }
    IXLOCK(icb, 1);
    const int64_t records = aantal_records(icb->datfd, icb->h); // others may have written until now
    int goed = 0, fout = 0;
    char titel[96];
    snprintf(titel, sizeof titel, TXT(T_IXBLDIX_TITEL),
             std::string(icb->h.name, strnlen(icb->h.name, 11)).c_str());
    VOORTGANG(VG_OPEN, 0, 0, titel);
    try {
        Bouw bouw(icb, gewist);
        errno = 0;
        goed = records >= 0 && bouw.bereid_voor(records);
        fout = errno;
        if (goed)
            bouw.zet_op_zijn_plaats();
    } catch (const std::bad_alloc&) {
        SCRFATAL("%s", TXT(T_GEHEUGEN_IXREMAKE));
    }
    VOORTGANG(VG_SLUIT);
    IOLOCK('U', icb->idxfd, int64_t{WACHTRIJBLOK(icb)} * IXBLOK, IXBLOK);
    if (goed)
        IXCLOSE(icb);
    else {
        IXLOCK(icb, 11);
        IXLAATLOS(icb);
        errno = fout; // what the disk said, 0 when it was something else
    }
    return goed;
}

} // namespace zg
