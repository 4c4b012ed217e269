// The order matrix: a colour-by-size overview of the order for the model or the article group of the cursor's line. It
// reads the work file and changes nothing, neither a file nor the cursor's line.
#pragma once
#include "order/regel.h"
#include <map>

namespace zg {

enum class Matrixkeuze { op_model = 1, op_groep = 2 };

// A row of the overview, in the order in which rows are shown: size types one behind the other, colours and features
// within them, behind them the totals of the type.
struct matrixsleutel {
    uint8_t maatsoort, stelsel; // a type of the same number in another size system is another one
    bool totaal;
    uint16_t kleur;
    char kenmerk[2];
};
bool operator<(const matrixsleutel& a, const matrixsleutel& b);
struct matrixrij {
    int64_t aantal[MAATKOLOMMEN]; // by size index; 0 the row's total
    uint8_t maten[MAATBYTES];     // sizes of its lines
};
struct ordermatrix {
    std::map<matrixsleutel, matrixrij> rijen;
    int64_t netto, inkoop; // in the order's currency, in the home currency
};

// The lines of the open work file that have this model's name, or its article group. Prices are those of up_context.
ordermatrix matrix_bouw(Matrixkeuze keuze, const ordmodel& als);
// Ask which, and show it until the user leaves.
void order_matrix();

} // namespace zg
