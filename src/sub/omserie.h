// Module omserie: the record of a series in DTSER, its numbers, its stamp and its lock. Whoever changes a series, its
// price sets or its labels holds its lock; nobody holds two. What an order makes of it is order/register.h.
#pragma once
#include "shared/registerrec.h"
#include <string>

namespace zg {

struct ICB;

extern ICB *dtser, *dtserpic, *dtean, *dtordnr; // open in the full registration, else null
// Open and close all files of the registration, label and price file too. A pair that isn't there, and DTSER.TXT without
// its index, stops the program.
void register_open();
void register_sluit();
// Behind an action: labels, series and codes reopened, so that other terminals see the result.
void register_ververs();

// By key, without a lock. False when there is none.
bool serie_lees(const seriesleutel& sleutel, serrec* rec);
// The same under the lock, waiting for it; the lock in hand before is given up first. False, and no lock or reservation,
// when there is none.
bool serie_neem(const seriesleutel& sleutel, serrec* rec);
void serie_los();                             // give the lock in hand up; nothing to do without
bool serie_vast(const seriesleutel& sleutel); // is it the one in hand?
// Write the record, a new one too; the lock stays. False: refused, told.
bool serie_schrijf(serrec* rec);

// Seconds from 01-01-1980 to an order's date, plus twice its line's number of the day.
int32_t serie_stempel(uint16_t orderdatum, uint16_t tijdstempel);
// May a series take data from an order with that stamp? Its own isn't later.
bool serie_mag(const serrec& rec, int32_t stempel);
std::string serie_tekst(const seriesleutel& sleutel); // "groep.kleur.volgnummer"

// The lowest free sequence number of a group and colour from `vanaf` on, reserved for this program until serie_nummer_los
// or the record's write; noted in a file of the user's slot first, so that a reservation whose program died is given up
// when the slot is used again. 0 when there is none up to 9999. `volgnummer_vrij` asks for one number.
uint16_t serie_volgnummer_vrij(int32_t artikelgroep, uint16_t kleur, uint16_t vanaf = 1);
bool serie_volgnummer_neem(const seriesleutel& sleutel);
void serie_nummer_los();
void serie_nummers_opruimen(); // at the start: what this slot left reserved
// The next running number, from 1000; numbers in use are passed over. 0 when none could be written (told).
int32_t serie_nummer_nieuw();

// The mutation of a series: 'G' created or changed, 'W' prices, 'd' labels added, 'g' labels deleted; collected while a lock
// is held and queued when it is given up.
void serie_mutatie(char letter, const serrec& rec, uint16_t oud_merk = 0);

} // namespace zg
