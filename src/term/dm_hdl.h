// A small fixed menu of texts for short pop-up choices, at the right edge of the screen.
#pragma once
#include <cstdint>

namespace zg {

struct DMREC {
    int32_t id;
    char* tekst;
    char soort; // 'T' title, 'S' separator, 'I' item
    int32_t aan, toets;
    DMREC* volgende;
};

DMREC* DMNEW(const char* titel);
void DMSEP(DMREC* menu, const char* tekst);
void DMITEM(DMREC* menu, const char* tekst, int id, int aan);
void DMKEY(DMREC* menu, const int32_t* sleutel, int id); // a table key
void DMKEY(DMREC* menu, int32_t teken, int id);          // a character
// Id of the choice, vast_id after CANCEL, ESC or F6; SCHERM.laatste is the key that ended it. Frees the menu.
int DMRUN(DMREC* menu, int rij, int vast_id);
const char* DMTEXT(); // text of the last row chosen, without '&'

} // namespace zg
