// The order in the full registration: a line's series, its prices on file and its labels. The journal holds the line's
// texts and codes only; price file and labels hold the truth. Lock order: the cursor's series (sub/omserie.h), then a
// record of the store, then a counter of the system file; never two series.
#pragma once
#include "order/regel.h"
#include "shared/registerrec.h"

namespace zg {

// Of this order, in memory since its opening.
bool label_van_order(const etiket& label); // supplier, date and order number
bool label_van_datum(const etiket& label); // supplier and date

// registerlaad.cpp: a series into the line. `vergrendel` takes its lock. The line's texts and codes, prices at the order's supplier
// and date, terms and quantities of its labels, the rate of its first purchase as context (up_context) when `context`.
// stuk: told, the line can't be worked on.
enum class Serie { gelezen, weg, andere, stuk };
Serie serie_laad(orderregel* regel, bool vergrendel, bool context);
// registerbewaar.cpp: the line into its series: record, price set, labels, codes. The lock is held, or for a new one its
// number reserved. What can be refused (room for labels, amounts, numbers, codes) is refused before anything is
// written. False: told, nothing that stands was lost.
bool serie_past(const orderregel& regel);
bool serie_bewaar(orderregel* regel, bool nieuw, const prijsrijen& oude_prijzen);

// registerprijs.cpp
// The line's rows into the price set of the order's supplier and date, split around other dates. *veranderd: prices are others.
bool prijsset_bij(const orderregel& regel, bool* veranderd);
// A changed net price of the line into its labels, each at its own rate.
bool label_prijzen(const orderregel& regel, const prijsrijen& oude_prijzen);
// The order's discount from `was` to `kop.korting` into sets and labels of all lines: worked out first, noted in a scratch
// file beside the supplier's work file, then written; korting_herstel finishes it behind a kill. The header with the new
// discount is written in between. Lines that were skipped are named. False: nothing changed.
bool order_korting(int16_t was);
bool korting_herstel();

// registeretiket.cpp
bool labels_bij(orderregel* regel, serrec* serie); // labels as the terms tell: kept, moved, deleted, made
bool label_wis(orderregel* regel, int* over);      // a line's labels on order go; how many its series keeps
void label_bijwerk(int soort);                     // 1 purchase code, 2 receiving location, of all lines
void label_los(const orddessin& regel);            // an order number out of the labels of its last line
bool labels_lees(orderregel* regel,
                 const serrec& serie); // quantities and terms from the chain; false: damaged
void levering_verzet(const orderregel& regel, uint16_t oud_tot, uint16_t van, uint16_t tot); // a term's dates

// registernummer.cpp
bool ordnr_schrijf();
void ordnr_wis(int32_t ordernummer);
void ordnr_locatie();

} // namespace zg
