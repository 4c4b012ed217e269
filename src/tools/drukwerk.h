// What zgdruk does besides keeping the destinations: printing a test page, sending what is left, users' printers. What is
// asked stands in druk_wens; every answer is the tool's exit status, and what is wrong has been told.
#pragma once
#include "tools/tool.h"
#include <string>
#include <vector>

namespace zg {

struct Drukwens {
    std::string map;
    std::vector<std::string> woorden;
    bool json = false, alles = false, voorbeeld = false, vlot = false; // vlot: without waiting
    int code = 0, verbinding = 0, config = 0, kopieen = 1, wacht = 10, masker = 0;
    std::string gebruiker;
};
extern Drukwens druk_wens;

Uitkomst druk_proef();                 // a test page
Uitkomst druk_opdrachten();            // list the jobs that are left
Uitkomst druk_weer();                  // send those that are meant again
Uitkomst druk_laat();                  // throw them away
Uitkomst druk_gebruikers(bool zetten); // show the standard printers, or give one to a user who isn't at work

} // namespace zg
