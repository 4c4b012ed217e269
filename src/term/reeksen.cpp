// The key sequences of terminals: the active terminal's own, what terminals of all makes send, and the grammar of
// everything else that begins with ESC, so that what no table knows is one unknown key and not ESC with loose
// letters behind it. Bytes in, keys out; waiting for the next byte: klavier.cpp.
#include "term/binnen.h"
#include "term/natl.h"
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace zg {
namespace {

struct Sleutel {
    std::string reeks;
    int32_t key;
};
std::vector<Sleutel> sleutels;

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
    {"\033[A", K_UP},    {"\033[B", K_DOWN},  {"\033[C", K_RIGHT}, {"\033[D", K_LEFT},  {"\033OA", K_UP},
    {"\033OB", K_DOWN},  {"\033OC", K_RIGHT}, {"\033OD", K_LEFT},  {"\033[H", K_HOME},  {"\033OH", K_HOME},
    {"\033[1~", K_HOME}, {"\033[7~", K_HOME}, {"\033[F", K_END},   {"\033OF", K_END},   {"\033[4~", K_END},
    {"\033[8~", K_END},  {"\033[2~", K_IC},   {"\033[3~", K_DC},   {"\033[5~", K_PGUP}, {"\033[6~", K_PGDN},
    {"\033[Z", K_BTAB},  {"\033OP", F(1)},    {"\033OQ", F(2)},    {"\033OR", F(3)},    {"\033OS", F(4)},
    {"\033[P", F(1)},    {"\033[Q", F(2)},    {"\033[R", F(3)},    {"\033[S", F(4)},    {"\033[11~", F(1)},
    {"\033[12~", F(2)},  {"\033[13~", F(3)},  {"\033[14~", F(4)},  {"\033[[A", F(1)},   {"\033[[B", F(2)},
    {"\033[[C", F(3)},   {"\033[[D", F(4)},   {"\033[[E", F(5)},   {"\033[15~", F(5)},  {"\033[17~", F(6)},
    {"\033[18~", F(7)},  {"\033[19~", F(8)},  {"\033[20~", F(9)},  {"\033[21~", F(10)}, {"\033[23~", F(11)},
    {"\033[24~", F(12)}, {"\033OM", K_ENTER}, {"\033OI", K_TAB},   {"\033O ", ' '},     {"\033Oj", '*'},
    {"\033Ok", '+'},     {"\033Ol", ','},     {"\033Om", '-'},     {"\033On", '.'},     {"\033Oo", '/'},
    {"\033Op", '0'},     {"\033Oq", '1'},     {"\033Or", '2'},     {"\033Os", '3'},     {"\033Ot", '4'},
    {"\033Ou", '5'},     {"\033Ov", '6'},     {"\033Ow", '7'},     {"\033Ox", '8'},     {"\033Oy", '9'},
    {"\033OX", '='},     {"\177", K_BACK},
};

void leer(const std::string& reeks, int32_t key) {
    if (!reeks.empty() &&
        std::none_of(sleutels.begin(), sleutels.end(), [&](const Sleutel& s) { return s.reeks == reeks; }))
        sleutels.push_back({reeks, key});
}

// The longest sequence of the tables at the front; length 0 when there is none.
Reeks bekend(const uint8_t* s, int n) {
    Reeks r{0, 0, false};
    for (const Sleutel& sleutel : sleutels) {
        int lengte = static_cast<int>(sleutel.reeks.size());
        if (memcmp(sleutel.reeks.data(), s, static_cast<size_t>(std::min(lengte, n))) != 0)
            continue;
        if (lengte > n)
            r.meer = true;
        else if (lengte > r.lengte)
            r.lengte = lengte, r.key = sleutel.key;
    }
    return r;
}

bool cijfers(std::string_view s) {
    return std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// A whole CSI or SS3 sequence that no table knows. With Shift, Ctrl or Alt ("[1;5A", "[3;2~", "O5A", rxvt's
// "[7^", "[7$", "[a" and "Oa") a key that moves or edits stays what it is; anything else is unknown.
int32_t met_opzet(std::string_view reeks) {
    std::string begin(reeks.substr(0, 2));
    std::string_view binnen = reeks.substr(2, reeks.size() - 3);
    char slot = reeks.back();
    size_t punt = binnen.find(';');
    std::string_view nummer = binnen.substr(0, punt);
    if (!cijfers(nummer) || (punt != std::string_view::npos && !cijfers(binnen.substr(punt + 1))))
        return K_ONBEKEND;
    if (slot >= 'a' && slot <= 'd' && binnen.empty())
        slot = static_cast<char>(slot - 'a' + 'A');
    else if (begin[1] == '[' && !nummer.empty() && strchr("^$@", slot))
        slot = '~';
    if (slot == '~')
        begin += nummer;
    else if (begin[1] == '[' && !nummer.empty() && nummer != "1")
        return K_ONBEKEND;
    begin += slot;
    for (const Vast& v : ANDERE)
        if (begin == v.reeks && v.key > 255 && (v.key < F(1) || v.key > F(12)))
            return v.key;
    return K_ONBEKEND;
}

// ESC [ or ESC O and what follows. Without its last byte the sequence is what has come of it.
Reeks besturing(const uint8_t* s, int n) {
    const bool csi = s[1] == '[';
    if (csi && n > 2 && s[2] == '[') // the function keys of a console
        return n > 3 ? Reeks{4, K_ONBEKEND, false} : Reeks{3, K_ONBEKEND, true};
    for (int i = 2; i < n; i++) {
        std::string_view tot(reinterpret_cast<const char*>(s), static_cast<size_t>(i) + 1);
        // rxvt ends a number with "$", where elsewhere one byte more follows
        bool dollar = csi && s[i] == '$' && i > 2 && cijfers(tot.substr(2, tot.size() - 3));
        if ((s[i] >= 0x40 && s[i] <= 0x7E) || dollar || (!csi && s[i] == ' '))
            return {i + 1, met_opzet(tot), false};
        if (csi ? s[i] < 0x20 || s[i] > 0x3F : s[i] != ';' && (s[i] < '0' || s[i] > '9'))
            return {i, K_ONBEKEND, false};
    }
    return {n, K_ONBEKEND, true};
}

// OSC, DCS, APC, PM and SOS: text up to ST or BEL, the answer of a terminal that was asked something. What has no
// end is no answer: then a letter was typed with Alt, and the rest is typed text.
Reeks antwoord(const uint8_t* s, int n) {
    for (int i = 2; i < n; i++) {
        if (s[i] == '\a')
            return {i + 1, K_ONBEKEND, false};
        if (s[i] == K_ESC && i + 1 < n && s[i + 1] == '\\')
            return {i + 2, K_ONBEKEND, false};
        if (s[i] < 0x20 && !(s[i] == K_ESC && i + 1 == n))
            return {2, K_ONBEKEND, false};
    }
    return {2, K_ONBEKEND, true};
}

// A character right behind ESC is typed with Alt; a control key is a key of its own.
Reeks met_alt(const uint8_t* s, int n) {
    if (s[1] < 0x20)
        return {1, K_ESC, false};
    char32_t u;
    int lengte = s[1] < 0x80 || TABELSCHERM() ? 1 : UTF8TEKEN(s + 1, n - 1, &u);
    return lengte == 0 ? Reeks{n, K_ONBEKEND, true} : Reeks{1 + std::max(lengte, 1), K_ONBEKEND, false};
}

// A mouse that a program before this one left on: ESC [ M and three bytes, which may be letters.
constexpr int MUIS = 6;
bool muis(const uint8_t* s, int n) {
    return n > 2 && s[1] == '[' && s[2] == 'M';
}

Reeks vorm(const uint8_t* s, int n) {
    if (n == 1)
        return {1, K_ESC, true};
    if (s[1] == '[' || s[1] == 'O')
        return besturing(s, n);
    return strchr("]P_^X", s[1]) && s[1] ? antwoord(s, n) : met_alt(s, n);
}

} // namespace

void SLEUTELSLADEN() {
    sleutels.clear();
    for (const Vast& v : EIGEN) {
        const char* s = tigetstr(v.reeks);
        if (s && s != reinterpret_cast<const char*>(-1))
            leer(s, v.key);
    }
    for (const Vast& v : ANDERE)
        leer(v.reeks, v.key);
}

Reeks REEKS(const uint8_t* s, int n) {
    Reeks tabel = bekend(s, n);
    if (s[0] != K_ESC)
        return tabel;
    Reeks r = tabel.lengte == 0 && muis(s, n) ? Reeks{std::min(n, MUIS), K_ONBEKEND, n < MUIS} : vorm(s, n);
    if (tabel.lengte >= r.lengte && tabel.lengte > 1)
        r = {tabel.lengte, tabel.key, false};
    r.meer = r.meer || tabel.meer;
    return r;
}

} // namespace zg
