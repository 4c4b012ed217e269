// The one-letter choice row "Uw keuze" with its labels, over a mask of at most 32 choices.
#pragma once
#include <cstdint>

namespace zg {

// Label of a choice, '&' before its letter; null for a choice that doesn't exist. Static storage.
using Keuzetekst = const char* (*)(int keuze);

// Begin a row: nothing enabled, no default, no number range.
void KEUZESTART(Keuzetekst tekst);
// Shorter labels, for a row that is too short for the others; where these don't fit either, the letters stand alone.
void KEUZEKORT(Keuzetekst tekst);
// A number typed in the row from minimum to maximum is stored in *doel and answers `keuze`.
void KEUZEGETAL(int keuze, uint16_t* doel, int minimum, int maximum);
void KEUZEAAN(int n);
void KEUZEUIT(int n);
void KEUZEVAST(int n); // the default choice, -1 for none
void KEUZELEEG(int n); // ENTER alone answers n, which needs no label; -1 asks again
bool KEUZEENIG(int n); // is exactly this choice enabled?
// Ask on a row of the current window; keys allowed by TOETSAAN leave it. The choice, or -1 with the key in
// SCHERM.laatste.
int KEUZE(int rij, int kolom);
// Print a text with '&' letters highlighted.
void AMPTEKST(int rij, int kolom, const char* tekst);

} // namespace zg
