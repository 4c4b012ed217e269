// Module edifys: the settings of the electronic transfer, by name, in DTRCMSYS.TXT, and a second set with flags in
// DTIPCSYS.TXT. docs/formats.md has the layout. Both lie in the present directory and are opened for a call where they
// aren't open. Changes are made under one lock, byte 512 of DTRCMSYS.TXT, which guards both files.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace zg {

inline constexpr int EDIREC = 512;
inline constexpr size_t EDIPAD = 59;   // longest path, and longest command
inline constexpr int EDIVLAGGEN = 992; // flags are numbered from 0
inline constexpr char EDIBESTAND[] = "DTRCMSYS.TXT", EDIPCBESTAND[] = "DTIPCSYS.TXT";

struct [[gnu::packed]] edirec {
    char vrij0[5];
    uint8_t initflag; // 1 once the file is made
    char vrij6[122];
    char zebedi[60]; // root of the mailboxes
    char edirpc[60];
    char edidir[60]; // directory of the location files
    char edicmd[60];
    char rpchost[20];
    uint8_t vlag[5]; // DTIPCSYS.TXT: the flags begin here and go on to the end of the record
    uint8_t methode; // DTRCMSYS.TXT: 1 by modem, 2 by internet
    char vrij394[118];
};

// DTRCMSYS.TXT by letter; only record 0 is in use.
//   'O' open; a file of the older form is converted first. 0 when there is none: only edi_maak makes one
//   'C' close
//   'R' read: 1 when the record is whole, else what there is and zeros
//   'X' the same, locked: waits, with the holder's name on the screen
//   'W' write and release, 'w' write and keep; byte 392 of the record becomes 0. 0 when refused, which was told: the
//       file is as it was then, and 'W' has released all the same
//   'T' is it free? 'U' release
// Another letter answers 0; one on a closed file, but for 'O', stops with edifys INTERNAL 1.
int edisys(char letter, int32_t nr, edirec* rec);
// DTIPCSYS.TXT: 'O', which makes it where it is missing, 'C', 'R', 'W'; no locks.
int edisyspc(char letter, int32_t nr, edirec* rec);

// Is there a settings file, of this form or the older?
bool edi_aanwezig();
// Make DTRCMSYS.TXT with this method, unless it is there, and open it. False when it can't be made, which was told.
bool edi_maak(uint8_t methode);
// The same with the method asked on the screen, again and again until one is chosen; also where the file has none.
bool edi_maak_vraag();
// The method, 0 for none or no file; change it: 1 or 0.
uint8_t edi_methode();
int edi_methode_zet(uint8_t methode);

// A setting by name: ZEBEDI, EDIDIR, EDIRPC, RPCHOST, EDICMD, tried in this order, anywhere in `naam`. Static, until the
// next call; empty for no such name and where the file is missing. EDIDIR only while it is a directory.
const char* ediget(const char* naam);
const char* edigetpc(const char* naam);
// As it stands in the first file or the second: EDIDIR, too.
std::string edi_kaal(const char* naam, bool tweede = false);
// Change one: 1 or 0. Not made where the file is missing; refused and nothing written when the value doesn't fit (59
// bytes, RPCHOST 20) or has control bytes in it.
int ediset(const char* naam, const char* waarde);
int edisetpc(const char* naam, const char* waarde);
// Would it be refused for its length or its bytes, or isn't there such a setting?
bool edi_past(const char* naam, const char* waarde);
// May a user give it? As edi_past; and what the package itself opens has ASCII only: another letter is another byte on
// disk than in the file.
bool edi_mag(const char* naam, const char* waarde);
// A flag of DTIPCSYS.TXT, 0 to 991: set it (1 or 0), test it.
int ediflagset(int n);
int ediflagget(int n);

// The screen on all of them, made where there is none: each changed by its letter. A new root moves the mailboxes.
void edi_scherm();

static_assert(sizeof(edirec) == EDIREC && offsetof(edirec, initflag) == 5 &&
              offsetof(edirec, zebedi) == 128 && offsetof(edirec, edirpc) == 188 &&
              offsetof(edirec, edidir) == 248 && offsetof(edirec, edicmd) == 308 &&
              offsetof(edirec, rpchost) == 368 && offsetof(edirec, vlag) == 388 &&
              offsetof(edirec, methode) == 393);

} // namespace zg
