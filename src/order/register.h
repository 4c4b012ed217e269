// The order in the full registration: a line's series, its prices on file and its labels. The journal holds the line's
// texts and codes only; price file and labels hold the truth. Lock order: the cursor's series (sub/omserie.h), then a
// record of the store, then a counter of the system file; never two series.
#pragma once
#include "order/regel.h"
#include "shared/fmtab.h"
#include "shared/registerrec.h"
#include "term/tekst.h"
#include <functional>
#include <string>

namespace zg {

// Of this order, in memory since its opening.
bool label_van_order(const etiket& label); // supplier, date and order number
bool label_van_datum(const etiket& label); // supplier and date

inline seriesleutel regel_serie(const orderregel& regel) {
    return {regel.model.artikelgroep, regel.dessin.kleur, regel.dessin.volgnummer};
}

// registerlaad.cpp: the series of a line that regel_lees has read, into it: its record (`serie`), texts and codes, prices
// at the order's supplier and date, terms and quantities of its labels, the rate of its first purchase (`aankoop`), which
// becomes the context (up_context) when `context`. `vergrendel` takes the lock, after which all of it is loaded again.
// in_journaal: a line that isn't registered, which the journal holds; it may be looked at. stuk: told, the line can't be
// worked on. zonder_prijs: its price set is gone, told; its pieces are known, and it may only be deleted. A set that never
// came is no damage: told, and the line has the prices of the work file. Only gelezen and zonder_prijs leave a lock.
enum class Serie { gelezen, weg, andere, stuk, zonder_prijs, in_journaal };
Serie serie_laad(orderregel* regel, bool vergrendel, bool context);
// The same for a series that the caller has read into regel->serie, under its lock: the line's key fields are those of the
// series. False: damaged, told.
bool serie_in_regel(orderregel* regel);
// regel_lees and serie_laad, without lock and context, for walks over the lines in either mode. False when the line can't
// be loaded; what the work file has of it stands in *regel then.
bool regel_volledig(regelloop* loop, const ors_ingang& ingang, orderregel* regel);
// What the labels of a series tell of the order, without terms and branches.
struct labelsom {
    int32_t besteld[MAATKOLOMMEN]; // ever ordered, by size index
    etiket koers;                  // as labels_lees
};
// regel_lees and serie_laad likewise, of the labels the sums alone (*som): they are kept while the series' record stands as
// it is and this program leaves its labels alone, so that a repaint doesn't read them all again. False: there is no line.
bool regel_som(regelloop* loop, const ors_ingang& ingang, orderregel* regel, Serie* serie, labelsom* som);
// Currency, rate and surcharge at which the line's prices count, as context: in the full registration those that it was
// bought at, else the order's.
void regel_prijscontext(const orderregel& regel);
// registerbewaar.cpp: the line into its series: record, price set, labels, codes. The lock is held, or for a new one its
// number reserved. What can be refused (room for labels, amounts, numbers, codes) is refused before anything is
// written. False: told, nothing that stands was lost.
bool serie_past(const orderregel& regel);
bool serie_bewaar(orderregel* regel, bool nieuw, const prijsrijen& oude_prijzen);

// registerprijs.cpp: the line's prices into the register, under the lock of its series (a new one has its record): the price
// set of the order's supplier and date, split around other dates, and with `oud`, the line's rows of before, the labels
// that count in them, each at its own rate. False: told, and nothing was written, or what was refused waits to be finished
// (order/prijswerk.h).
bool prijzen_bij(const orderregel& regel, const prijsrijen* oud);
// Can the set that the line is to have be written? False: it or the free groups are damaged, told.
bool prijzen_schrijfbaar(const orderregel& regel);
// Does what the labels would become fit? False: told.
bool prijzen_kunnen(const orderregel& regel, const prijsrijen& oud);
// Before prices of a line change that stands on another order of this supplier and date, too: is the user sure?
bool prijzen_vraag(const orderregel& regel);

// registerkorting.cpp: the order's discount from `was` to `kop.korting` into sets and labels of all lines; the header with it
// is written in between. No lock is held afterwards. Lines that were skipped are named. False: told, nothing changed.
bool order_korting(int16_t was);
// May the order have another discount? Not (told) when a series of it is on another order of this supplier and date.
bool orderkorting_toegestaan();

// A line of the order as it is named: its number and series, a null one by its number.
std::string regel_naam(int32_t nr, const orderregel* regel);
// Lines that something could not be done to, by name: a box with them under a text; none without lines.
void regels_overgeslagen(const Tekst& boven, const std::vector<std::string>& regels);

// registeretiket.cpp
// Under the lock of the series. Is there room for what labels_bij would make, and does each fit? False: told why.
bool labels_passen(const orderregel& regel, const serrec& serie);
// Labels as the terms tell: kept, moved, deleted, made; counters and term bounds of *serie. The head of a new chain is
// written (serie_schrijf) behind the first label; `vastleggen` writes *serie in the end. False: damaged or refused (by
// vastleggen, too), told; the labels are as they were as far as the disk allows, the counters what they are.
bool labels_bij(orderregel* regel, serrec* serie, const std::function<bool()>& vastleggen = {});
// A line's labels on order go, under the lock of its series, whose record `vastleggen` writes; how many it keeps. False:
// told, all stand as far as the disk allows.
bool label_wis(orderregel* regel, int* over, const std::function<bool()>& vastleggen = {});
// registerweg.cpp: a line's part in the register before the line itself is deleted, under the lock of its series: labels,
// and behind a question on a row the series that has none left. False: told, the line must stay.
bool serie_regel_weg(orderregel* regel, int vraagrij);
// registerbijwerk.cpp
// The header's purchase code, its receiving location (bits) into the labels of all lines. It is noted in front of the write
// of the header, which label_bijwerk comes behind; *soorten gets what an earlier one was refused. False: refused, told.
// label_bijwerk takes the lock of each series in turn: none is held behind it. Lines that were skipped are named; what the
// disk refused waits in the note.
enum Bijwerksoort { BIJ_CODE = 1, BIJ_LOCATIE = 2 };
bool label_noteer(int* soorten);
void label_bijwerk(int soorten);
// Finish what stands in the note, with the journal open: its order's header into its labels. False: refused, told.
bool label_afmaken();
// Such a note for who only looks: its order. False when it can't be read or isn't whole.
bool label_noot_lees(const std::string& pad, int32_t* ordernummer);
void label_los(
    const seriesleutel& serie); // the number of `kop` out of the labels of its last line; takes the lock
// The header's receiving location for labels of an article group, a branch number; 255 when locations aren't in use.
uint8_t label_locatie(int32_t artikelgroep);
void label_zet_locatie(etiket* label, uint8_t locatie);
// Quantities and terms of regel->serie from its chain; false: damaged (ioeti_schade), nothing is told. *koers is the label
// that tells the rate of the first purchase: the first on order of this order, else the one with the highest term; status
// 0 when it has none.
bool labels_lees(orderregel* regel, etiket* koers);
// labelsom.cpp: their sums, as regel_som keeps them; false as labels_lees.
bool labels_som(const serrec& serie, labelsom* som);
// A term's dates in the labels of a line that is registered, under the lock of its series. False: told, all stand.
bool levering_verzet(const orderregel& regel, uint16_t oud_tot, uint16_t van, uint16_t tot);

// registernummer.cpp: the record of an order number. A number of 0 has none; one that another order has is left alone.
bool ordnr_bezet(int32_t ordernummer); // for order_nummer: in use
bool ordnr_schrijf();                  // of `kop`; false: refused, told
void ordnr_wis();
void ordnr_locatie(); // the receiving location alone

} // namespace zg
