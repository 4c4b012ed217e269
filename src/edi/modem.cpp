// The modem driver, see edi/modem.h. The port is open twice, for reading and for writing, and is set by the calls of
// struct termio. No read waits longer than a tenth of a second, no write longer than five: whatever the other side does,
// every routine comes to an end.
#include "edi/modem.h"
#include "edi/teksten.h"
#include "shared/syscalls.h"
#include "term/scherm.h"
#include "term/toets.h"
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace zg {

volatile std::sig_atomic_t mdafbreken;

namespace {

using Klok = std::chrono::steady_clock;
using std::chrono::seconds;

enum Stand : unsigned { OPEN = 1, VERBONDEN = 2 | 8 };
enum Gelezen { NIETS = -1, WEG = -2 }; // beside the bytes themselves

constexpr unsigned SPEELRUIMTE = 5; // seconds beyond the time allowed, for a line that has begun
constexpr int ANTWOORDEN = 20;      // so many that say nothing are enough
constexpr size_t REGELMAX = 99;
constexpr int SCHRIJFMS = 5000;
constexpr unsigned short BAUDBITS = 0x100F, CVLAGGEN = CREAD | HUPCL | CLOCAL, INVLAGGEN = 0xF89D;

modemlijn lijn;
int lees_fd = -1, schrijf_fd = -1;
struct termio gevonden;  // of the port, when it was opened
volatile unsigned stand; // a signal handler looks at it
int fout;
std::string regel;
bool opgehouden; // the last answer was given up by the user
void (*vorige_haak)();

void bij_stop() {
    void (*verder)() = vorige_haak;
    mdclose();
    if (verder)
        verder();
}

// The same when a signal ends the program, by what its handler may do: the line is dropped for as long as a modem needs
// to see it, and output that nobody takes must not hold up the end.
void bij_nood() {
    if (!stand)
        return;
    stand = 0;
    ioctl(schrijf_fd, TCFLSH, TCIOFLUSH);
    if (lijn.ophangen) {
        struct termio t = gevonden;
        t.c_cflag = static_cast<unsigned short>(t.c_cflag & ~BAUDBITS);
        ioctl(schrijf_fd, TCSETA, &t);
        const timespec even{0, 250'000'000};
        nanosleep(&even, nullptr);
    }
    ioctl(schrijf_fd, TCSETA, &gevonden);
}

// ---- the port

int open_poort(int wijze) {
    return SYS.open(lijn.apparaat.c_str(), wijze | O_NOCTTY | O_NONBLOCK | O_CLOEXEC, 0);
}

void sluit(int* fd) {
    if (*fd >= 0)
        SYS.close(*fd);
    *fd = -1;
}

// From here on a read waits, as long as the port's modes say: it is set, so nothing waits for a carrier.
bool laat_wachten(int fd) {
    const int vlaggen = fcntl(fd, F_GETFL);
    return vlaggen >= 0 && fcntl(fd, F_SETFL, vlaggen & ~O_NONBLOCK) == 0;
}

unsigned short snelheid(int baud) {
    constexpr struct {
        int baud;
        unsigned short code;
    } CODES[] = {{300, B300},   {1200, B1200},   {2400, B2400},  {4800, B4800},
                 {9600, B9600}, {19200, B19200}, {38400, B38400}};
    for (const auto& c : CODES)
        if (c.baud == baud)
            return c.code;
    return 0;
}

bool stel_in() {
    struct termio t = gevonden;
    unsigned vlaggen = CVLAGGEN | snelheid(lijn.snelheid) | (lijn.databits == 7 ? CS7 : CS8);
    if (lijn.pariteit != 'N')
        vlaggen |= PARENB;
    if (lijn.pariteit == 'O')
        vlaggen |= PARODD;
    if (lijn.stopbits == 2)
        vlaggen |= CSTOPB;
    t.c_cflag = static_cast<unsigned short>(vlaggen);
    t.c_iflag = static_cast<unsigned short>((t.c_iflag & INVLAGGEN) | IGNBRK | IXOFF);
    t.c_oflag = static_cast<unsigned short>(t.c_oflag & ~OPOST);
    t.c_lflag = 0;
    t.c_cc[VMIN] = 0;
    t.c_cc[VTIME] = 1;
    return ioctl(lees_fd, TCSETA, &t) == 0;
}

void spoel() {
    for (int fd : {lees_fd, schrijf_fd})
        if (fd >= 0)
            ioctl(fd, TCFLSH, TCIOFLUSH);
}

// ---- reading

int lees_eens() {
    pollfd p{lees_fd, POLLIN, 0};
    if (poll(&p, 1, 100) <= 0)
        return NIETS;
    uint8_t c;
    const ssize_t n = (p.revents & POLLIN) ? SYS.read(lees_fd, &c, 1) : 0;
    if (n == 1)
        return c;
    if (n < 0 ? errno == EAGAIN || errno == EINTR : !(p.revents & (POLLHUP | POLLERR | POLLNVAL)))
        return NIETS;
    return WEG;
}

// A byte within so many hundredths of a second.
int lees_byte(int tijd) {
    for (int i = (tijd + 5) / 10; i > 0; i--)
        if (const int c = lees_eens(); c != NIETS)
            return c;
    return NIETS;
}

// The next character of a line, '\r' for its end; what can't be printed is passed over.
int lees_teken(int tijd, Klok::time_point grens) {
    do {
        const int c = lees_byte(tijd);
        if (c < 0 || c == '\r' || (c >= ' ' && c < 0x7F))
            return c;
    } while (Klok::now() < grens);
    return NIETS;
}

void leeg_invoer() {
    for (const auto grens = Klok::now() + seconds(SPEELRUIMTE); Klok::now() < grens && lees_byte(5) >= 0;) {
    }
}

// ---- the user

// Does he give it up? What he typed ahead stays for whoever reads next; a playing macro doesn't count.
bool opgegeven() {
    if (mdafbreken)
        return true;
    if (!SCHERM.bestaat || SCHERM.dicht)
        return false;
    const int32_t aan = MACROHAAK.aan, speelt = MACROHAAK.speelt;
    MACROHAAK.aan = MACROHAAK.speelt = 0;
    std::vector<int32_t> andere;
    bool weg = false;
    while (!weg && TOETSKLAAR()) {
        const int32_t toets = TOETS();
        weg = toets == K_ESC || toets == K_CANCEL;
        if (!weg)
            andere.push_back(toets);
    }
    MACROHAAK.aan = aan, MACROHAAK.speelt = speelt;
    while (!andere.empty()) {
        TOETSTERUG(andere.back());
        andere.pop_back();
    }
    return weg;
}

bool rust(int hoelang) {
    for (; hoelang > 0 && !opgegeven(); hoelang--)
        sleep(1);
    return hoelang <= 0;
}

void toon_over(const char* tekst) {
    if (SCHERM.bestaat && !SCHERM.dicht) {
        SCRBASE(A_WAARDE, 1, 78, "%-3.3s", tekst);
        SCRFLUSH(0);
    }
}

int mislukt(int nummer) {
    fout = nummer;
    return 0;
}

int code_van(const std::string& tekst) {
    constexpr struct {
        const char* tekst;
        Modemantwoord code;
    } ANTWOORDTEKSTEN[] = {
        {"OK", MD_OK},       {"CONNECT", MD_CONNECT}, {"RING", MD_RING}, {"NO CARRIER", MD_NO_CARRIER},
        {"ERROR", MD_ERROR}, {"NO DIAL", MD_NO_DIAL}, {"BUSY", MD_BUSY}, {"NO ANSWER", MD_NO_ANSWER}};
    for (const auto& a : ANTWOORDTEKSTEN)
        if (tekst.compare(0, strlen(a.tekst), a.tekst) == 0)
            return a.code;
    return MD_ANDERS;
}

// The rest of a line behind its first character.
int lees_regel(int c, Klok::time_point grens) {
    for (; c != '\r'; c = lees_teken(100, grens)) {
        if (c == WEG)
            return MD_NO_CARRIER;
        if (c == NIETS || regel.size() >= REGELMAX || Klok::now() > grens)
            return MD_ERROR;
        regel += static_cast<char>(c);
    }
    return code_van(regel);
}

// Answers until one says something: so many seconds for the first, what is left of them, but `minstens`, for the others.
int antwoord(int tijd, int minstens) {
    const auto begin = Klok::now(), eind = begin + seconds(tijd);
    int code = mdanswer(tijd * 100);
    for (int n = 1; code == MD_ANDERS && n < ANTWOORDEN && Klok::now() < eind + seconds(SPEELRUIMTE); n++) {
        const auto over = std::chrono::ceil<seconds>(eind - Klok::now()).count();
        code = mdanswer(std::max(static_cast<int>(over), minstens) * 100);
    }
    return code;
}

} // namespace

int mdopen(const modemlijn& nieuw) {
    mdclose();
    lijn = nieuw;
    fout = 0;
    if (lijn.apparaat.empty())
        return mislukt(MDF_POORT);
    lees_fd = open_poort(O_RDONLY);
    schrijf_fd = lees_fd < 0 ? -1 : open_poort(O_WRONLY);
    if (schrijf_fd < 0 || ioctl(lees_fd, TCGETA, &gevonden) < 0) {
        sluit(&lees_fd);
        sluit(&schrijf_fd);
        return mislukt(MDF_OPEN);
    }
    stand = OPEN; // from here on there is something to give back
    vorige_haak = SCRFATALHAAK;
    SCRFATALHAAK = bij_stop;
    SCRNOODHAAK = bij_nood;
    if (!stel_in() || !laat_wachten(lees_fd)) {
        lijn.ophangen = false;
        mdclose();
        return mislukt(MDF_OPEN);
    }
    leeg_invoer();
    return 1;
}

void mdclose() {
    if (!stand)
        return;
    const int was = fout;
    if (lijn.ophangen)
        mdhangup();
    spoel();
    ioctl(schrijf_fd, TCSETA, &gevonden);
    sluit(&lees_fd);
    sluit(&schrijf_fd);
    stand = 0;
    fout = was;
    if (SCRFATALHAAK == bij_stop)
        SCRFATALHAAK = vorige_haak;
    SCRNOODHAAK = nullptr;
}

int mdhangup() {
    struct termio t;
    if (!stand)
        return mislukt(MDF_DICHT);
    spoel();
    if (ioctl(schrijf_fd, TCGETA, &t) < 0)
        return mislukt(MDF_DICHT);
    const unsigned short vlaggen = t.c_cflag;
    t.c_cflag = static_cast<unsigned short>(vlaggen & ~BAUDBITS); // speed 0 drops the line
    bool goed = ioctl(schrijf_fd, TCSETA, &t) == 0;
    for (unsigned over = 2; over; over = sleep(over)) { // no signal shortens it
    }
    sluit(&lees_fd);
    lees_fd = open_poort(O_RDONLY);
    t.c_cflag = vlaggen;
    goed = ioctl(schrijf_fd, TCSETA, &t) == 0 && goed;
    stand = stand & ~static_cast<unsigned>(VERBONDEN);
    if (lees_fd < 0 || !laat_wachten(lees_fd))
        return mislukt(MDF_OPEN);
    return goed ? 1 : mislukt(MDF_DICHT);
}

int mdsend(const char* tekst) {
    if (!stand)
        return mislukt(MDF_DICHT);
    for (; *tekst; tekst++) {
        pollfd p{schrijf_fd, POLLOUT, 0};
        int klaar;
        do
            klaar = poll(&p, 1, SCHRIJFMS);
        while (klaar < 0 && errno == EINTR && !mdafbreken);
        if (klaar != 1 || SYS.write(schrijf_fd, tekst, 1) != 1)
            return mislukt(MDF_DICHT);
    }
    return 1;
}

int mdanswer(int tijd) {
    regel.clear();
    opgehouden = false;
    if (!stand) {
        fout = MDF_DICHT;
        return MD_TIJD;
    }
    int over = (std::max(tijd, 0) + 99) / 100, code = MD_TIJD;
    const auto grens = Klok::now() + seconds(over + static_cast<int>(SPEELRUIMTE));
    for (; over > 0 && !(opgehouden = opgegeven()); over--) {
        char seconden[12];
        snprintf(seconden, sizeof seconden, "%2d", over);
        toon_over(seconden);
        const int c = lees_teken(100, Klok::now() + seconds(1));
        if (c == NIETS)
            continue;
        code = lees_regel(c, grens);
        break;
    }
    toon_over("");
    return code;
}

int mdinit() {
    if (!stand)
        return mislukt(MDF_DICHT);
    if (lijn.init.empty())
        return 1;
    const int pauze = std::max(lijn.pauze, 0), tijd = std::max(pauze, 1);
    if (!mdhangup() || !mdsend((lijn.reset + "\r").c_str()) || !rust(pauze) ||
        !mdsend((lijn.init + "\r").c_str()))
        return mislukt(MDF_INIT);
    if (mdanswer(tijd * 100) == MD_OK)
        return 1;
    if (opgehouden || !rust(pauze))
        return mislukt(MDF_INIT);
    leeg_invoer();
    return mdsend("AT\r") && antwoord(tijd, tijd) == MD_OK ? 1 : mislukt(MDF_INIT);
}

int mddial() {
    constexpr int MINSTENS = 5;
    if (!stand)
        return mislukt(MDF_DICHT);
    leeg_invoer();
    if (!mdsend((std::string("ATD") + lijn.kieswijze + lijn.nummer + "\r").c_str()))
        return 0;
    const int code = antwoord(std::max(lijn.tijd, 0), MINSTENS);
    sleep(1);
    if (code != MD_CONNECT)
        return mislukt(code == MD_ANDERS ? int{MD_TIJD} : code);
    stand = stand | VERBONDEN;
    return 1;
}

std::string mdregel() {
    return regel;
}

int mdfout() {
    return fout;
}

std::string mderror() {
    char tekst[160];
    // 2 of an open line is a modem that rings while it should dial
    if (fout == MDF_OPEN && !stand) {
        snprintf(tekst, sizeof tekst, "%s: %.100s", TXT(T_MD_RECHTEN), lijn.apparaat.c_str());
        return tekst;
    }
    constexpr struct {
        int nummer;
        const Tekst* tekst;
    } TEKSTEN[] = {
        {MDF_POORT, &T_MD_POORT},     {MD_NO_CARRIER, &T_MD_DRAAGGOLF}, {MD_ERROR, &T_MD_SYNTAX},
        {MD_NO_DIAL, &T_MD_KIESTOON}, {MD_BUSY, &T_MD_GESPREK},         {MD_NO_ANSWER, &T_MD_NIET_OP},
        {MD_TIJD, &T_MD_TIJD},        {MDF_INIT, &T_MD_INSTELLEN},      {MDF_DICHT, &T_MD_DICHT}};
    for (const auto& t : TEKSTEN)
        if (t.nummer == fout)
            return TXT(*t.tekst);
    snprintf(tekst, sizeof tekst, "%s (ErrNo=%d)", TXT(T_MD_FOUT), fout);
    return tekst;
}

} // namespace zg
