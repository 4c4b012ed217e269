// Module afb_hdl: pictures of series. A picture is a file in the directory of its brand; the link to it is a record of
// DTSERPIC. The program draws nothing: it shows a picture's name in a marked box, which a viewer beside the terminal
// knows. Pictures are in use where the settings name a directory and DTSERPIC is open, so in the full registration only.
#pragma once
#include "shared/registerrec.h"
#include <string>
#include <string_view>
#include <vector>

namespace zg {

inline constexpr size_t AFB_NAAM = 45; // bytes of a file's name in DTSERPIC

// The settings (system record 7) as they are now; before, there are no pictures.
void afb_instelling();
bool afb_in_gebruik();
bool afb_alleen_pcx(); // mode 10: no JPG, and the small box

// Where a brand's pictures lie, and where new ones are put; both end in "/".
std::string afb_map(uint16_t merk);
std::string afb_nieuw_map();
// Can a file of this name be a picture? `soort`: not an extension that is allowed here, or a name that is no plain file's
// ("/", a point in front, control bytes).
enum class Afbnaam { goed, soort, lang };
Afbnaam afb_keur(std::string_view naam);
// The file names in a directory that are pictures, in order; *lang (may be null): how many others have too long a name.
std::vector<std::string> afb_bestanden(const std::string& map, int* lang);
bool afb_aanwezig(const std::string& pad); // a plain file

// ---- links

bool afb_heeft(const seriesleutel& serie);
// The linked file's name, empty without a link; *merk the brand that it lies under.
std::string afb_van(const seriesleutel& serie, uint16_t* merk);
bool afb_zoek(const std::string& naam, uint16_t merk); // does any series have this file?
// False: refused, told; the link is as it was.
bool afb_schrijf(const seriesleutel& serie, const std::string& naam, uint16_t merk);
bool afb_wis(const seriesleutel& serie); // also true when there was none

// ---- screens

// The field for a picture: a name, F5 the list of the brand's pictures, F8 those that match a pattern, F10 shows it. Left
// empty it is none. True when *naam became another one; the key is in SCHERM.laatste.
bool afb_veld(int rij, int kolom, const seriesleutel& serie, uint16_t merk, std::string* naam);
// The list itself, of those that match (empty: all), from the one in *naam on, or from the file that is named by the
// series. False without a pick.
bool afb_kies(const seriesleutel& serie, uint16_t merk, const std::string& patroon, std::string* naam);
// The field in a window of its own; what comes of it is linked at once.
void afb_koppelen(const seriesleutel& serie, uint16_t merk);
// The series' picture until a key, which then acts on the screen below. Without one, or one that can't be shown, a box says so.
void afb_tonen(const seriesleutel& serie);
void afb_tonen(const std::string& naam, uint16_t merk);
void afb_meld_lang(int aantal); // how many names are too long, if any
// New files, chosen in a list, into the brand's directory; under another name when theirs is taken there. How many came.
int afb_import(uint16_t merk);

} // namespace zg
