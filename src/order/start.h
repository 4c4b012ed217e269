// Start and end of the program: the hand-over from and to the menu program through the user's slot of
// DTSYS.TXT, and the program information box. Nothing here knows of orders.
#pragma once
#include "shared/sysrec.h"

namespace zg {

inline constexpr char PROGRAMMA[] = "zgbestel";
inline constexpr char MENUPROGRAMMA[] = "zgbsmenu"; // goes on behind this one
inline constexpr int RELEASENUMMER =
    (RELEASE[0] - '0') * 100 + (RELEASE[2] - '0') * 10 + (RELEASE[3] - '0'); // 870

// Date and time of this build, for the information box.
void prog_bouw(const char* datum, const char* tijd);

// Opens terminal, catalogues, DTSYS.TXT and branch table, checks release and hand-over, takes the user's slot
// (locked until prog_exec), and sets the hooks of the layers below. `datum` is the release's date. argv: path, program, user, session, starter. A
// wrong hand-over stops the program with "NAME foutief gestart, code N": 99 argument count, 2 session, 1
// user, 0 and 13 program.
void prog_start(const char* naam, const char* datum, int argc, char** argv);

// Ends this program and starts `doel` with the same arguments; empty: exit with status 0. Never returns.
[[noreturn]] void prog_exec(const char* doel);

// The program information, until ENTER.
void prog_informatie();

} // namespace zg
