// The four tables of the print directory: made, repaired and read; control texts.
#include "print/printtabel.h"
#include "print/teksten.h"
#include "shared/files.h"
#include "shared/stamrec.h"
#include "shared/syscalls.h"
#include "store/tabel.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <tuple>

namespace zg {
namespace {

constexpr size_t ZEBPRTMAX = 62;
constexpr size_t TABELMAX = 4 * 1024 * 1024; // more isn't a table of printers

void definieer(ICB* icb, std::initializer_list<const char*> teksten) {
    int sleutel = 0;
    for (const char* t : teksten)
        IXUPDFCB(icb, sleutel++, t);
}

template <class R> void schrijf(ICB* icb, const R& rec) {
    uint8_t buffer[IXRECMAX] = {};
    memcpy(buffer, &rec, sizeof rec);
    IXWRITE(icb, buffer);
}

void eerste_printer(ICB* icb) {
    prtrec r{};
    r.code = PRT_SCHERM;
    VASTIN(r.naam, "SCR");
    schrijf(icb, r);
}

void eerste_verbinding(ICB* icb) {
    prtverbinding r{};
    r.code = PRT_SCHERM;
    r.nummer = 1;
    VASTIN(r.naam, "SCR");
    schrijf(icb, r);
}

void eerste_configs(ICB* icb) {
    const struct {
        const char* naam;
        uint16_t kolommen, rijen;
    } rijen[] = {{"SCR-40", 40, PRT_ZONDER_BLADEN}, {"SCR-80", 80, 64}, {"SCR-132", 132, 64}};
    for (uint8_t nummer = 1; const auto& rij : rijen) {
        prtconfig r{};
        r.code = PRT_SCHERM;
        r.nummer = nummer++;
        r.kolommen = rij.kolommen;
        r.rijen = rij.rijen;
        VASTIN(r.omschrijving, rij.naam);
        schrijf(icb, r);
    }
}

const struct {
    const char* naam;
    size_t lengte;
    void (*definieer)(ICB*);
    void (*eerste)(ICB*);
} TABELLEN[PRT_TABELLEN] = {
    {"TR_PTRG", sizeof(prtrec),
     [](ICB* icb) {
         definieer(icb, {"TR_PTR_general,16", "tr_code,I,1,2", "name,C,5,16"});
     },
     eerste_printer},
    {"TR_PTRC", sizeof(prtverbinding),
     [](ICB* icb) {
         definieer(icb, {"TR_PTR_connections,64", "code-id,I,1,2,I,3,3", "code-dev,I,1,2,C,5,44",
                         "cd-name,I,1,2,C,45,64"});
     },
     eerste_verbinding},
    {"TR_PTRP", sizeof(prtconfig),
     [](ICB* icb) {
         definieer(icb, {"TR_PTR_properties,284", "code-id,I,1,2,I,3,3", "cd-cols,I,1,2,I,5,6,I,4,4",
                         "cd-desc,I,1,2,C,9,40"});
     },
     eerste_configs},
    {"TR_PTRCA", sizeof(prtcode),
     [](ICB* icb) {
         definieer(icb, {"TR_PTR_codes,126", "code-cap,I,1,2,I,3,3,I,4,4"});
     },
     nullptr},
};

// The live records of a data file, as far as it goes; false when there is none to be read.
template <class R> bool lees(Prttabel tabel, std::vector<R>* naar) {
    std::vector<R>& uit = *naar;
    bool goed = false;
    const int fd =
        SYS.open((XPRT_PAD(TABELLEN[tabel].naam) + ".TXT").c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    struct stat st;
    if (fd >= 0 && SYS.fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        uit.resize(std::min(static_cast<size_t>(st.st_size), TABELMAX) / sizeof(R));
        const ssize_t n = SYSLEES(fd, uit.data(), uit.size() * sizeof(R), 0);
        goed = n >= 0;
        uit.resize(n < 0 ? 0 : static_cast<size_t>(n) / sizeof(R));
        std::erase_if(uit, [](const R& r) { return !IXRECLIVE(&r, sizeof r); });
    }
    if (fd >= 0)
        SYS.close(fd);
    return goed;
}

template <class R, class F> void sorteer(std::vector<R>* records, F sleutel) {
    std::stable_sort(records->begin(), records->end(),
                     [&](const R& a, const R& b) { return sleutel(a) < sleutel(b); });
}

} // namespace

void prt_box(const char* titel, const std::string& tekst) {
    if (SCHERM.bestaat)
        FFLASH(-1, 2, A_WAARDE, titel, "%s", tekst.c_str());
    else
        fprintf(stderr, "%s: %s\n", titel, tekst.c_str());
}

std::string XPRT_PAD(const char* naam) {
    static bool gemeld = false;
    const char* map = getenv("ZEBPRT");
    if (map && *map && strlen(map) <= ZEBPRTMAX && IOISDIR(map))
        return std::string(map) + "/" + naam;
    if (!gemeld) {
        gemeld = true;
        prt_box(TXT(T_PRT_PRINTEN_KAP), TXT(T_PRT_ZEBPRT));
    }
    return naam;
}

ICB* prt_open(Prttabel tabel, int modus) {
    const auto& t = TABELLEN[tabel];
    return IXEIGENOF(XPRT_PAD(t.naam).c_str(), modus, static_cast<int>(t.lengte), t.definieer, t.eerste);
}

bool prt_lees(printtabellen* t) {
    // In this order: the codes come with their neighbours.
    for (Prttabel tabel : {PRT_PRINTERS, PRT_VERBINDINGEN, PRT_CONFIGS, PRT_CODES})
        if (ICB* icb = prt_open(tabel, 0))
            IXCLOSE(icb);
    *t = {};
    bool goed = lees(PRT_PRINTERS, &t->printers);
    goed = lees(PRT_VERBINDINGEN, &t->verbindingen) && goed;
    goed = lees(PRT_CONFIGS, &t->configs) && goed;
    lees(PRT_CODES, &t->codes);
    sorteer(&t->printers, [](const prtrec& r) { return int{r.code}; });
    auto nummer = [](const auto& r) { return r.code * 256 + r.nummer; };
    sorteer(&t->verbindingen, nummer);
    sorteer(&t->configs, nummer);
    sorteer(&t->codes,
            [](const prtcode& r) { return std::tuple(int{r.code}, int{r.config}, int{r.nummer}); });
    return goed;
}

std::string prt_bytes(const char* tekst, size_t n) {
    auto cijfer = [&](size_t i) {
        const char c = i < n ? tekst[i] : ' ';
        return c >= '0' && c <= '9'   ? c - '0'
               : c >= 'A' && c <= 'F' ? c - 'A' + 10
               : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                      : -1;
    };
    std::string uit;
    for (size_t i = 0; i < n; i++) {
        if (tekst[i] == '\\' && cijfer(i + 1) >= 0 && cijfer(i + 2) >= 0) {
            uit += static_cast<char>(cijfer(i + 1) * 16 + cijfer(i + 2));
            i += 2;
        } else {
            uit += tekst[i];
            i += tekst[i] == '\\' && i + 1 < n && tekst[i + 1] == '\\';
        }
    }
    return uit;
}

} // namespace zg
