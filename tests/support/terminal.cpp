// The pseudo-terminal and emulator behind terminal.h. The child is known to wait for a key when the kernel
// has it blocked in read, or in poll without a limit, and its input queue is empty.
#include "support/terminal.h"
#include "shared/files.h"
#include "support/slotboek.h"
#include "support/toetsreeksen.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <iconv.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <utmp.h>
#include <vterm.h>

#if defined(__SANITIZE_ADDRESS__)
// The terminal library keeps no hold on what it took for a terminal that it then didn't know.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:new_prescr\n";
}
#endif

// There in a coverage build only: a child that ends without exit() must write its counters itself.
extern "C" void __gcov_dump() __attribute__((weak));

namespace zg::test {

namespace {

int64_t nu_ms() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return int64_t{t.tv_sec} * 1000 + t.tv_nsec / 1000000;
}

// ZG_WACHT=ms: no wait is longer, for runs in which most tests fail.
int hoogstens(int ms) {
    static const char* grens = getenv("ZG_WACHT");
    return grens ? std::min(ms, atoi(grens)) : ms;
}

// A byte of a set in UTF-8; "" when it is none there.
std::string in_utf8(const std::string& set, char c) {
    iconv_t cd = iconv_open("UTF-8", set.c_str());
    char uit[8], *van = &c, *naar = uit;
    size_t nvan = 1, nnaar = sizeof uit;
    bool goed = iconv(cd, &van, &nvan, &naar, &nnaar) == 0;
    iconv_close(cd);
    return goed ? std::string(uit, sizeof uit - nnaar) : "";
}

void kind_omgeving(const Opties& o) {
    setenv("TERM", o.term.c_str(), 1);
    setenv("LC_ALL", o.locale.c_str(), 1);
    setenv("TZ", "Europe/Amsterdam", 1);
    setenv("TERMINFO_DIRS", ZG_BINARY_DIR "/terminfo:/etc/terminfo:/lib/terminfo:/usr/share/terminfo", 1);
    for (const char* weg : {"TERMINFO", "LINES", "COLUMNS", "KPOS", "HOTKEYS", "MACRO", "BIN", "TSTBIN",
                            "TMUX", "STY", "LANG", "LC_CTYPE", "ZGTEKENSET", "ESCDELAY"})
        unsetenv(weg);
    if (!o.klok.empty()) {
        setenv("LD_PRELOAD", "/usr/$LIB/faketime/libfaketime.so.1", 1); // which the loader fills in
        setenv("FAKETIME", o.klok.c_str(), 1);
        setenv("FAKETIME_DONT_FAKE_MONOTONIC", "1", 1);
        setenv("NO_FAKE_STAT", "1", 1);
        setenv("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0", 1);
    }
    for (const auto& [naam, waarde] : o.omgeving)
        setenv(naam.c_str(), waarde.c_str(), 1);
    if (!o.map.empty() && chdir(o.map.c_str()) != 0)
        _exit(126);
}

} // namespace

struct Terminal::Binnen {
    Opties opties;
    int meester = -1, slaaf = -1; // the slave end stays open to ask for unread input
    pid_t pid = -1;
    int status = -1; // exit status once known
    VTerm* vt = nullptr;
    VTermScreen* vs = nullptr;
    int bellen = 0;
    int rijen = 0, kolommen = 0;
    VTermPos cursor{0, 0};
    std::string uitvoer;
    VTermScreenCallbacks terugroep{};
    std::vector<std::string> letters; // of bytes from 128, when the terminal has a set of its own

    // The emulator knows UTF-8 only: what a terminal of another set shows.
    void toon(const char* s, size_t n) {
        if (letters.empty()) {
            vterm_input_write(vt, s, n);
            return;
        }
        std::string om;
        for (size_t i = 0; i < n; i++)
            om += s[i] & 0x80 ? letters[static_cast<unsigned char>(s[i]) - 128] : std::string(1, s[i]);
        vterm_input_write(vt, om.data(), om.size());
    }

    void start(const Opties& o, const std::function<void()>& kind) {
        opties = o;
        rijen = o.rijen, kolommen = o.kolommen;
        vt = vterm_new(rijen, kolommen);
        vterm_set_utf8(vt, !o.tekenset.empty() || o.locale.find("UTF-8") != std::string::npos);
        if (!o.tekenset.empty() && o.tekenset != "UTF-8")
            for (unsigned c = 128; c < 256; c++)
                letters.push_back(in_utf8(o.tekenset, static_cast<char>(c)));
        vs = vterm_obtain_screen(vt);
        terugroep.bell = [](void* u) { return ++static_cast<Binnen*>(u)->bellen, 1; };
        terugroep.movecursor = [](VTermPos p, VTermPos, int, void* u) {
            static_cast<Binnen*>(u)->cursor = p;
            return 1;
        };
        vterm_screen_set_callbacks(vs, &terugroep, this);
        vterm_screen_enable_altscreen(vs, 1);
        vterm_screen_reset(vs, 1);
        winsize w{static_cast<unsigned short>(rijen), static_cast<unsigned short>(kolommen), 0, 0};
        if (openpty(&meester, &slaaf, nullptr, nullptr, &w) != 0) {
            perror("openpty");
            abort();
        }
        fcntl(meester, F_SETFD, FD_CLOEXEC);
        fcntl(slaaf, F_SETFD, FD_CLOEXEC);
        fflush(nullptr);
        pid = fork();
        if (pid == 0) {
            close(meester);
            login_tty(slaaf);
            kind_omgeving(o);
            kind();
            _exit(127);
        }
        fcntl(meester, F_SETFL, O_NONBLOCK);
    }

    // Take what the program has sent; true when there was any.
    bool pomp(int ms) {
        if (meester < 0)
            return false;
        pollfd p{meester, POLLIN, 0};
        if (poll(&p, 1, ms) <= 0)
            return false;
        bool iets = false;
        char buf[8192];
        for (ssize_t n; (n = read(meester, buf, sizeof buf)) > 0; iets = true) {
            uitvoer.append(buf, static_cast<size_t>(n));
            toon(buf, static_cast<size_t>(n));
            char terug[256];
            while (size_t m = vterm_output_read(vt, terug, sizeof terug))
                if (opties.antwoordt && write(meester, terug, m) < 0)
                    break;
        }
        if (!iets)
            usleep(1000);
        return iets;
    }

    bool geeindigd() {
        if (status >= 0)
            return true;
        int st;
        if (waitpid(pid, &st, WNOHANG) != pid)
            return false;
        status = WIFEXITED(st) ? WEXITSTATUS(st) : 128 + WTERMSIG(st);
        return true;
    }

    std::string proces(const char* naam) const {
        return lees_bestand("/proc/" + std::to_string(pid) + "/" + naam);
    }

    bool wacht_op_toets() {
        int rest = 0;
        if (slaaf >= 0 && ioctl(slaaf, FIONREAD, &rest) == 0 && rest > 0)
            return false;
        unsigned long nr = 0, a = 0, b = 0, c = 0;
        if (sscanf(proces("syscall").c_str(), "%lu 0x%lx 0x%lx 0x%lx", &nr, &a, &b, &c) < 4)
            return false;
        // Held by a tracer at the end of a read is no waiting.
        std::string stand = proces("stat");
        if (stand.find(") S ") == std::string::npos)
            return false;
        // read on the terminal, or poll without a limit
        return (nr == 0 && a == 0) || (nr == 7 && static_cast<int>(c) < 0) || (nr == 271 && c == 0);
    }

    // How often the program has gone to sleep. What the master writes reaches the program's queue a moment later,
    // so an empty queue alone doesn't say that a key has been read: it must have slept anew since.
    long geslapen() const {
        static const char regel[] = "\nvoluntary_ctxt_switches:";
        std::string tekst = proces("status");
        size_t plek = tekst.find(regel);
        return plek == std::string::npos ? -1 : atol(tekst.c_str() + plek + strlen(regel));
    }

    long sliep = -1;         // geslapen() when keys were sent to a waiting program
    int64_t gestuurd_om = 0; // a line discipline may keep what it gets, so not for ever

    bool ontvangen() const { return sliep < 0 || geslapen() != sliep || nu_ms() > gestuurd_om + 500; }

    bool kalm(int ms) {
        int64_t tot = nu_ms() + hoogstens(ms);
        do {
            pomp(0);
            if (geeindigd())
                return pomp(0), true;
            if (wacht_op_toets() && ontvangen()) {
                while (pomp(0)) {
                }
                if (wacht_op_toets())
                    return true;
            }
            pomp(1);
        } while (nu_ms() < tot);
        return false;
    }

    VTermScreenCell cel(int rij, int kolom) const {
        VTermScreenCell c{};
        vterm_screen_get_cell(vs, VTermPos{rij - 1, kolom - 1}, &c);
        return c;
    }

    std::string teken(int rij, int kolom) const {
        char tekst[64];
        const size_t n = vterm_screen_get_text(vs, tekst, sizeof tekst, {rij - 1, rij, kolom - 1, kolom});
        return n ? std::string(tekst, n) : " ";
    }

    template <class F> bool tot_dat(int ms, F klaar) {
        int64_t tot = nu_ms() + hoogstens(ms);
        while (!klaar()) {
            if (nu_ms() >= tot)
                return false;
            pomp(5);
            if (geeindigd() && !pomp(0))
                return klaar();
        }
        return true;
    }
};

Terminal::Terminal(const std::vector<std::string>& argv, const Opties& opties) : b_(new Binnen) {
    b_->start(opties, [&] {
        std::vector<char*> a;
        for (const auto& s : argv)
            a.push_back(const_cast<char*>(s.c_str()));
        a.push_back(nullptr);
        execvp(a[0], a.data());
        perror(a[0]);
    });
}

Terminal::Terminal(const std::function<int()>& kind, const Opties& opties) : b_(new Binnen) {
    b_->start(opties, [&] {
        int status = kind();
        fflush(nullptr);
        if (__gcov_dump)
            __gcov_dump();
        _exit(status);
    });
}

Terminal::~Terminal() {
    if (__gcov_dump && !b_->geeindigd()) {
        ::kill(b_->pid, SIGTERM);
        einde(1000);
    }
    if (!b_->geeindigd()) {
        ::kill(b_->pid, SIGKILL);
        waitpid(b_->pid, nullptr, 0);
    }
    close(b_->meester);
    close(b_->slaaf);
    vterm_free(b_->vt);
    delete b_;
}

void Terminal::stuur(std::string_view bytes) {
    b_->sliep = b_->wacht_op_toets() ? b_->geslapen() : -1;
    b_->gestuurd_om = nu_ms();
    int64_t tot = nu_ms() + 10000;
    while (!bytes.empty() && nu_ms() < tot && !b_->geeindigd()) {
        ssize_t n = write(b_->meester, bytes.data(), bytes.size());
        if (n > 0)
            bytes.remove_prefix(static_cast<size_t>(n));
        else
            b_->pomp(5);
    }
}

// ZG_BEELDEN=file: what was typed and the screen behind it, for who wants to see what a test sees.
static void noteer(std::string_view toetsen, const std::string& scherm) {
    static const char* pad = getenv("ZG_BEELDEN");
    FILE* f = pad ? fopen(pad, "a") : nullptr;
    if (!f)
        return;
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    fprintf(f, "== %s.%s: %.*s\n%s\n", test ? test->test_suite_name() : "", test ? test->name() : "",
            static_cast<int>(toetsen.size()), toetsen.data(), scherm.c_str());
    fclose(f);
}

void Terminal::toetsen(std::string_view reeks) {
    for (const std::string& toets : toetsreeksen(b_->opties.term, reeks)) {
        EXPECT_TRUE(kalm()) << "the program does not wait for a key\n" << scherm();
        stuur(toets);
    }
    EXPECT_TRUE(kalm()) << "the program does not wait for a key after " << reeks << "\n" << scherm();
    noteer(reeks, scherm());
}

void Terminal::reeks(std::string_view tekst) {
    std::string alles;
    for (const std::string& toets : toetsreeksen(b_->opties.term, tekst)) {
        if (alles.ends_with('\033') && static_cast<unsigned char>(toets[0]) >= ' ') {
            stuur(alles); // together they would be a character with Alt
            kalm();
            alles.clear();
        }
        alles += toets;
    }
    stuur(alles);
}

bool Terminal::kalm(int ms) {
    return b_->kalm(ms);
}

bool Terminal::wacht(std::string_view tekst, int ms) {
    bool goed = b_->tot_dat(ms, [&] { return scherm().find(tekst) != std::string::npos; });
    EXPECT_TRUE(goed) << "not on the screen: " << tekst << "\n" << scherm();
    return goed;
}

bool Terminal::wacht_op(int rij, int kolom, std::string_view tekst, int ms) {
    auto staat = [&] {
        std::string s;
        for (int k = kolom; k <= b_->kolommen && s.size() < tekst.size(); k++)
            s += b_->teken(rij, k);
        return s == tekst;
    };
    bool goed = b_->tot_dat(ms, staat);
    EXPECT_TRUE(goed) << "not at " << rij << "," << kolom << ": " << tekst << "\n" << scherm();
    return goed;
}

bool Terminal::weg(std::string_view tekst, int ms) {
    bool goed = b_->tot_dat(ms, [&] { return scherm().find(tekst) == std::string::npos; });
    EXPECT_TRUE(goed) << "still on the screen: " << tekst << "\n" << scherm();
    return goed;
}

std::string Terminal::regel(int rij) {
    std::string s = stuk(rij, 1, b_->kolommen);
    while (!s.empty() && s.back() == ' ')
        s.pop_back();
    return s;
}

std::string Terminal::stuk(int rij, int kolom, int breedte) {
    b_->pomp(0);
    std::string s;
    for (int k = kolom; k < kolom + breedte && k <= b_->kolommen; k++)
        s += b_->teken(rij, k);
    return s;
}

std::string Terminal::scherm() {
    std::string s;
    for (int r = 1; r <= b_->rijen; r++)
        s += regel(r) + "\n";
    return s;
}

Cel Terminal::cel(int rij, int kolom) {
    b_->pomp(0);
    VTermScreenCell c = b_->cel(rij, kolom);
    auto kleur = [](const VTermColor& k) {
        if (VTERM_COLOR_IS_DEFAULT_FG(&k) || VTERM_COLOR_IS_DEFAULT_BG(&k))
            return -1;
        return VTERM_COLOR_IS_INDEXED(&k) ? int{k.indexed.idx} : 256;
    };
    return {b_->teken(rij, kolom), c.attrs.bold != 0, c.attrs.reverse != 0, c.attrs.underline != 0,
            c.attrs.blink != 0,    kleur(c.fg),       kleur(c.bg)};
}

int Terminal::cursor_rij() {
    return b_->pomp(0), b_->cursor.row + 1;
}
int Terminal::cursor_kolom() {
    return b_->pomp(0), b_->cursor.col + 1;
}
int Terminal::bellen() {
    return b_->pomp(0), b_->bellen;
}

int Terminal::einde(int ms) {
    b_->tot_dat(ms, [&] { return b_->geeindigd(); });
    while (b_->pomp(0)) {
    }
    return b_->status;
}

bool Terminal::leeft() {
    return !b_->geeindigd();
}
void Terminal::sein(int signaal) {
    ::kill(b_->pid, signaal);
}

void Terminal::hangop() {
    close(b_->slaaf);
    close(b_->meester);
    b_->slaaf = b_->meester = -1;
}

void Terminal::maat(int rijen, int kolommen) {
    b_->rijen = rijen, b_->kolommen = kolommen;
    vterm_set_size(b_->vt, rijen, kolommen);
    winsize w{static_cast<unsigned short>(rijen), static_cast<unsigned short>(kolommen), 0, 0};
    ioctl(b_->meester, TIOCSWINSZ, &w);
}

pid_t Terminal::pid() const {
    return b_->pid;
}
std::string Terminal::uitvoer() {
    return b_->pomp(0), b_->uitvoer;
}

TijdelijkeMap::TijdelijkeMap(bool erin) {
    slotboek_aan();
    const char* waar = getenv("TMPDIR");
    pad_ = std::string(waar && *waar ? waar : "/tmp") + "/zgtestXXXXXX";
    if (!mkdtemp(pad_.data())) {
        perror("mkdtemp");
        abort();
    }
    if (erin) {
        terug_ = std::filesystem::current_path();
        IOCHDIR(pad_.c_str());
    }
}

TijdelijkeMap::~TijdelijkeMap() {
    std::error_code fout;
    if (!terug_.empty())
        IOCHDIR(terug_.c_str());
    std::filesystem::remove_all(pad_, fout);
}

std::string lees_bestand(const std::string& pad) {
    std::string inhoud;
    if (FILE* f = fopen(pad.c_str(), "rb")) {
        char buf[65536];
        for (size_t n; (n = fread(buf, 1, sizeof buf, f)) > 0;)
            inhoud.append(buf, n);
        fclose(f);
    }
    return inhoud;
}

void schrijf_bestand(const std::string& pad, std::string_view inhoud) {
    FILE* f = fopen(pad.c_str(), "wb");
    if (!f || fwrite(inhoud.data(), 1, inhoud.size(), f) != inhoud.size())
        ADD_FAILURE() << "cannot write " << pad;
    if (f)
        fclose(f);
}

} // namespace zg::test
