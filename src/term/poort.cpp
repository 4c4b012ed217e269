// The printer port of the terminal, and the screen put aside.
#include "term/poort.h"
#include "term/binnen.h"
#include "term/teksten.h"
#include "term/uitvoer.h"
#include <termios.h>
#include <unistd.h>

namespace zg {
namespace {

termios modes;
bool modes_bewaard;

// The line must not make two bytes of a line feed that is meant for the printer.
void bytes_zoals_ze_zijn(bool aan) {
    if (aan) {
        modes_bewaard = tcgetattr(STDOUT_FILENO, &modes) == 0;
        termios kaal = modes;
        kaal.c_oflag &= ~static_cast<tcflag_t>(OPOST);
        if (modes_bewaard)
            tcsetattr(STDOUT_FILENO, TCSADRAIN, &kaal);
    } else if (modes_bewaard) {
        tcsetattr(STDOUT_FILENO, TCSADRAIN, &modes);
        modes_bewaard = false;
    }
}

// Line drawing in letters that every terminal has.
wchar_t eenvoudig(const TekenCel& c) {
    return !c.lijn ? c.teken : c.lijn == L_HORIZONTAAL ? L'-' : c.lijn == L_VERTICAAL ? L'|' : L'+';
}

} // namespace

void XLPR(bool aan) {
    if (aan) {
        ZEND("mc5");
        SCHERM.dicht = 1;
        bytes_zoals_ze_zijn(true);
    } else {
        bytes_zoals_ze_zijn(false);
        ZEND("mc4");
        SCHERM.dicht = 0;
    }
}

void SCRTERZIJDE() {
    ZEND("clear");
    TERMINALAF();
    SCHERM.dicht = 1;
}

bool SCRREGELS(const char* bytes, size_t n) {
    std::string uit;
    for (const char* p = bytes; p < bytes + n; p++)
        if (*p == '\n' || *p == '\f')
            uit += '\n';
        else if (static_cast<uint8_t>(*p) >= ' ' && *p != 0x7F)
            TEKENUIT(uit, eenvoudig(TEKENSETUIT(static_cast<uint8_t>(*p))));
    SCHRIJFUIT(uit.data(), uit.size());
    while (TOETSKLAAR())
        if (const int32_t key = TOETS(); key == K_CANCEL || key == K_ESC)
            return false;
    SEINSTOP();
    return true;
}

void SCRTERUG() {
    const std::string vraag = std::string("\n") + TXT(T_ENTER_VERVOLG) + " ";
    SCRREGELS(vraag.data(), vraag.size());
    while (TOETS() != K_ENTER)
        ;
    SCHERM.dicht = 0;
    TERMINALAAN();
    TOONVANAF(SCHERM.basis);
    TOON();
}

} // namespace zg
