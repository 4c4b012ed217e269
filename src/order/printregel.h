// One line of the order as the print shows it, and its rows. Between printorder.cpp and printregel.cpp.
#pragma once
#include "order/regel.h"
#include <string>

namespace zg {

struct printregel {
    std::string merk, merknaam, model, materiaal, dessin, kenmerk, doelgroep; // texts without trailing blanks
    std::string serie, omschrijving, maatsoort;
    std::string weg; // what stands for a line whose series has gone; empty: there is one
    int32_t artikelgroep;
    uint16_t kleur;
    struct Kolom {
        uint8_t maat;
        std::string naam;
    };
    std::vector<Kolom> maten; // of the line's bar, in bar order; what has pieces is among them
    prijsrij bruto, netto, inkoop;
    std::vector<levcel> besteld; // ever ordered
};

// A row of the size table: what stands in front, and per size index a number, or (`bedrag`) an amount of the order's
// currency.
struct printrij {
    std::string voor;
    int32_t cellen[MAATKOLOMMEN]; // 0: the sum, which isn't printed of amounts
    bool bedrag;
};

// A line as loaded into the print's form; puts its bar in force.
printregel print_neem(const orderregel& regel, const std::string& weg);
// Pieces and values of some cells at the line's prices.
struct printsom {
    int64_t stuks, bruto, netto, inkoop;
};
printsom print_tel(const printregel& regel, const std::vector<levcel>& cellen);

// A piece of a row that is `breedte` wide: on the next row where this one has no room for it.
void print_plaats(int breedte);
void print_nieuwe_rij(); // end the row
void print_label(const char* tekst,
                 const std::string& waarde); // a value with its name, in columns of equal width
// The columns' names, and a line's first row. `herhaald`: brand and model stand above.
void print_regelkop(bool prijzen, const std::string& valuta);
void print_regelrij(const printregel& regel, bool herhaald, bool prijzen, const std::string& valuta,
                    const printsom& som);
// Rows below it: what else names the line with the prices that all its sizes have, and the size table in blocks. `past`
// is called in front of each block with its number of rows: room is made.
void print_regelnaam(const printregel& regel, const std::string& prijzen);
void print_maten(const printregel& regel, const std::vector<printrij>& rijen, const std::string& valuta,
                 void (*past)(int rijen));
// A text of the order with its name; nothing for an empty one.
void print_tekst(const char* naam, const char* blok, void (*past)(int rijen));

} // namespace zg
