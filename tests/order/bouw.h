// Orders as plain values and the bytes that a journal or work file must have for them, built apart from the
// code under test; sessions as the driver runs them; children that are killed.
#pragma once
#include "order/ordcheck.h"
#include "order/programma.h"
#include "order/regel.h"
#include "order/wrk.h"
#include "support/proef.h"

namespace zg::test {

struct Maat {
    int maat;
    int32_t bruto, netto;
    std::string extra; // tags of the records behind it: "EB"
};
struct Aantal {
    int filiaal, maat;
    int32_t aantal;
};
struct Term {
    int van, tot;
    std::vector<Aantal> aantallen;
};
struct Regel {
    int kleur;
    std::string tekst;
    std::vector<Maat> maten;
    std::vector<Term> termen;
    int tijd = 0;
};
struct Model {
    int merk;
    std::string tekst;
    std::vector<Regel> regels;
    int soort = 0; // size type and article group
};
struct Order {
    int datum;
    std::string levering, betaling;
    std::vector<Model> modellen;
    int status = 0, korting = 0;
    int nummer = 0; // its lines are registered when it has one
};

// The bytes of an order: as committed, or with the full layout of a work file.
std::string bytes(const Order& order, bool werkbestand = false);
std::string bytes(const std::vector<Order>& orders);
std::vector<Order> genummerd(std::vector<Order> orders); // as the full registration has them
std::vector<ors_ingang> index_van(const Order& order);   // of its work file

// An order with lines per model as given, with texts, prices, terms and extensions that depend on the number.
Order maak_order(int nummer, const std::vector<int>& regels_per_model);
Regel maak_regel(int kleur);

// Temporary directory with season 2016Z; supplier 12; three branches; journaalmodus.
class OrderMap {
public:
    OrderMap();
    ~OrderMap();

private:
    TijdelijkeMap map_;
};
struct InOrderMap : testing::Test {
    OrderMap map;
};

std::string pad(const char* ext); // "2016Z/ORD0012.ext"
std::string inhoud(const char* ext);
void zet(const char* ext, std::string_view bytes);
bool bestaat(const char* ext);
std::string kwalen(const char* ext,
                   ordsoort soort); // what its check finds; "" as well for a file that isn't there
std::string scratch();              // the scratch files that exist, "WRK ACT "

// As the driver: open the journal, stand on the n-th order (from 0; -1: a new one), open the work file.
bool kies(int n);
bool sluit();                                    // commit and close the journal
bool nieuwe_kop(const Order& o);                 // the header of a new order into the work file
void neem_regel(const Model& m, const Regel& r); // the line in hand
ors_ingang regel_op(int nr);

// Choose the supplier again: repair when WRK has a size. 0 nothing to do, 1 restored, 2 not restored.
int herstart();

// Run in a child: its exit status, or 128 + signal. What it says on the error output goes to *gezegd.
int in_kind(const std::function<int()>& doe, std::string* gezegd = nullptr);

// At the n-th call of SYS (from 1) that changes something do something else; gestoord() tells whether it came so far.
enum class Storing { Dood, HalfDood, Vol, VoorGoedVol };
void stoor(int n, Storing wat);

} // namespace zg::test
