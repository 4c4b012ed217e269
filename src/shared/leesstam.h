// Module leesstam: the master record behind a code. leesX(handle, record, code) answers 1 at once when the
// record's key field already is that code (not 0); else it reads by key 1 and puts the handle's current key
// back. A record that isn't found leaves the key field 0, so that the next question reads again. Clear the
// key field as well after a maintenance screen may have changed the record. A null handle stops with
// INTERNAL.
#pragma once
#include "shared/stamrec.h"
#include "shared/sysrec.h"
#include <span>

namespace zg {

struct mthandle;

// The open master tables, null when closed; whoever opens the shared files sets them. DTDOELGR and DTLEVEXT may be
// missing from a data directory: null then, and an empty table. DTLEV is sub/omlev.h's, the sizes iomaat.h's.
extern ICB *dtart, *dtmerk, *dtomzgrp, *dtvvtab, *dtdoelgr, *dtlevext;

int leesart(ICB* icb, artrec* rec, int32_t artikelgroep);
int leeskleinart(ICB* icb, kleinartrec* rec, uint16_t nummer);
int leesmerk(ICB* icb, merkrec* rec, uint16_t merk);
int leeslev(ICB* icb, levrec* rec, uint16_t nummer);
int leesklant(ICB* icb, klantrec* rec, int32_t nummer);
// Keeps the last one read; zeros when there is none.
int leesdoelgr(ICB* icb, doelgrrec* rec, char code);

// The same from the system tables; the slot number is the code.
int leescode(Slot<tekst20>* rec, uint8_t code);
int leeskleur(Slot<tekst20>* rec, uint16_t kleur);
int leesmaatsoort(Slot<tekst20>* rec, uint8_t maatsoort);

// Open *maten for another size type when it isn't open for that one; mask (12 bytes, may be null): the
// selection. The second also reads the sizes' descriptions.
void leesmaat(mthandle** maten, uint8_t stelsel, uint8_t soort, const uint8_t* masker);
void leesmaatx(mthandle** maten, uint8_t stelsel, uint8_t soort, const uint8_t* masker);

// A code as text: cut to 13 characters, blanks trimmed; 13 digits with a leading 0 are tried without it, too.
int leesean(ICB* icb, eanrec* rec, const char* tekst);
// By series and size; a file without the key for it is walked.
int leeseanmaat(ICB* icb, eanrec* rec, const seriesleutel& serie, uint8_t maat);

// The file opened for this one read; 0 also when it can't be opened.
int opart(artrec* rec, int32_t artikelgroep);
int opmerk(merkrec* rec, uint16_t merk);
int oplev(levrec* rec, uint16_t nummer);
int opklant(klantrec* rec, int32_t nummer);
int opean(eanrec* rec, const char* tekst);
int opeanmaat(eanrec* rec, const seriesleutel& serie, uint8_t maat);

// Modules keep master records between reads; each says once how they are forgotten, and whoever changed, added or
// deleted a master record calls stam_gewijzigd: everybody reads anew.
void stam_houder(void (*vergeet)());
void stam_gewijzigd();

// Can the pair be opened? IXOPEN stops the program where it can't.
bool stam_aanwezig(const char* naam);
// Pairs that a program keeps open: those of a table, opened in their order, to read alone or shared, closed the other way round.
// One that isn't there stops the program with "Open niet gelukt" by `wie`, unless it may be missing: its handle is null then.
struct Stambestand {
    const char* naam;
    ICB** icb;
    bool mag_ontbreken = false;
};
void stam_open(const char* wie, std::span<const Stambestand> bestanden, bool lezen);
void stam_sluit(std::span<const Stambestand> bestanden);
// A pair that is open as long as this lives; null when it isn't there or holds nothing.
struct Stampaar {
    Stampaar(const char* naam, int modus);
    ~Stampaar();
    Stampaar(const Stampaar&) = delete;
    Stampaar& operator=(const Stampaar&) = delete;
    ICB* icb;
};

} // namespace zg
