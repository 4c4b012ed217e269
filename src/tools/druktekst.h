// The print destinations as text: one line a record, the same words on zgdruk's command line, in its list, and in the
// texts of the demo firm. UTF-8; a "\" and two hex digits is that byte of code page 850.
//
//   printer CODE naam=TEXT
//   verbinding CODE NUMBER apparaat=TEXT map=0|1 naam=TEXT
//   configuratie CODE NUMBER kolommen=N rijen=N staand=0|1 omschrijving=TEXT init=TEXT exit=TEXT
//   tekst CODE CONFIGURATION CAPABILITY tekst=TEXT
#pragma once
#include "print/printtabel.h"
#include "tools/paar.h"
#include <string>
#include <vector>

namespace zg {

enum class Drukdaad { toevoegen, wijzigen, zetten, weg }; // new only; there only; either; out

// The kinds with their names, as tool_mag has them; only the kinds where no names follow.
std::string druk_soorten(bool met_namen);
// Words of a line: blanks part them, but not between double quotes; none for a comment.
std::vector<std::string> druk_woorden(const std::string& regel);
// Do this to one record. What is wrong is in *fout; else GOED. A printer goes with all that is its.
Uitkomst druk_doe(Drukdaad daad, const std::vector<std::string>& woorden, std::string* fout);
// All lines of a file, or none when one is wrong.
Uitkomst druk_laad(const std::string& pad, std::string* fout);
// The records of a printer, or with 0 of all, in lines.
std::string druk_tekst(const printtabellen& t, int code);

} // namespace zg
