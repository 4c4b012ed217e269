// Shared file systems: which ones are, how long is waited on them, and the fixed tables when the connection is lost.
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/syscalls.h"
#include "support/proces.h"
#include "support/systeem.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace zg::test {
namespace {

struct Gedeeld : Systeem {
    ~Gedeeld() override { unsetenv("ZGGEDEELD"); }
};

TEST_F(Gedeeld, KindsOfFileSystem) {
    const struct {
        const char *pad, *proef;
        bool gedeeld, kaart;
    } gevallen[] = {
        {"/dev/shm", "0", false, true}, {"/dev/shm", "1", true, false}, {"/proc", "0", true, false}};
    for (const auto& g : gevallen) {
        SCOPED_TRACE(std::string(g.pad) + g.proef);
        const int status = in_proces([&] {
                               setenv("ZGGEDEELD", g.proef, 1);
                               EXPECT_EQ(chdir(g.pad), 0);
                               const int fd = ::open(".", O_RDONLY | O_CLOEXEC);
                               const bool hier = IOGEDEELD(); // before any file was met
                               const IOSOORT s = IOSOORTVAN(fd);
                               return (hier == g.gedeeld) + (s.gedeeld == g.gedeeld) + (s.kaart == g.kaart) +
                                      (!s.zetten || s.kaart);
                           }).status;
        EXPECT_EQ(status, 4);
    }
}

// Nobody who is refused three times asks again at once; nobody waits long for what is held for a moment.
TEST_F(Gedeeld, Pauses) {
    int langst = 0, soorten = 0;
    for (int n = 0; n < 3; n++)
        EXPECT_EQ(IONETPAUZE(n), 0);
    for (int n = 3, vorige = 0; n < 400; n++) {
        const int us = IONETPAUZE(n);
        EXPECT_GE(us, 2000);
        EXPECT_LE(us, std::min(20'000, 3000 + (n - 3) * 1000)) << n;
        soorten += us != vorige;
        langst = std::max(langst, vorige = us);
    }
    EXPECT_GT(langst, 12'000);
    EXPECT_GT(soorten, 100);
}

int met_fout;
bool sloten_ook;

// A lock or a read that the connection refuses stops with file and reason; who only gives back goes on.
TEST_F(Gedeeld, LostConnection) {
    gebruiker_in(3, "Joke", "03");
    const std::string voor = lees_bestand("DTSYS.TXT");
    const auto weg = [] {
        SYS.slot = [](int fd, int o, struct flock* s) {
            return sloten_ook ? (errno = met_fout, -1) : fcntl(fd, o, s);
        };
        SYS.pread = [](int, void*, size_t, off_t) { return errno = met_fout, ssize_t{-1}; };
    };
    for (int fout : {ENOTCONN, EBADF, EBADFD, ESTALE, EIO, ENOLCK})
        for (bool sloten : {true, false})
            for (char letter : {'X', 'R', 'T', 'N'}) {
                if (sloten != (letter == 'X' || letter == 'T'))
                    continue;
                met_fout = fout, sloten_ook = sloten;
                const std::string wat = std::string("Bestand DTSYS.TXT kan niet ") +
                                        (sloten ? "vergrendeld" : "gelezen") +
                                        " worden (errno=" + std::to_string(fout);
                verwacht_stop(
                    [&] {
                        open();
                        weg();
                        gebruikerslot g;
                        int32_t nr = 3;
                        iotab(letter, &nr, &g, SYS_GEBRUIKER);
                    },
                    wat);
            }
    met_fout = ENOTCONN, sloten_ook = true;
    EXPECT_EQ(in_proces([&] {
                  open();
                  weg();
                  gebruikerslot g;
                  int32_t nr = 3;
                  iotab('U', &nr, &g, SYS_GEBRUIKER);
                  const int van = ::open("DTSYS.TXT", O_RDWR | O_CLOEXEC);
                  return IOCOPY("DTSYS.TXT", "KOPIE", -1) + IOFLOCK(van, 3, 10) + IOEXISTS("KOPIE");
              }).status,
              0);
    EXPECT_EQ(voor, lees_bestand("DTSYS.TXT"));
}

} // namespace
} // namespace zg::test
