// Module iokasmut: lines of KASMUT.TXT, see edi/iokasmut.h.
#include "edi/iokasmut.h"
#include "control/batchvw.h"
#include "edi/konl_mut.h"
#include "shared/files.h"
#include "shared/regelbij.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace zg {

void (*ARTREGHAAK)(char letter, const std::string& inhoud);

namespace {

constexpr char BESTAND[] = "KASMUT.TXT";
constexpr char VOOR_BEIDE[] = "ABCDMPSVZbkstv", VOOR_KASSA[] = "EFLOXmo",
               VOOR_KANTOOR[] = "GHIJKNQRTWYacdefglpx";

int fd = -1;
int openingen; // within each other
bool groep;    // the whole group is ours, else our byte of it

bool in(const char* letters, char letter) {
    return letter != 0 && strchr(letters, letter) != nullptr;
}

bool neem_slot(int mode) {
    groep = mode != 1;
    return groep ? batch_claim(BATCH_KASSA) : user_claim(BATCH_KASSA, false);
}

void geef_slot() {
    groep ? batch_vrij(BATCH_KASSA) : user_vrij(BATCH_KASSA);
}

bool te_schrijven(int filiaal, int kassa, char letter) {
    const int klasse = kasmut_class(filiaal, kassa, letter);
    return in(VOOR_BEIDE, letter) || klasse != 0;
}

} // namespace

bool kasmut_open(int mode) {
    if (!kassakoppeling())
        return true;
    if (openingen > 0)
        return ++openingen > 0;
    if (!neem_slot(mode))
        return false;
    // The lock first: a file that is opened in front of it may have been taken away by then.
    if (groep && !IOEXISTS(BESTAND)) {
        geef_slot();
        return false;
    }
    if ((fd = REGELOPEN(BESTAND)) < 0)
        OPENFAIL("iokasmut", BESTAND);
    openingen = 1;
    return true;
}

void kasmut_close() {
    if (openingen == 0 || --openingen > 0)
        return;
    SYS.close(fd);
    fd = -1;
    geef_slot();
}

int kasmut_class(int filiaal, int kassa, char letter) {
    const bool kassas = in(VOOR_BEIDE, letter) || in(VOOR_KASSA, letter);
    const bool kantoor = in(VOOR_BEIDE, letter) || in(VOOR_KANTOOR, letter);
    return (kassas && tills_has(filiaal, kassa) ? KLASSE_KASSA : 0) |
           (kantoor && instel15.overdracht ? KLASSE_KANTOOR : 0);
}

bool kasmut_write(int filiaal, int kassa, char letter, const std::string& inhoud) {
    if (!kassakoppeling())
        return true;
    const bool met_kassa = tills_of(filiaal);
    if (met_kassa && (letter == 'A' || letter == 'E') && ARTREGHAAK && IOEXISTS("DTARTREG.INX"))
        ARTREGHAAK(letter, inhoud);
    if (!te_schrijven(filiaal, kassa, letter))
        return true;
    if (!kasmut_open(1))
        return false;
    char kop[32];
    snprintf(kop, sizeof kop, "%03d%03d%c", filiaal, kassa, letter);
    const bool goed = REGELBIJ(fd, kop + inhoud);
    const int fout = errno;
    kasmut_close();
    if (!goed)
        SCHRIJFFOUT(BESTAND, fout);
    return goed;
}

bool kasmut_branch(int filiaal, char letter, const std::string& inhoud) {
    return kasmut_write(filiaal, ALLE_KASSAS, letter, inhoud);
}

bool kasmut_all(char letter, const std::string& inhoud) {
    return kasmut_branch(ALLE_FILIALEN, letter, inhoud);
}

bool kasmut_reeks(std::span<const Mutatie> mutaties) {
    const bool samen =
        kassakoppeling() && std::any_of(mutaties.begin(), mutaties.end(), [](const Mutatie& m) {
            return te_schrijven(ALLE_FILIALEN, ALLE_KASSAS, m.letter);
        });
    if (samen && !kasmut_open(1))
        return false;
    // Told once; who sends keeps them.
    const bool goed =
        std::ranges::all_of(mutaties, [](const Mutatie& m) { return kasmut_all(m.letter, m.inhoud); });
    if (samen)
        kasmut_close();
    return goed;
}

} // namespace zg
