// order_lus and its prompts. Rows and columns are those of the screen; row 24 is the bottom row.
#include "order/driver.h"
#include "codes/seizoen.h"
#include "control/batchvw.h"
#include "order/bestanden.h"
#include "order/kop.h"
#include "order/prijswerk.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/register.h"
#include "order/start.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "order/zoek_ord.h"
#include "print/xprt.h"
#include "shared/files.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "sub/omlev.h"
#include "term/datum.h"
#include "term/ingave.h"
#include "term/prompt.h"
#include "term/strings.h"
#include "term/teksten.h"
#include "term/vast.h"
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr int ONDERRIJ = 24;
constexpr int SEIZOENKOLOM = 46, DATUMKOLOM = 74, LEVKOLOM = 14, NAAMKOLOM = 19;
constexpr unsigned EERSTE_JAAR = 1980;
constexpr char STANDAARDTOETSEN[] = "QWERTYUIOPASDFGHJK";

unsigned dit_jaar() {
    time_t nu = time(nullptr);
    struct tm deel {};
    localtime_r(&nu, &deel);
    return static_cast<unsigned>(deel.tm_year) + 1900;
}

// Screen before each season prompt: the last order's values go, frame and title stay.
void schoon_scherm() {
    TOPREGEL('L', "%s", "");
    for (int rij = 3; rij <= ONDERRIJ; rij++)
        SCRCLREOL(rij, 1);
    ordertotaal = {};
    order_frame();
}

void toon_seizoen() {
    if (gekozen_jaar == 0)
        SCRPUT(A_WAARDE, 1, 37, "%-7.7s: %s %c  ", TXT(T_F_SEIZOEN), TXT(T_STD), gekozen_letter);
    else
        SCRPUT(A_WAARDE, 1, 37, "%-7.7s: %s", TXT(T_F_SEIZOEN), seizoensmap.c_str());
}

// A small window with one message, until ENTER.
void meld_venster(const char* tekst) {
    int breedte = static_cast<int>(strlen(tekst)) + 4;
    WINOPEN1(11, (SCHERM.cols - breedte) / 2 + 1, 4, breedte);
    WINBOX(nullptr);
    SCRPUT(A_WAARDE, 1, 2, "%s", tekst);
    PIEP();
    ENTERWACHT(2, 2);
    WINCLOSE();
}

const Tekst* const LETTERTEKST[] = {&T_LETTER_ZOMER, &T_LETTER_WINTER, &T_LETTER_DOORLOPEND};

// Letters are shown and typed in the user's language; directories have those of SEIZOENLETTERS.
char letter_vertaald(char letter) {
    const char* plek = letter ? strchr(SEIZOENLETTERS, letter) : nullptr;
    return plek ? TXTLETTER(*LETTERTEKST[plek - SEIZOENLETTERS]) : ' ';
}
char letter_terug(char vertaald) {
    for (size_t i = 0; i < 3; i++)
        if (TXTLETTER(*LETTERTEKST[i]) == vertaald)
            return SEIZOENLETTERS[i];
    return 0;
}

// The letter behind the year. False after ESC or cancel.
bool vraag_letter(char* letter) {
    char formaat[24];
    snprintf(formaat, sizeof formaat, "1c[%c%c%c],EU", TXTLETTER(T_LETTER_ZOMER), TXTLETTER(T_LETTER_WINTER),
             TXTLETTER(T_LETTER_DOORLOPEND));
    char getypt = letter_vertaald(*letter);
    INGAVE(1, SEIZOENKOLOM + (gekozen_jaar ? 4 : 5), formaat, &SCHERM.toets[key_cancel], &getypt);
    if (TOETSWEG())
        return false;
    *letter = letter_terug(getypt);
    return *letter != 0;
}

// Is the year of the prompt one that can be? Tells when not.
bool keur_jaar(unsigned getypt, unsigned jaar) {
    unsigned laatste = dit_jaar() + 5;
    if (getypt >= 100 && getypt <= 999) {
        error("<%u> %s", getypt, TXT(T_ONGELDIG_JAAR));
        return false;
    }
    if (jaar != 0 && (jaar < EERSTE_JAAR || jaar > laatste)) {
        error("<%u> %s %d %s %d %-8.8s", jaar, TXT(T_ALLEEN), static_cast<int>(EERSTE_JAAR), TXT(T_TM),
              static_cast<int>(laatste), TXT(T_MOGELIJK));
        return false;
    }
    return true;
}

// The directory of the season chosen. The standard season's is made on the spot.
bool zet_map(bool zonder_toets) {
    seizoensmap = seizoen_map(gekozen_jaar, gekozen_letter);
    if (gekozen_jaar == 0 && !IOISDIR(seizoensmap.c_str())) {
        if (!SYSNIEUWEMAP(seizoensmap.c_str()) && errno != EEXIST) {
            error("%s: %s", seizoensmap.c_str(), IOREDEN(errno));
            return false;
        }
    }
    if (zonder_toets || IOISDIR(seizoensmap.c_str()))
        return true;
    error("%s: %s", seizoensmap.c_str(), TXT(T_ONBEKEND_SEIZOEN));
    return false;
}

bool order_mag_nieuw() {
    return aantal_regels == 0 && !order_alleen_lezen;
}

// Rate and currency of a new order, from the supplier. A fixed rate holds for one without a currency.
void nieuwe_koers() {
    memcpy(kop.valuta, leverancier.valuta, sizeof kop.valuta);
    if (leverancier.koers != 0 && VASTLEEG(leverancier.valuta)) {
        kop.koers = leverancier.koers;
        kop.koerseenheid = leverancier.koerseenheid ? leverancier.koerseenheid : uint16_t{1};
    } else {
        kop_koers_van_datum();
    }
}

// False when no order number could be drawn (told).
bool begin_nieuwe_order(uint16_t datum) {
    order_nieuw = true;
    SCRCLREOL(ONDERRIJ, 1);
    SCRPUT(A_WAARDE, ONDERRIJ, 1, "%s", TXT(T_NIEUWE_ORDER));
    if (ord_eerste_order(journaal))
        while (ord_volgende_order(journaal))
            ;
    kop = {};
    kop.seizoen = gekozen_letter;
    kop.jaar = gekozen_jaar;
    kop.leverancier = gekozen_leverancier;
    kop.orderdatum = datum;
    kop.toeslag = leverancier.toeslag ? leverancier.toeslag : 10000;
    nieuwe_koers();
    if (registermodus && (kop.ordernummer = order_nummer(ordnr_bezet)) == 0)
        return false;
    order_kopregels();
    return true;
}

// The journal goes; one that holds nothing leaves no file behind.
void sluit_journaal() {
    if (journaal)
        ord_sluit_jrn(journaal);
    journaal = nullptr;
    wrk_namen_wis();
}

// One order, from its choice to its commit. False: the season loop ends.
bool bewerk_order() {
    toon_seizoen();
    SCRPUT(A_WAARDE, 1, 62, "%-10.10s: %s", TXT(T_F_ORDERDATUM), DATUM6(kop.orderdatum));
    ordkop gekozen = kop;
    if (!wrk_open())
        return wrk_verloren();
    kop = gekozen; // the copy has read on into the next order
    bool door = aantal_regels > 0;
    if (!door && order_mag_nieuw()) {
        door = order_kop(Itemwijze::nieuw);
        if (door)
            regel_wis(&regel_nu);
    }
    if (door) {
        ord_eerste_order(werk);
        korting_bij_opening = kop.korting;
        order_scherm();
    }
    wrk_sluit();
    return true;
}

// One round behind the season. False: the season loop ends.
bool ronde() {
    if (FILES_PRESENT("STAT%*02hd.TXT")) {
        meld_venster(TXT(T_EERST_STAMGEGEVENS));
        return false;
    }
    if (IOEXISTS((seizoensmap + "/NEWORD.TXT").c_str())) {
        meld_venster(TXT(T_EERST_ORDERS));
        return false;
    }
    if (!ord_kies_leverancier())
        return true;
    wrk_namen();
    bool verder = true;
    if (IOSIZE(wrk_naam("WRK").c_str()) > 0)
        herstel_venster();
    else
        wrk_ruim_op(); // killed before WRK was there, or behind the commit: what is left means nothing
    wrk_namen();
    if (registermodus && journaal && (!prijswerk_afmaken() || !label_afmaken())) {
        sluit_journaal(); // the disk refused: nobody may go on to an order whose prices or labels are half changed
        return true;
    }
    if (journaal && ord_kies_order())
        verder = bewerk_order();
    sluit_journaal();
    return verder;
}

} // namespace

void ordparm_lees() {
    static const char naam[] = "ORDPARM.SYS";
    int fd = SYS.open(naam, O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0)
        OPENFAIL("zgbestel", naam);
    ssize_t n = SYSLEES(fd, &orderparameters, sizeof orderparameters, 0);
    if (n != static_cast<ssize_t>(sizeof orderparameters)) {
        errno = n < 0 ? errno : ENODATA;
        OPENFAIL("zgbestel", naam);
    }
    SYS.close(fd);
}

bool kies_seizoen() {
    gekozen_jaar = orderparameters.jaar;
    gekozen_letter = orderparameters.letter;
    if (!gekozen_letter || !strchr(SEIZOENLETTERS, gekozen_letter))
        gekozen_letter = SEIZOENLETTERS[0];
    for (;;) {
        prt_meld_mislukt();
        SCRPUT(A_LABEL, 1, 37, "%-7.7s: ", TXT(T_F_SEIZOEN));
        SCRPUT(A_WAARDE, 1, SEIZOENKOLOM, "%-7.7s",
               gekozen_jaar ? seizoen_map(gekozen_jaar, gekozen_letter).c_str() : "");
        uint16_t getypt = gekozen_jaar;
        INSTEL.minimum = 0;
        INSTEL.maximum = 9999;
        TOETSAANMET(K_F10, T_PROGRAMMA_INFO);
        INGAVE(1, SEIZOENKOLOM, "4u,P", &SCHERM.toets[key_cancel], &SCHERM.toets[key_f5],
               &SCHERM.toets[key_f10], &getypt);
        if (TOETSWEG())
            return false;
        if (SCHERM.laatste == K_F10) {
            prog_informatie();
            continue;
        }
        bool gekozen = false;
        if (SCHERM.laatste == K_F5) {
            if (!seizoen_kiezen(&gekozen_jaar, &gekozen_letter))
                continue;
            gekozen = true;
        } else {
            unsigned jaar = seizoen_jaar(getypt);
            if (!keur_jaar(getypt, jaar))
                continue;
            gekozen_jaar = static_cast<uint16_t>(jaar);
        }
        if (gekozen_jaar == 0)
            SCRPUT(A_WAARDE, 1, SEIZOENKOLOM, " %s ", TXT(T_STD));
        else
            SCRPUT(A_WAARDE, 1, SEIZOENKOLOM, "%04u", gekozen_jaar);
        if (gekozen && gekozen_jaar == 0)
            SCRPUT(A_WAARDE, 1, SEIZOENKOLOM, " %s %c   ", TXT(T_STD), gekozen_letter);
        if (!gekozen && !vraag_letter(&gekozen_letter))
            continue;
        if (zet_map(gekozen)) {
            toon_seizoen();
            return true;
        }
    }
}

bool ord_kies_leverancier() {
    kop = {};
    kop.seizoen = gekozen_letter;
    kop.jaar = gekozen_jaar;
    kop.leverancier = gekozen_leverancier;
    ordertotaal = {};
    SCRPUT(A_LABEL, 3, 1, "%-11.11s: ", TXT(T_F_LEVERANCIER));
    uint16_t nummer = gekozen_leverancier;
    stam_vergeet();
    prt_meld_mislukt();
    if (lijstveld(LEVERANCIERTABEL, 3, LEVKOLOM, "P", &nummer) == Lijstuit::weg)
        return false;
    if (!relatie_lees(nummer, &leverancier)) {
        SCRPUT(A_WAARDE, 3, LEVKOLOM, "%s", TXTBLANCO(25));
        return false;
    }
    SCRPUT(A_WAARDE, 3, NAAMKOLOM, "%-20.20s", VASTTEKST(leverancier.naam).c_str());
    kop.leverancier = gekozen_leverancier = nummer;
    journaal = ord_open_jrn(seizoensmap.c_str(), nummer, O_RDWR | O_CREAT);
    if (journaal)
        return true;
    SCRCLREOL(ONDERRIJ, 1);
    SCRPUT(A_WAARDE, ONDERRIJ, 1, "%s", TXT(T_JOURNAAL_NIET));
    PIEP();
    ENTERWACHT(ONDERRIJ, 40);
    return false;
}

bool ord_kies_order() {
    ordertotaal = {};
    order_nieuw = false;
    uint16_t datum = gebruiker.werkdatum;
    if (ord_eerste_order(journaal) && zoek_ord(journaal, true))
        return true;
    for (;;) {
        SCRPUT(A_LABEL, 1, 62, "%-10.10s: ", TXT(T_F_ORDERDATUM));
        INGAVE(1, DATUMKOLOM, "D,E", &SCHERM.toets[key_cancel], &SCHERM.toets[key_f5], &datum);
        if (TOETSWEG())
            return false;
        if (SCHERM.laatste != K_F5)
            break;
        if (zoek_ord(journaal, true))
            return true;
    }
    return begin_nieuwe_order(datum);
}

void herstel_venster() {
    struct stat st {};
    stat(wrk_naam("WRK").c_str(), &st);
    struct tm deel {};
    localtime_r(&st.st_mtime, &deel);
    WINOPEN3(18, 1, 7, SCHERM.cols);
    WINBOX(nullptr);
    SCRPUT(A_WAARDE, 1, 2, "%s %02d-%02d-%04d", TXT(T_FOUTIEF_AFGESLOTEN), deel.tm_mday, deel.tm_mon + 1,
           deel.tm_year + 1900);
    SCRPUT(A_WAARDE, 2, 2, "%s", TXT(T_NIET_VERWERKT));
    SCRPUT(A_WAARDE, 4, 2, "%s ", TXT(T_LAATSTE_WIJZIGINGEN));
    bool gelukt = herstel_order();
    // Without a journal the disk refused the commit: the changes wait in the work file.
    SCRADD("%s", TXT(gelukt ? T_WEL_HERSTELD : journaal ? T_NIET_HERSTELD : T_LATER_HERSTELD));
    PIEP();
    ENTERWACHT(5, 2);
    WINCLOSE();
}

void order_lus() {
    bestanden_open();
    const char* omgeving = getenv("HOTKEYS");
    sneltoetsen = omgeving && *omgeving ? omgeving : STANDAARDTOETSEN;
    if (user_claim(BATCH_ORDERS, true)) {
        for (schoon_scherm(); kies_seizoen() && ronde(); schoon_scherm())
            ;
        user_vrij(BATCH_ORDERS);
    }
    order_scherm_los();
    bestanden_sluit();
}

} // namespace zg
