// The pick list over an indexed table: LIJST's callbacks on a pair.
#include "sub/stamlijst.h"
#include "shared/report.h"
#include "shared/teksten.h"
#include "sub/rangorde.h"
#include "term/ingave.h"
#include "term/lijst.h"
#include "term/prompt.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zg {
namespace {

// The list that runs. F10 may open a screen with lists of its own, also over this table: it is put back then.
struct Loop {
    const Stamlijst* tabel;
    int welke;
    size_t sleutel; // of tabel->sleutels
    LIJST* lijst;
    uint8_t rij[IXRECMAX];
    Rangorde orde{}; // of the key in force
} nu;

ICB* icb() {
    return *nu.tabel->icb;
}

bool past() {
    return !nu.tabel->past || nu.tabel->past(nu.rij, nu.welke);
}

bool is_er(size_t sleutel) {
    return sleutel < nu.tabel->sleutels.size() && nu.tabel->sleutels[sleutel].nummer <= icb()->h.nkeys;
}

// Most steps of a walk: where records and index disagree a walk can come back to where it was.
int stappen() {
    return std::max(icb()->h.nrecs, 0) + 1;
}

// Step over the records that aren't listed, in the direction of the step; the place stays when there is none.
int32_t haal(int32_t stap) {
    int32_t recnr = static_cast<int32_t>(nu.lijst->positie), goed = recnr;
    const int richting = stap < 0 ? -1 : 1;
    int gedaan = 0;
    if (stap == 0) {
        if (!IXSKIP(icb(), nu.rij, 0, 0, &recnr) || !past())
            return 0;
        nu.lijst->positie = static_cast<uint32_t>(recnr);
        return 1;
    }
    for (int over = abs(stap), rest = stappen() + over; over > 0 && rest > 0; rest--) {
        if (!IXSKIP(icb(), nu.rij, 0, richting, &recnr))
            break;
        if (past())
            goed = recnr, gedaan++, over--;
    }
    nu.lijst->positie = static_cast<uint32_t>(goed);
    return gedaan != 0 && IXGET(icb(), nu.rij, goed) == 1;
}

// Stand on the first listed record from the key in hand on; else on the last one.
bool sta() {
    bool er = IXFIRSTR(icb(), nu.rij, 0) == 1;
    for (int rest = stappen(); er && !past(); rest--)
        er = rest > 0 && IXNEXT(icb(), nu.rij) == 1;
    if (!er) {
        memset(nu.rij, 0xFF, static_cast<size_t>(std::clamp<int>(icb()->h.reclen, 0, IXRECMAX)));
        er = IXLAST(icb(), nu.rij) == 1;
        for (int rest = stappen(); er && !past(); rest--)
            er = rest > 0 && IXPREVR(icb(), nu.rij, 0) == 1;
    }
    if (er)
        nu.lijst->positie = static_cast<uint32_t>(icb()->currec);
    return er;
}

// Which row of how many: the table is walked once for each order.
int64_t rang() {
    auto recnr = static_cast<int32_t>(nu.lijst->positie);
    if (!nu.orde.genomen()) {
        nu.orde.neem(icb(), [](const void* rec) { return !nu.tabel->past || nu.tabel->past(rec, nu.welke); });
        IXSKIP(icb(), nu.rij, 0, 0, &recnr);
    }
    return nu.orde.van(static_cast<int32_t>(nu.lijst->positie));
}

int64_t aantal() {
    rang();
    return nu.orde.aantal();
}

void open_record() {
    const Loop bewaard = nu;
    const int sleutel = IXSLEUTEL(icb());
    nu.tabel->record(nu.tabel->code(nu.rij), nu.welke);
    nu = bewaard;
    nu.orde.vergeet();
    IXSWITCH(icb(), sleutel);
    nu.lijst->modus = 1;
    SCHERM.laatste = K_F10;
    SCHERM.vlag &= ~static_cast<uint32_t>(V_LEEG);
}

void toets() {
    char tekst[21] = "";
    const Stamsleutel& s = nu.tabel->sleutels[nu.sleutel];
    const bool meer = is_er(1);
    const int rij = LIJSTVELDRIJ();
    SCRCLREOL(rij, 2);
    SCRPUT(A_LABEL, rij, 2, "%s ", TXT(*s.vraag));
    if (meer) {
        SCRPUT(A_LABEL, rij, 24, "%s", TXT(T_TAB_SORTERING));
        TOETSAAN(K_TAB);
    }
    if (nu.tabel->record)
        TOETSAANMET(K_F10, T_HELP_F_RECORD);
    INGAVE(rij, 11, s.formaat, &SCHERM.toets[key_cancel], &SCHERM.toets[key_f3], tekst);
    if (SCHERM.laatste == K_F10 && nu.tabel->record) {
        open_record();
        return;
    }
    if (SCHERM.laatste == K_F3)
        SCHERM.vlag |= V_LEEG;
    if (SCHERM.laatste == K_TAB) {
        nu.sleutel = is_er(nu.sleutel + 1) ? nu.sleutel + 1 : 0;
        IXSWITCH(icb(), nu.tabel->sleutels[nu.sleutel].nummer);
        nu.orde.vergeet();
        SCHERM.vlag |= V_LEEG;
        return;
    }
    if ((SCHERM.vlag & V_LEEG) || TOETSWEG())
        return;
    memset(nu.rij, 0, sizeof nu.rij);
    s.zet(nu.rij, tekst);
    sta();
    nu.lijst->modus = 2;
}

void kop() {
    SCRPUT(A_LABEL, 1, 2, "%s", TXT(*nu.tabel->kop));
}

const char* regel() {
    static std::string tekst;
    tekst = nu.tabel->regel(nu.rij);
    return tekst.c_str();
}

} // namespace

bool stamlijst(const Stamlijst& tabel, const char* titel, int welke, int32_t* code) {
    const Loop bewaard = nu; // of a list that this one was opened over
    ICB* const pair = *tabel.icb;
    bool gekozen = false;
    nu = {&tabel, welke, 0, nullptr, {}, {}};
    const int sleutel = pair ? IXSLEUTEL(pair) : 0;
    if (pair) {
        nu.lijst = LIJSTNEW(haal, toets, kop, regel);
        if (!nu.lijst)
            NOMEM("stamlijst", 1);
        IXSWITCH(pair, tabel.sleutels[0].nummer);
        tabel.zet_code(nu.rij, *code);
    }
    if (pair && sta()) {
        snprintf(nu.lijst->titel, sizeof nu.lijst->titel, " %s ", titel);
        nu.lijst->breedte = tabel.breedte;
        nu.lijst->aantal = aantal;
        nu.lijst->rang = rang;
        gekozen = LIJSTRUN(nu.lijst, 0) != 0;
        if (gekozen)
            *code = tabel.code(nu.rij);
    } else {
        MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
    }
    if (pair) {
        LIJSTDEL(nu.lijst);
        IXSWITCH(pair, sleutel);
    }
    nu = bewaard;
    return gekozen;
}

} // namespace zg
