// The search for a series, field by field of a key, its list, and sort orders: a letter a field.
#pragma once
#include "shared/registerrec.h"
#include <string>

namespace zg {

struct ICB;

// Ask the fields of a key ("AKV", "RMAKV") one by one, each beside the one before, at a row and column of the window, and
// find the series. True: *rec is it, without a lock. F5 is the list from where the key stands.
bool serie_zoek(int rij, int kolom, const char* letters, serrec* rec);
// The list of series by the key in hand; true when one was picked.
bool serie_lijst(ICB* icb, const char* letters, serrec* rec);

// Ask a sort order of these letters. True when accepted; *volgorde then ends in A, K and V.
bool sort_volgorde(int rij, int kolom, const char* letters, std::string* volgorde);
// Open or build the work index for a sort order on DTSER; null with too many letters.
ICB* sort_index(const char* letters, const char* bestand);
std::string sort_letters(const std::string& tekst, bool naar_gebruiker);
std::string sort_titel(const char* bestand);
// The indexes DTSER.* that stand, after a changed key of a series; null: it is gone. One that is in use, or damaged, goes.
void serie_index_bij(const serrec& oud, const serrec* nieuw);

} // namespace zg
