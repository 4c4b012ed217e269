// One order line as one value: images, prices, terms, quantities, texts, weights. To save a line, to put it
// back and to refuse a change are assignments. The screen's cursor has its line in regel_nu; walks over other
// lines have values of their own.
#pragma once
#include "order/ioord.h"
#include "order/levterm.h"
#include "order/ordloop.h"
#include "price/uniprijs.h"
#include "shared/registerrec.h"
#include <functional>
#include <vector>

namespace zg {

struct regelextra { // an E or B record, kept behind the S of its size
    uint8_t maat;
    char tag;
    char inhoud[13];
};

// What the work file holds of the prices, by size index. A price that nobody changed goes back as it was.
struct regelopslag {
    uint8_t maten[MAATBYTES];      // sizes that have an S
    prijsrij bruto, netto;         // net without the order's discount
    std::vector<regelextra> extra; // in file order
};

struct orderregel {
    ordmodel model;
    orddessin dessin;
    char modeltekst[BLOKLEN], dessintekst[BLOKLEN]; // texts of kinds 3 and 4
    prijsrijen prijzen;                             // net with the order's discount
    regelopslag opslag;
    levtermen termen;
    aantalmatrix nota_aantallen, order_aantallen; // open, ever ordered: sums of the terms
    std::vector<uint16_t> gewichten;              // per branch index, behind them their sum
    // In the full registration: the series as it was loaded (its running number is 0 before it is on file), what the
    // prices count in, and the pieces that had a label on order.
    serrec serie;
    struct {
        char valuta[4];
        double koers;
        int32_t koersfactor;
    } aankoop;
    int32_t op_bestand;
};
extern orderregel regel_nu;
// regel_nu is being added or duplicated: `regelingang` (order/wrk.h) is the line that it comes behind, not its own.
extern bool regel_is_nieuw;

// Everything cleared, quantities and weights in the firm's size.
void regel_wis(orderregel* regel);
void regel_wis_aantallen(orderregel* regel); // terms and quantities only
// The same content as a line that isn't on file yet: without E and B, sequence number and registration.
void regel_dupliceer(orderregel* regel);

// A walk over lines of the open work file; it ends where the file is changed.
struct regelloop {
    ordloop loop;
    int32_t m; // offset of the model below, -1 none
    ordmodel model;
    char tekst[BLOKLEN];
    // Lines without their matrices and weights, which stay empty: the terms hold the same quantities, and a walk over a
    // long order doesn't clear a firm of branches for each line. regelloop_begin puts it off.
    bool zonder_matrices;
};
void regelloop_begin(regelloop* loop);
// Load the line at an entry of the index; weights and the term in hand stay cleared. Net prices get the order
// discount of `kop`, purchase prices are those of up_context; advice prices need the line's bar (order/regelstam.h). False, with the line cleared, when the work file
// holds no line there. A branch or size outside the firm, a quantity below 0 or a sum that does not fit stops
// with the "inconsistent, pos." report. In registermodus quantities of a registered line are not read, and its
// prices into `opslag` alone: price file and labels hold the truth (order/register.h).
bool regel_lees(regelloop* loop, const ors_ingang& ingang, orderregel* regel);
bool regel_lees(const ors_ingang& ingang, orderregel* regel);
// The registered lines of the order one by one, without their matrices, and null for a line that can't be read: the
// others are still gone through, and it is for the caller to name it.
void regels_loop(const std::function<void(int32_t nr, const orderregel* regel)>& doe);

// The prices that the work file has for the line, for one that has none on file; its sizes are theirs then. False: it has none.
bool regel_prijzen_uit_opslag(orderregel* regel);

// What was ever ordered on a line, as cells above 0: its matrix; of a line without matrices its terms, since nothing is
// delivered then.
template <class F> void regel_besteld(const orderregel& regel, F doe) {
    if (regel.order_aantallen.empty()) {
        for (const levterm& term : regel.termen)
            for (const levcel& cel : term.cellen)
                doe(cel);
        return;
    }
    for (int filiaal = 0; filiaal < firma.filialen; filiaal++)
        for (int maat = 1; matrix_cel(regel.order_aantallen, filiaal, 0) && maat <= MATEN; maat++)
            if (const int32_t aantal = matrix_cel(regel.order_aantallen, filiaal, maat); aantal > 0)
                doe(levcel{static_cast<uint8_t>(filiaal), static_cast<uint8_t>(maat), aantal});
}

// What the S record of a size gets: as it was stored while nobody changed it, 0 for an unknown price.
int32_t regel_bruto_opslag(const orderregel& regel, int maat);
int32_t regel_netto_opslag(const orderregel& regel, int maat);

} // namespace zg
