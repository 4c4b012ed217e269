// The keyboard: bytes as terminals send them, and the keys that they are.
#include "toetslog.h"

using namespace zg;
using namespace zg::test;

TEST(Klavier, KeysOfEveryTerminal) {
    const std::string reeks =
        "<Up><Down><Left><Right><Home><End><PgUp><PgDn><Ins><Del><Back><BTab><Tab><Enter><Esc>";
    const std::string f = "<F1><F2><F3><F4><F5><F6><F7><F8><F9><F10><F11><F12>";
    for (const char* term : {"xterm", "xterm-256color", "tmux", "tmux-256color", "screen", "linux", "rxvt",
                             "vt220", "vt100", "alacritty", "foot", "xterm-kitty"}) {
        SCOPED_TRACE(term);
        Terminal t(toetslog, {.term = term});
        t.kalm();
        t.toetsen(reeks + f + "<Cancel><Help><Exit>q");
        EXPECT_EQ(t.regel(1), "259 258 260 261 262 360 339 338 331 330 263 353 9 10 27 265 266 267 268");
        EXPECT_EQ(t.regel(2), "269 270 271 272 273 274 275 276 355 363 361 113");
        t.stuur("q");
        EXPECT_EQ(t.einde(), 0);
    }
}

TEST(Klavier, Sequences) {
    static const struct {
        const char *bytes, *codes, *waarom;
    } GEVALLEN[] = {
        {"\033[A\033OA\033[B\033OB", "259 259 258 258 ", "both cursor modes"},
        {"\033[11~\033[12~\033[[A\033OP", "265 266 265 265 ", "F1 in four dialects"},
        {"\033[1~\033[7~\033[H\033OH\033[4~\033[8~\033[F", "262 262 262 262 360 360 360 ", "Home and End"},
        {"\033Op\033OM\033On", "48 10 46 ", "keypad"},
        {"\033[1;5A\033[3;2~\033[1;2H\033[1;3D", "259 330 262 260 ", "with Shift, Ctrl or Alt"},
        {"\033O5A\033O1;2C\033Oa\033Od\033[b", "259 261 259 260 258 ", "the same in three dialects"},
        {"\033[7$x\033[8^\033[3@\033[5$", "262 120 360 330 339 ",
         "the same, and nothing behind $ goes with it"},
        {"\033[1;2P\033[15;5~\033[200~\033[99;99;99u\033O5P\033Oz\033[[Zx",
         "600 600 600 600 600 600 600 120 ", "no key of ours, no loose letters"},
        {"\033[?62;1c\033[24;80R\033[0n\033[?2026;2$yx", "600 600 600 600 120 ", "answers of a terminal"},
        {"\033]0;titel\007a\033]11;rgb:0/0/0\033\\b\033P1$r0m\033\\c", "600 97 600 98 600 99 ",
         "OSC and DCS"},
        {"\033_Gi=1;OK\033\\a\033^x y\033\\b\033Xz\033\\c", "600 97 600 98 600 99 ", "APC, PM and SOS"},
        {"\033[Mabcx\033[M !", "600 120 600 ", "an old mouse, and one that is broken off"},
        {"\033]jan\r", "600 106 97 110 10 ", "Alt-] is no answer: what is typed behind it stays"},
        {"\033[1;2\033[A\033O\033[B\033[\r", "600 259 600 258 600 10 ", "broken off by the next key"},
        {"\033\033[A", "27 259 ", "Esc and a key behind it"},
        {"\033x\033\xC3\xA9\0337\033\177\033[", "600 600 600 600 600 ", "Alt and a character"},
        {"\033\r\033\t\033\033\033", "27 10 27 9 27 27 27 ", "Esc and a control"},
        {"\x13\x11x", "120 ", "XON and XOFF"},
        {"\r\n\t\b\177", "10 10 9 8 263 ", "controls"},
        {"\x01\x16\x0f\x04", "1 22 15 4 ", "controls that a line discipline could take"},
        {"\xC3\xB8\xC3\xA9\xE2\x94\x82", "155 130 179 ", "UTF-8"},
        {"\xE2\x80\x99\xE2\x80\x9C\xE2\x80\x93", "39 34 45 ", "quotes and dash as people paste them"},
        {"x\xC3y\xE9z\xFFw\xC0\xAFv", "120 121 122 119 118 ",
         "bytes that are no UTF-8 take nothing with them"},
        {"\xC2\xA0", "32 ", "a no-break space is a blank"},
        {"\xC2\x9Bx", "120 ", "a C1 control is no character"},
    };
    for (const auto& g : GEVALLEN)
        EXPECT_EQ(codes(g.bytes), g.codes) << g.waarom;
    std::string lang(3000, 'A'), kort(100, 'A');
    EXPECT_EQ(codes("\033]52;c;" + kort + "\007x"), "600 120 ") << "a long answer";
    EXPECT_EQ(codes("\033P" + lang + "\033\\x"), "600 120 ") << "longer than there is room for";
}

// How long ESC waits for what belongs to it. Nonsense in ESCDELAY counts as nothing.
TEST(Klavier, EscWaits) {
    static const struct {
        const char* waarde;
        int minstens, hoogstens;
    } GEVALLEN[] = {{"700", 690, 4000}, {"0", 0, 400},     {"", 20, 400},    {"-700", 20, 400},
                    {"99999", 20, 400}, {"700x", 20, 400}, {"9999", 20, 400}};
    for (const auto& g : GEVALLEN) {
        SCOPED_TRACE(g.waarde);
        Terminal t(toetslog, {.omgeving = {{"ESCDELAY", g.waarde}}});
        t.kalm();
        int snelst = 1 << 30; // of a few, on a machine that has other work
        for (int i = 1; i <= 4 && snelst > g.hoogstens; i++) {
            const auto van = std::chrono::steady_clock::now();
            t.stuur("\033");
            t.wacht_op(1, 3 * i - 2, "27");
            const auto duur = std::chrono::steady_clock::now() - van;
            snelst = std::min(snelst, static_cast<int>(duur / std::chrono::milliseconds(1)));
        }
        EXPECT_GE(snelst, g.minstens);
        EXPECT_LE(snelst, g.hoogstens);
        t.kalm();
        t.stuur("x"); // came apart: a key of its own
        t.wacht("120");
    }
    Terminal t(toetslog, {.omgeving = {{"ESCDELAY", "5000"}}});
    t.kalm();
    for (const char* stuk : {"\033", "[", "A"})
        t.stuur(stuk);
    t.wacht_op(1, 1, "259");
}

// Refused, told once with the cursor back in its place, and nothing else goes with it.
TEST(Klavier, RefusedKeysAreToldOnce) {
    OpScherm t([] {
        uint16_t n = 0;
        INGAVE(5, 10, "4u,P", &SCHERM.toets[key_cancel], &n);
    });
    t.stuur("1abcdef2");
    t.wacht_op(5, 10, "12__");
    t.kalm();
    EXPECT_EQ(t.bellen(), 1);
    EXPECT_EQ(t.regel(25), "<f> Ongeldige ingave!!  (HELP voor toelichting)");
    EXPECT_EQ(t.cursor_rij(), 5);
    EXPECT_EQ(t.cursor_kolom(), 12);
    t.toetsen("a");
    t.toetsen("b");
    EXPECT_EQ(t.bellen(), 3) << "by themselves each is heard";
    t.toetsen("3");
    EXPECT_EQ(t.regel(25), "");
}

// A character or sequence may come in two packets.
TEST(Klavier, HalfACharacterWaits) {
    OpScherm t([] {
        SCRPUT(A_WAARDE, 1, 1, "%d", TOETS());
        SCRFLUSH(0);
        while (!TOETSKLAAR()) { // also when only looked at
        }
        SCRPUT(A_WAARDE, 2, 1, "%d", TOETS());
    });
    t.stuur("\xC3");
    t.kalm();
    EXPECT_EQ(t.regel(1), "");
    t.stuur("\xB8");
    t.wacht("155");
    for (const char* stuk : {"\xE2", "\x94", "\x82"})
        t.stuur(stuk);
    t.wacht("179");
}

// Ctrl-S stops nothing and Ctrl-L shows everything again; both only at the keyboard.
TEST(Klavier, CtrlSAndCtrlL) {
    OpScherm t([] {
        SCRPUT(A_WAARDE, 5, 5, "onder");
        WINOPEN1(10, 10, 3, 10);
        WINBOX("boven");
        SCRPUT(A_WAARDE, 1, 1, "%d %d", TOETS(), TOETS());
        TOETSTERUG(12);
        SCRPUT(A_WAARDE, 1, 1, "%d   ", TOETS());
    });
    const size_t n = t.uitvoer().size();
    t.stuur("\x13\x0c");
    t.toetsen("");
    EXPECT_NE(t.uitvoer().find("onder", n), std::string::npos);
    EXPECT_NE(t.uitvoer().find("boven", n), std::string::npos);
    t.stuur("a\x11\x0c\x13");
    t.stuur("b");
    t.wacht("12   ");
}
