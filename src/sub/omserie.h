// Module omserie: the record of a series in DTSER, its numbers, its stamp and its lock. Whoever changes a series, its
// price sets or its labels holds its lock; nobody holds two. What an order makes of it is order/register.h.
#pragma once
#include "shared/registerrec.h"
#include <string>

namespace zg {

struct ICB;

extern ICB *dtser, *dtserpic, *dtean,
    *dtordnr; // open in the full registration, else null; no DTSERPIC, no pictures
// Is the data directory that of a full registration? DTSER.TXT without its index stops the program: it would go on
// without the register, and write orders that have no labels.
bool register_aanwezig();
// Open and close all files of the registration, label and price file too. A pair that isn't there stops the program. What
// this user's slot left reserved is given up; not by who only reads (`lezen`).
void register_open(bool lezen = false);
void register_sluit();
// Behind an action: what was written is on disk, so that other terminals see the result. No lock is held then.
void register_ververs();

// Before the first write of a change: can all pairs of the register be written, or the one that is asked about? One that a
// program left marked by its death, or that was cut, would stop this one half-way. False: told, and under it what comes of
// it.
bool register_heel(ICB* paar = nullptr, const char* gevolg = nullptr, const char* gevolg2 = nullptr);

// By key, without a lock. False when there is none, or another's record where the index leads to.
bool serie_lees(const seriesleutel& sleutel, serrec* rec);
// For who got none: does the index lead to a record that DTSER.TXT hasn't got, cut off or written over? That is damage, and
// told, once a series: the series didn't go.
bool serie_kwijt(const seriesleutel& sleutel);
// The same under the lock, waiting for it; the lock in hand before is given up first. False, and no lock or reservation,
// when there is none.
bool serie_neem(const seriesleutel& sleutel, serrec* rec);
// Give the lock in hand up, with the mutations that were collected under it; nothing to do without.
void serie_los();
bool serie_vast(const seriesleutel& sleutel); // is it the one in hand?
// Has another program this series in hand at the moment? For a reader that meets it half changed.
bool serie_elders_in_hand(const seriesleutel& sleutel);
// Write the record of the series in hand, or the new one of the number that is reserved, which is then in hand. The lock
// stays. False: refused, told; lock or reservation stay. Neither in hand nor reserved: omserie INTERNAL 1.
bool serie_schrijf(const serrec& rec);

// Seconds from 01-01-1980 to an order's date, plus twice its line's number of the day.
int32_t serie_stempel(uint16_t orderdatum, uint16_t tijdstempel);
// May a series take data from an order with that stamp? Its own isn't later.
bool serie_mag(const serrec& rec, int32_t stempel);

inline constexpr uint16_t VOLGNUMMER_MAX = 9999;
// The lowest free sequence number of a group and colour from `vanaf` on, reserved for this program until serie_nummer_los
// or the record's write. One that another has in hand is passed over without a wait. 0 when there is none up to 9999, or
// the disk refused (told).
uint16_t serie_volgnummer_vrij(int32_t artikelgroep, uint16_t kleur, uint16_t vanaf = 1);
// The same for one number; false when it isn't free. The reservation before it is given up, unless it is the same.
bool serie_volgnummer_neem(const seriesleutel& sleutel);
void serie_nummer_los();
// A reservation outlives its program. So each is noted first in a file of the user's slot (SERNRnn.RES, a list of keys),
// and what that file names is given up at the slot's next start: but no number that the file of a living slot names, which
// is that slot's.
void serie_nummers_opruimen();
// Is a number named by the file of another slot whose user is in? Who clears reservations leaves these.
bool serie_nummer_levend(const seriesleutel& sleutel);
inline constexpr int32_t SERIENUMMER_MAX = 9999999; // seven digits in a mutation
// The next running number, from 1000; numbers in use are passed over. 0 when none could be written (told) or is left.
int32_t serie_nummer_nieuw();

// The mutation of the series in hand by its letter (shared/mutatie.h), which goes out behind serie_los. `oud_merk`: the brand
// that a changed one had, 0 for a new series.
void serie_mutatie(char letter, const serrec& rec, uint16_t oud_merk = 0);
// The same for a size that came to a series, and for a size's code (what EANHAAK is set to). `positie` counts on the bar.
void serie_mutatie_maat(const seriesleutel& serie, int positie);
void serie_mutatie_ean(const eanrec& rec, int positie);

} // namespace zg
