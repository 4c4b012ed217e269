// Records of the fixed tables in DTSYS.TXT, the place of each table, and the images that the whole program
// reads: the firm, its settings and the user's own slot. shared/iotab.h reads and writes the slots.
// docs/formats.md has the regions; what no field names is kept as it stands.
#pragma once
#include <cstddef>
#include <cstdint>

namespace zg {

// A table: start in the file, number of slots, bytes of a slot. Slots count from 1; all zero is empty.
struct Systabel {
    int32_t start, slots, grootte;
};

inline constexpr Systabel SYS_RECORD{0, 25, 64};
inline constexpr Systabel SYS_PRIJSKLASSE{1600, 10, 40};
inline constexpr Systabel SYS_GEBRUIKER{2640, 99, 64};
inline constexpr Systabel SYS_ACTIE_KOP{10416, 1, 30}; // four code tables: a head slot, then nine codes
inline constexpr Systabel SYS_ACTIE{10446, 9, 30};
inline constexpr Systabel SYS_CORRECTIE_KOP{10716, 1, 30};
inline constexpr Systabel SYS_CORRECTIE{10746, 9, 30};
inline constexpr Systabel SYS_INKOOP_KOP{11016, 1, 30};
inline constexpr Systabel SYS_INKOOP{11046, 9, 30};
inline constexpr Systabel SYS_DEELSEIZOEN_KOP{11316, 1, 30};
inline constexpr Systabel SYS_DEELSEIZOEN{11346, 9, 30};
inline constexpr Systabel SYS_VALUTA{14880, 99, 36};
inline constexpr Systabel SYS_KLEUR{18444, 999, 20};
inline constexpr Systabel SYS_MAATBALK{38424, 99, 16};
inline constexpr int64_t SYS_BATCHSLOTEN = 40085; // lock bytes only, nothing is ever written there
inline constexpr Systabel SYS_MAATSTELSEL{42780, 99, 20};
inline constexpr Systabel SYS_MAATSOORT{44760, 99, 20};
inline constexpr Systabel SYS_LAND{46900, 99, 28};
inline constexpr Systabel SYS_ETIKETSOORT{49672, 100, 68};
inline constexpr Systabel SYS_SETCODE{65460, 100, 20};
inline constexpr Systabel SYS_SETCODE2{67460, 100, 52};
inline constexpr Systabel SYS_MAATREEKS{72660, 99, 392};
inline constexpr Systabel SYS_ARTREGACTIE{111468, 99, 64};
inline constexpr Systabel SYS_FILIAALREEKS{117804, 99, 52};

inline constexpr int VALUTACODE = 3;
inline constexpr int SET_MAX = 9; // set and code are one digit each
inline constexpr int BATCHGEBRUIKER = 99;
inline constexpr char RELEASE[] = "8.70 ";

// A slot number with the record behind it, as callers keep them.
template <class R> struct [[gnu::packed]] Slot {
    int32_t nr;
    R r;
};

// System records 1, 2, 4 ... of SYS_RECORD.
struct [[gnu::packed]] sysfirma { // 1
    char naam[30];
    uint8_t vlag30; // 4: tills are linked
    char vrij31;
    uint16_t vlaggen; // 4: EDI, and supplier's order numbers
    char vrij34[5];
    uint8_t filialen; // branches, the head office apart
    char vrij40;
    uint8_t maatstelsel; // the firm's default
    uint16_t btw[10];    // tenths of a per cent, by VAT code - 1
    char vrij62[2];
};
struct [[gnu::packed]] systeller { // 2 series, 5 orders, 14 EAN codes
    int32_t laatste;
    char vrij4[60];
};
struct [[gnu::packed]] sysetiket { // 4
    int32_t vrijkop, hoogste, vrij;
    char vrij12[52];
};
struct [[gnu::packed]] sysafbeelding { // 7
    char map[25];
    uint8_t modus;
    char vrij26[38];
};
struct [[gnu::packed]] sysmaat { // 8
    char vrij0[2];
    uint16_t mtcount;
    char vrij4[60];
};
struct [[gnu::packed]] sysprijs { // 9
    int32_t vrijkop, hoogste;
    char vrij8[56];
};
struct [[gnu::packed]] sysstatus { // 10
    int32_t klantnummer;
    char vrij4[4];
    char tekst[50];
    char release[5];
    uint8_t status; // 0 free
};
struct [[gnu::packed]] sysinstel { // 15
    char valuta[VALUTACODE];       // home currency
    char vrij3[3];
    uint8_t etiketcijfers;
    uint8_t artikelcijfers; // width of article numbers
    char vrij8[4];
    uint8_t optie12, optie13; // 13: 4 distribution per size
    char vrij14;
    uint8_t optie15; // delivery dates begin empty
    char vrij16[2];
    uint8_t ean_alle;
    uint8_t overdracht; // till link of series and labels
    uint8_t breedte;    // narrowest column of the quantity matrix
    uint8_t prefix_aan;
    char prefix[9][4]; // code prefixes that are not internal
    char vrij58[6];
};
struct [[gnu::packed]] sysmodel { // 16: what the duplicate model screen asks
    char vrij0[35];
    uint8_t velden;
    char vrij36[28];
};
struct [[gnu::packed]] sysbackup { // 19
    uint16_t datum;
    char vrij2[62];
};
struct [[gnu::packed]] sysgetal { // 20
    int32_t waarde;
    char vrij4[60];
};

// Slot of SYS_GEBRUIKER, locked by the program that the user is in.
struct [[gnu::packed]] gebruikerslot {
    char username[18]; // scrambled
    char vrij18[4];
    char usertty[6];
    uint16_t opties;
    char vrij30[8];
    uint8_t userstate; // 0 out, 1 in a program, 2 chaining, 10 to 12 no batch run now
    char userkind;     // 'I': may look, not change
    uint32_t usertime; // of the last chaining, seconds since 1970
    uint16_t usermenu;
    char vrij46[2];
    char userprog[10]; // program that may run now
    uint16_t werkdatum;
    uint16_t usermenu2;
    uint8_t set;
    char vrij63;
};

struct [[gnu::packed]] valutarec {
    char code[VALUTACODE];
    uint8_t decimalen; // 0 or 2
    char naam[32];
};
struct [[gnu::packed]] tekst20 { // kleur, maatsoort, maatstelsel, codes by set
    char tekst[20];
};
struct [[gnu::packed]] setcode2rec { // second table of codes by set
    char inhoud[52];
};
struct [[gnu::packed]] tekst30 { // actiecode, correctiecode, inkoopcode, deelseizoen
    char tekst[30];
};
struct [[gnu::packed]] prijsklasserec {
    char tekst[20], vrij20[20];
};
struct [[gnu::packed]] maatbalkrec {
    uint8_t maatsoort;
    uint8_t maten[12];
    char vrij13[3];
};
struct [[gnu::packed]] maatreeksrec {
    uint8_t maatsoort;
    char vrij1[7];
    int32_t aantal[96]; // by size index; 0 their sum
};
struct [[gnu::packed]] landrec {
    uint16_t nummer;
    char iso2[2], iso3[3], naam[20];
    char vrij27;
};
struct [[gnu::packed]] etiketsoortrec {
    char tekst[30];
    uint8_t breedte, hoogte;
    char vrij32[36];
};
struct [[gnu::packed]] filiaalreeksrec {
    char naam[20];
    uint8_t filialen[32]; // bit by branch index
};

static_assert(sizeof(sysfirma) == 64 && offsetof(sysfirma, vlaggen) == 32 &&
              offsetof(sysfirma, filialen) == 39 && offsetof(sysfirma, maatstelsel) == 41 &&
              offsetof(sysfirma, btw) == 42);
static_assert(sizeof(systeller) == 64 && sizeof(sysetiket) == 64 && sizeof(sysafbeelding) == 64 &&
              offsetof(sysafbeelding, modus) == 25);
static_assert(sizeof(sysmaat) == 64 && offsetof(sysmaat, mtcount) == 2 && sizeof(sysprijs) == 64);
static_assert(sizeof(sysstatus) == 64 && offsetof(sysstatus, tekst) == 8 &&
              offsetof(sysstatus, release) == 58 && offsetof(sysstatus, status) == 63);
static_assert(sizeof(sysinstel) == 64 && offsetof(sysinstel, etiketcijfers) == 6 &&
              offsetof(sysinstel, optie12) == 12 && offsetof(sysinstel, optie15) == 15 &&
              offsetof(sysinstel, ean_alle) == 18 && offsetof(sysinstel, prefix) == 22);
static_assert(sizeof(sysmodel) == 64 && offsetof(sysmodel, velden) == 35 && sizeof(sysbackup) == 64 &&
              sizeof(sysgetal) == 64);
static_assert(sizeof(gebruikerslot) == 64 && offsetof(gebruikerslot, usertty) == 22 &&
              offsetof(gebruikerslot, opties) == 28 && offsetof(gebruikerslot, userstate) == 38 &&
              offsetof(gebruikerslot, usertime) == 40 && offsetof(gebruikerslot, userprog) == 48 &&
              offsetof(gebruikerslot, werkdatum) == 58 && offsetof(gebruikerslot, set) == 62);
static_assert(sizeof(valutarec) == 36 && sizeof(tekst20) == 20 && sizeof(tekst30) == 30 &&
              sizeof(prijsklasserec) == 40 && sizeof(maatbalkrec) == 16 && sizeof(maatreeksrec) == 392 &&
              sizeof(landrec) == 28 && sizeof(etiketsoortrec) == 68 && sizeof(filiaalreeksrec) == 52);

// The images of the running program. sys_lees fills the first three (zeros for a record that isn't there).
extern sysfirma firma;     // system record 1
extern sysstatus status10; // system record 10
extern sysinstel instel15; // system record 15
extern int32_t sessie;     // the user's slot number, 0 before the start
extern gebruikerslot gebruiker;

void sys_lees();
// May the user change master data? Kind 'I' only looks.
inline bool mag_onderhoud() {
    return gebruiker.userkind != 'I';
}
// The user's slot from the one image: 'w' keeps the lock (changes of level), 'W' releases it (the hand-over).
void gebruiker_schrijf(char letter);
// Its level, on file at once where that changes: 10 while files are written that batch runs must not meet half done. The
// level that stood.
uint8_t gebruiker_stand(uint8_t userstate);
// The user's name in clear, static buffer. A slot's name may be given, too.
const char* gebruiker_naam();
const char* gebruiker_naam(const gebruikerslot& slot);

} // namespace zg
