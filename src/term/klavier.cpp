// From the bytes of the keyboard to keys: the terminal's own sequences, those that other terminals send for
// the same keys, and UTF-8. Read here and not by curses, which drops half a character when it comes in two
// pieces, keeps typed-ahead bytes to itself when the program ends, and turns an unknown key into ESC and
// loose letters. Bytes are taken one at a time, so that what is not needed stays with the terminal.
#include "term/binnen.h"
#include "term/natl.h"
#include "term/teksten.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

constexpr int ESC_MS = 25;    // after ESC: does more follow?
constexpr int REEKS_MS = 200; // inside a sequence that can only be a key
constexpr int UTF8_MS = 100;  // inside a character, when not waiting anyway

struct Sleutel {
    std::string reeks;
    int32_t key;
};
std::vector<Sleutel> sleutels;
bool begint[256];  // bytes that a sequence begins with
uint8_t bytes[64]; // read and not yet a key
int aantal;

struct Vast {
    const char* reeks;
    int32_t key;
};

constexpr int32_t F(int n) {
    return K_F1 + n - 1;
}

// The terminal's own, asked by name.
constexpr Vast EIGEN[] = {
    {"kcan", K_CANCEL}, {"kext", K_EXIT},   {"khlp", K_HELP},  {"kcuu1", K_UP}, {"kcud1", K_DOWN},
    {"kcub1", K_LEFT},  {"kcuf1", K_RIGHT}, {"khome", K_HOME}, {"kend", K_END}, {"kpp", K_PGUP},
    {"knp", K_PGDN},    {"kich1", K_IC},    {"kdch1", K_DC},   {"kbs", K_BACK}, {"kcbt", K_BTAB},
    {"kent", K_ENTER},  {"kf1", F(1)},      {"kf2", F(2)},     {"kf3", F(3)},   {"kf4", F(4)},
    {"kf5", F(5)},      {"kf6", F(6)},      {"kf7", F(7)},     {"kf8", F(8)},   {"kf9", F(9)},
    {"kf10", F(10)},    {"kf11", F(11)},    {"kf12", F(12)},
};

// What terminals of all makes send; the terminal's own sequences come before these.
constexpr Vast ANDERE[] = {
    {"\033[A", K_UP},       {"\033[B", K_DOWN},     {"\033[C", K_RIGHT}, {"\033[D", K_LEFT},
    {"\033OA", K_UP},       {"\033OB", K_DOWN},     {"\033OC", K_RIGHT}, {"\033OD", K_LEFT},
    {"\033[H", K_HOME},     {"\033OH", K_HOME},     {"\033[1~", K_HOME}, {"\033[7~", K_HOME},
    {"\033[F", K_END},      {"\033OF", K_END},      {"\033[4~", K_END},  {"\033[8~", K_END},
    {"\033[2~", K_IC},      {"\033[3~", K_DC},      {"\033[5~", K_PGUP}, {"\033[6~", K_PGDN},
    {"\033[Z", K_BTAB},     {"\033OP", F(1)},       {"\033OQ", F(2)},    {"\033OR", F(3)},
    {"\033OS", F(4)},       {"\033[P", F(1)},       {"\033[Q", F(2)},    {"\033[R", F(3)},
    {"\033[S", F(4)},       {"\033[11~", F(1)},     {"\033[12~", F(2)},  {"\033[13~", F(3)},
    {"\033[14~", F(4)},     {"\033[[A", F(1)},      {"\033[[B", F(2)},   {"\033[[C", F(3)},
    {"\033[[D", F(4)},      {"\033[[E", F(5)},      {"\033[15~", F(5)},  {"\033[17~", F(6)},
    {"\033[18~", F(7)},     {"\033[19~", F(8)},     {"\033[20~", F(9)},  {"\033[21~", F(10)},
    {"\033[23~", F(11)},    {"\033[24~", F(12)},    {"\033OM", K_ENTER}, {"\033Oj", '*'},
    {"\033Ok", '+'},        {"\033Ol", ','},        {"\033Om", '-'},     {"\033On", '.'},
    {"\033Oo", '/'},        {"\033Op", '0'},        {"\033Oq", '1'},     {"\033Or", '2'},
    {"\033Os", '3'},        {"\033Ot", '4'},        {"\033Ou", '5'},     {"\033Ov", '6'},
    {"\033Ow", '7'},        {"\033Ox", '8'},        {"\033Oy", '9'},     {"\033OX", '='},
    {"\033[E", K_ONBEKEND}, {"\033OE", K_ONBEKEND}, {"\177", K_BACK},
};

void leer(const std::string& reeks, int32_t key) {
    if (reeks.empty() ||
        std::any_of(sleutels.begin(), sleutels.end(), [&](const Sleutel& s) { return s.reeks == reeks; }))
        return;
    sleutels.push_back({reeks, key});
    begint[static_cast<uint8_t>(reeks[0])] = true;
}

enum class Vul { BYTE, NIETS, SEIN };

// One byte more within ms milliseconds. The signals that matter are held off between the look at their notes
// and the wait, so that none falls in between; `door`: what is noted already doesn't keep it from waiting.
// Bytes of a dead terminal never come: that is the end.
Vul vul(int ms, bool door = false) {
    static sigset_t seinen;
    static bool klaar;
    if (!klaar) {
        klaar = true;
        sigemptyset(&seinen);
        for (int s : {SIGINT, SIGQUIT, SIGHUP, SIGTERM, SIGWINCH})
            sigaddset(&seinen, s);
    }
    if (aantal == static_cast<int>(sizeof bytes))
        return Vul::NIETS;
    sigset_t vrij;
    pollfd p{STDIN_FILENO, POLLIN, 0};
    timespec tijd{ms / 1000, (ms % 1000) * 1000000L};
    int n = -1, fout = 0;
    bool sein = false;
    if (ms == 0) {
        n = poll(&p, 1, 0);
        fout = errno;
    } else {
        sigprocmask(SIG_BLOCK, &seinen, &vrij);
        sein = !door && (SCHERM.signaaltoets || MAATSEIN || SEINEINDE());
        if (!sein)
            n = ppoll(&p, 1, ms < 0 ? nullptr : &tijd, &vrij);
        fout = errno;
        sigprocmask(SIG_SETMASK, &vrij, nullptr);
    }
    SEINSTOP();
    if (n < 0)
        return sein || fout == EINTR ? Vul::SEIN : Vul::NIETS;
    if (n == 0)
        return Vul::NIETS;
    ssize_t gelezen = read(STDIN_FILENO, bytes + aantal, 1);
    if (gelezen == 1) {
        aantal++;
        return Vul::BYTE;
    }
    if (gelezen < 0 && (errno == EINTR || errno == EAGAIN))
        return Vul::SEIN;
    OPGEHANGEN();
}

// The same, through signals that come meanwhile: a sequence under way is finished first.
bool vul_door(int ms) {
    timespec begin;
    clock_gettime(CLOCK_MONOTONIC, &begin);
    for (int rest = ms; rest >= 0;) {
        Vul v = vul(rest, true);
        if (v != Vul::SEIN)
            return v == Vul::BYTE;
        timespec nu;
        clock_gettime(CLOCK_MONOTONIC, &nu);
        rest =
            ms - static_cast<int>((nu.tv_sec - begin.tv_sec) * 1000 + (nu.tv_nsec - begin.tv_nsec) / 1000000);
    }
    return false;
}

int32_t verbruik(int n, int32_t key) {
    aantal -= n;
    memmove(bytes, bytes + n, static_cast<size_t>(aantal));
    return key;
}

// The longest known sequence at the front; 0 when there is none. *meer: a longer one may still come.
int langste(int32_t* key, bool* meer) {
    int beste = 0;
    *meer = false;
    for (const Sleutel& s : sleutels) {
        int n = static_cast<int>(s.reeks.size()), gelijk = std::min(n, aantal);
        if (memcmp(s.reeks.data(), bytes, static_cast<size_t>(gelijk)) != 0)
            continue;
        if (n > aantal)
            *meer = true;
        else if (n > beste) {
            beste = n;
            *key = s.key;
        }
    }
    return beste;
}

// A sequence ESC [ ... that no table knows. With a modifier ("1;5A", "5;2~") a cursor key stays what it is;
// anything else is one unknown key and not ESC with loose letters behind it. 0: not a sequence after all.
int32_t onbekende_reeks() {
    int i = 2;
    for (;; i++) {
        if (i >= aantal && !vul_door(REEKS_MS))
            return 0;
        if (bytes[i] >= 0x40 && bytes[i] <= 0x7E)
            break;
        if (bytes[i] < 0x20 || bytes[i] > 0x3F || i > 40)
            return 0;
    }
    std::string reeks(reinterpret_cast<char*>(bytes), static_cast<size_t>(i) + 1);
    int32_t key = K_ONBEKEND;
    size_t punt = reeks.find(';');
    if (punt != std::string::npos) {
        std::string kaal = reeks.substr(0, punt) + reeks.back();
        if (reeks.back() != '~')
            kaal = std::string("\033[") + reeks.back();
        for (const Vast& v : ANDERE)
            if (kaal == v.reeks && (v.key < K_F1 || v.key > F(12)))
                key = v.key;
    }
    return verbruik(i + 1, key);
}

int32_t klaar_teken(int c) {
    return c == 0 ? K_ONBEKEND : c == '\r' ? K_ENTER : c == 0xFF ? ' ' : c;
}

// The character at the front as a key; 0 when it was dropped, -1 when its bytes are not all there.
int32_t teken() {
    if (!UTF8SCHERM() || bytes[0] < 0x80)
        return verbruik(1, klaar_teken(bytes[0]));
    char32_t u = 0;
    int n;
    while ((n = UTF8TEKEN(bytes, aantal, &u)) == 0)
        if (!vul_door(UTF8_MS))
            return -1;
    if (n < 0) {
        verbruik(1, 0);
        PIEP();
        return 0;
    }
    int c = CP850IN(u);
    verbruik(n, 0);
    if (c >= 32)
        return klaar_teken(c);
    error(TXT(T_TEKEN_ONBEKEND), static_cast<unsigned>(u));
    if (SCHERM.bestaat)
        TOONVENSTER(WINNU());
    return 0;
}

} // namespace

void SLEUTELSLADEN() {
    sleutels.clear();
    memset(begint, 0, sizeof begint);
    for (const Vast& v : EIGEN) {
        const char* s = tigetstr(v.reeks);
        if (s && s != reinterpret_cast<const char*>(-1))
            leer(s, v.key);
    }
    for (const Vast& v : ANDERE)
        leer(v.reeks, v.key);
}

int32_t KLAVIER(int ms) {
    bool half = false; // what is there is no whole character yet
    for (;;) {
        if (aantal == 0 || half)
            if (vul(ms) != Vul::BYTE)
                return -1;
        if (!half && begint[bytes[0]]) {
            int32_t key = 0;
            bool meer;
            int n = langste(&key, &meer);
            while (meer && vul_door(aantal == 1 ? ESC_MS : REEKS_MS))
                n = langste(&key, &meer);
            if (n > 0)
                return verbruik(n, key);
            if (aantal > 1 && bytes[0] == K_ESC && bytes[1] == '[')
                if (int32_t k = onbekende_reeks(); k != 0)
                    return k;
        }
        int32_t key = teken();
        if (key > 0)
            return key;
        half = key == -1;
    }
}

bool KLAVIERVOL() {
    return aantal > 0;
}

int32_t KLAVIERREST() {
    while (aantal > 0) {
        int32_t key = 0;
        bool meer;
        int n = begint[bytes[0]] ? langste(&key, &meer) : 0;
        if (n > 0)
            return verbruik(n, key);
        char32_t u = bytes[0];
        n = UTF8SCHERM() ? UTF8TEKEN(bytes, aantal, &u) : 1;
        int c = n > 0 && UTF8SCHERM() ? CP850IN(u) : bytes[0];
        verbruik(std::max(n, 1), 0);
        if (n > 0 && c >= 0)
            return klaar_teken(c);
    }
    return -1;
}

} // namespace zg
