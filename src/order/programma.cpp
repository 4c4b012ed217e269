// Variables of order/programma.h and the allocation of the quantity areas.
#include "order/programma.h"
#include "shared/report.h"
#include <cstdlib>

namespace zg {

bool registermodus;
uint8_t aantal_filialen;
uint8_t aantal_maatstelsels;
std::string seizoensmap;
uint16_t gekozen_jaar;
char gekozen_letter;
uint16_t gekozen_leverancier;
uint16_t sessienummer;
char gebruikersrecht;
std::string sneltoetsen;
ordparm orderparameters;

int32_t* nota_aantallen;
int32_t* order_aantallen;
int32_t* werk_aantallen;
uint16_t* verdeelgewichten;

orderhaken ORDERHAKEN;

void aantallen_maak() {
    aantallen_weg();
    int32_t** matrices[] = {&nota_aantallen, &order_aantallen, &werk_aantallen};
    int nr = 0;
    for (int32_t** matrix : matrices) {
        nr++;
        *matrix = static_cast<int32_t*>(calloc(matrix_cellen(), sizeof(int32_t)));
        if (!*matrix)
            NOMEM("zgbestel", nr);
    }
    verdeelgewichten = static_cast<uint16_t*>(calloc(aantal_filialen + size_t{1}, sizeof(uint16_t)));
    if (!verdeelgewichten)
        NOMEM("zgbestel", 7);
}

void aantallen_weg() {
    for (int32_t** matrix : {&nota_aantallen, &order_aantallen, &werk_aantallen}) {
        free(*matrix);
        *matrix = nullptr;
    }
    free(verdeelgewichten);
    verdeelgewichten = nullptr;
}

} // namespace zg
