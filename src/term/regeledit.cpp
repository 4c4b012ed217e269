// A line editor outside the field machinery: no format, no validation, no INSTEL. For the compose window and
// the macro dialog.
#include "term/prompt.h"
#include "term/strings.h"
#include "term/veldwacht.h"
#include <algorithm>
#include <cstring>

namespace zg {

int32_t REGELEDIT(int rij, int kolom, char* tekst, int lengte) {
    VELDWACHT wacht;
    TOETSAAN(K_F2); // F2 ends the line here; without this it would open the macro dialog
    const int oudrij = WINRIJ(), oudkolom = WINKOLOM();
    tekst[lengte] = '\0';
    int n = static_cast<int>(strlen(tekst)), cursor = 0;
    bool invoegen = false;
    int32_t einde = 0;

    while (!einde) {
        SCRPUT(A_WAARDE, rij, kolom, "%s", tekst);
        for (int i = n; i < lengte; i++)
            SCRPUT(A_WAARDE, rij, kolom + i, "_");
        WINAT(rij, std::min(kolom + cursor, WINBREEDTE()));
        int32_t key = TOETS();
        if (key == K_CANCEL && cursor > 0)
            key = '/';
        switch (key) {
        case K_ENTER:
        case K_F2:
            einde = K_F2;
            break;
        case K_ESC:
        case K_CANCEL:
            einde = K_ESC;
            break;
        case K_HOME:
            cursor = 0;
            break;
        case K_END:
            cursor = n;
            break;
        case K_LEFT:
            cursor -= cursor > 0;
            break;
        case K_RIGHT:
            cursor += cursor < n;
            break;
        case K_IC:
            invoegen = !invoegen;
            break;
        case K_BACK:
        case 8:
            if (cursor == 0)
                break;
            cursor--;
            [[fallthrough]];
        case K_DC:
            if (cursor < n) {
                memmove(tekst + cursor, tekst + cursor + 1, static_cast<size_t>(n - cursor));
                n--;
            }
            break;
        default:
            if (key < 32 || key > 255)
                break;
            if (cursor >= lengte || (invoegen && n >= lengte)) {
                PIEP();
                break;
            }
            if (invoegen || cursor == n) {
                memmove(tekst + cursor + 1, tekst + cursor, static_cast<size_t>(n - cursor) + 1);
                n++;
                if (n == lengte)
                    einde = K_F2;
            }
            tekst[cursor++] = static_cast<char>(key);
            if (cursor == lengte)
                einde = K_F2;
        }
    }
    // The last character typed is seen also when it ended the line.
    SCRPUT(A_WAARDE, rij, kolom, "%s", tekst);
    WINAT(oudrij, oudkolom);
    return einde;
}

} // namespace zg
