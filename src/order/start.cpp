// prog_start, prog_exec and the program information.
#include "order/start.h"
#include "control/batchvw.h"
#include "edi/iokasmut.h"
#include "edi/konl_mut.h"
#include "order/programma.h"
#include "order/regelstam.h"
#include "order/teksten.h"
#include "print/xprt.h"
#include "shared/eanhdl.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/houder.h"
#include "shared/iofil.h"
#include "shared/iotab.h"
#include "shared/mutatie.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"
#include "store/ix.h"
#include "sub/maatsoort.h"
#include "sub/omserie.h"
#include "term/macro/macro.h"
#include "term/plaats.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include "term/tekst.h"
#include "term/vast.h"
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <unistd.h>

namespace zg {
namespace {

constexpr char HOOFDPROGRAMMA[] = "zghoofd";

const char* bouwdatum = "";
const char* bouwtijd = "";
const char* releasedatum = "";
std::string eigen_naam = PROGRAMMA;

// The box, without waiting: also the picture behind a refused start, which stands on the rows below it.
void informatie_venster(int hoogte) {
    WINOPEN1(5, 16, hoogte, 50);
    WINBOX(" %s ", TXT(T_PROGRAMMA_INFO));
    int rij = 1;
    auto regel = [&rij](const Tekst& naam, const std::string& waarde) {
        SCRPUT(A_LABEL, rij, 2, "%-12.12s: ", TXT(naam));
        SCRPUT(A_WAARDE, rij++, 16, "%s", waarde.c_str());
    };
    char tekst[80];
    regel(T_PROGRAMMA, eigen_naam);
    regel(T_BOUWDATUM, std::string(bouwdatum) + " " + bouwtijd);
    snprintf(tekst, sizeof tekst, "%d %s", RELEASENUMMER, releasedatum);
    regel(T_RELEASE, tekst);
    snprintf(tekst, sizeof tekst, "%ld %-.30s", static_cast<long>(status10.klantnummer),
             VASTTEKST(firma.naam).c_str());
    regel(T_KLANT, tekst);
    snprintf(tekst, sizeof tekst, "Lantaarn%s %dF", RELEASE, firma.filialen);
    regel(T_INSTALLATIE, tekst);
    snprintf(tekst, sizeof tekst, "%s (%c)", gebruiker_naam(), gebruiker.userkind ? gebruiker.userkind : ' ');
    regel(T_GEBRUIKER, tekst);
}

[[noreturn]] void foutief_gestart(int code) {
    informatie_venster(8);
    SCRFATAL("%s %s %d", eigen_naam.c_str(), TXT(T_FOUTIEF_GESTART), code);
}

// Replace the process; comes back when there is no such program. `pad` is what was tried.
void probeer(const std::string& map, const char* doel, const std::string& gebruikersnaam, std::string* pad) {
    *pad = map;
    if (!pad->empty() && pad->back() != '/')
        *pad += '/';
    *pad += doel;
    std::string nummer = std::to_string(sessie);
    execlp(pad->c_str(), pad->c_str(), doel, gebruikersnaam.c_str(), nummer.c_str(), eigen_naam.c_str(),
           static_cast<char*>(nullptr));
}

// An unattended run that can't go on: nobody is there to read a report.
void terug_naar_menu() {
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD); // for its slot, should the file be closed
    prog_exec(MENUPROGRAMMA);
}

} // namespace

void prog_bouw(const char* datum, const char* tijd) {
    bouwdatum = datum;
    bouwtijd = tijd;
}

void prog_start(const char* naam, const char* datum, int argc, char** argv) {
    eigen_naam = naam;
    releasedatum = datum;
    MACROBEGIN();
    SCRINIT();
    TOPTITEL((std::string(naam) + " " + RELEASE).c_str());
    if (argc != 5)
        foutief_gestart(99);
    CATOPEN();
    int32_t nr = 0;
    IOGEDEELD(); // asked for now, and known from here on
    iotab('O', &nr, nullptr, SYS_RECORD);
    sys_lees();
    iofil('O', 0, nullptr);
    if (memcmp(status10.release, RELEASE, sizeof status10.release) != 0)
        SCRFATAL("%s %-.5s", TXT(T_FOUTIEVE_RELEASE), VASTTEKST(status10.release).c_str());

    sessie = static_cast<int32_t>(strtol(argv[3], nullptr, 10));
    if (sessie < 1 || sessie > SYS_GEBRUIKER.slots || !iotab('X', &sessie, &gebruiker, SYS_GEBRUIKER))
        foutief_gestart(2);
    if (strcmp(gebruiker_naam(), argv[2]) != 0)
        foutief_gestart(1);
    if (VASTUIT(gebruiker.userprog) != argv[1])
        foutief_gestart(0);
    if (gebruiker.userstate <= 9) {
        gebruiker.userstate = 1;
        gebruiker_schrijf('w');
    }
    if (VASTUIT(gebruiker.userprog) != eigen_naam)
        foutief_gestart(13);

    sessienummer = static_cast<uint16_t>(sessie);
    IOTMPSLOT = sessie;
    gebruikersrecht = gebruiker.userkind;
    IXWAITHOOK = houder_wacht;
    BATCHTERUG = terug_naar_menu;
    STELSELHAAK = stelsel_in_gebruik;
    tills_lees();
    MUTATIEHAAK = kasmut_reeks;
    mutaties_herstel();
    EANHAAK = serie_mutatie_ean;
    XPRT_LIJSTUIT(false); // a report that was asked for gets a destination
    MACROGEBRUIKER(sessienummer);
    MACROAAN();
    BEZIGAAN();
}

void prog_exec(const char* doel) {
    if (gebruiker.userstate != 0) {
        if (gebruiker.userstate < 5)
            gebruiker.userstate = *doel ? 2 : 0;
        VASTIN(gebruiker.userprog, doel);
        gebruiker.usertime = static_cast<uint32_t>(time(nullptr));
        bool hoofd = strcmp(doel, HOOFDPROGRAMMA) == 0;
        gebruiker.usermenu2 = hoofd ? gebruiker.usermenu : 0;
        if (hoofd)
            gebruiker.usermenu = 0;
        if (!*doel)
            memset(gebruiker.usertty, 0, sizeof gebruiker.usertty);
        gebruiker_schrijf('W');
    }
    std::string naam = gebruiker_naam();
    int32_t nr = 0;
    iotab('C', &nr, nullptr, SYS_RECORD);
    iofil('C', 0, nullptr);
    tills_vrij();
    CATCLOSE();
    if (!*doel) {
        SCREXIT();
        exit(0);
    }
    SCROVERGEVEN();
    std::string pad;
    for (const char* variabele : {"TSTBIN", "BIN"})
        if (const char* map = getenv(variabele); map && *map)
            probeer(map, doel, naam, &pad);
    std::string beproefd;
    probeer("", doel, naam, &pad);
    probeer(EIGENMAP(), doel, naam, &beproefd); // installed where no path leads
    SCRINIT();
    CATOPEN();
    SCRFATAL("%s %s %s", TXT(T_PROGRAMMA), pad.c_str(), TXT(T_NIET_GEVONDEN));
}

void prog_informatie() {
    informatie_venster(9);
    TOETSAAN(K_CANCEL); // ESC does as well
    ENTERWACHT(7, 2);
    WINCLOSE();
}

} // namespace zg
