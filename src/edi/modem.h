// A modem on a serial port that takes the Hayes commands: opened, initialised, dialled, hung up; its answers as codes,
// its errors in words. One line at a time. While it is open a fatal report closes it first (SCRFATALHAAK, in front of
// what hangs there), and so does a signal that ends the program (SCRNOODHAAK), in less time.
#pragma once
#include <csignal>
#include <string>

namespace zg {

struct modemlijn {
    std::string apparaat;
    int snelheid;  // 300, 1200 ... 38400; another sets none
    char pariteit; // 'N' none, 'O' odd, else even
    int databits;  // 7, else 8
    int stopbits;  // 2, else 1
    bool ophangen; // hang up on close
    std::string init;
    char kieswijze; // behind ATD: 'T' or 'P'
    std::string nummer;
    int tijd; // seconds for a connection
    std::string reset;
    int pauze; // seconds
};

enum Modemantwoord {
    MD_OK = 0,
    MD_CONNECT = 1,
    MD_RING = 2,
    MD_NO_CARRIER = 3,
    MD_ERROR = 4,
    MD_NO_DIAL = 6,
    MD_BUSY = 7,
    MD_NO_ANSWER = 8,
    MD_ANDERS = 9,
    MD_TIJD = 17 // none within the time, or the user gave it up
};
enum Modemfout { MDF_POORT = 1, MDF_OPEN = 2, MDF_INIT = 18, MDF_DICHT = 19 }; // beside the answers

// Each answers 1 or 0, and then mderror() says why. All but mdopen and mdclose need an open line.
int mdopen(const modemlijn& lijn);
int mdinit();   // without an init text nothing is sent
int mddial();   // 1: connected
int mdhangup(); // takes some 2 seconds
void mdclose(); // the port as it was found; waits for no output, does nothing when it is closed
int mdsend(const char* tekst);
// A line of the modem's, within `tijd` hundredths of a second (whole seconds upwards): a Modemantwoord. ESC and CANCEL
// give it up; other keys stay for whoever reads next.
int mdanswer(int tijd);
std::string mdregel(); // the line behind the last answer
// The last error in words.
std::string mderror();
int mdfout();
// What waits gives up, as on ESC, when a signal handler sets this.
extern volatile std::sig_atomic_t mdafbreken;

} // namespace zg
