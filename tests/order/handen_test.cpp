// The order files in several hands: locks, rights, what reaches the disk before it takes another's place, and a repair
// that may not read what it should repair.
#include "order/bouw.h"
#include "support/rechten.h"

namespace zg::test {
namespace {

const std::vector<Order> EEN = {maak_order(1, {2})};

struct Handen : InOrderMap {
    const SYSCALLS echt = SYS;
    Handen() { zet("JRN", bytes(EEN)); }
    ~Handen() override { SYS = echt; }
    // Is byte 0 of a file locked, for another process?
    static bool op_slot(const char* ext) {
        return in_kind([&] {
                   int fd = open(pad(ext).c_str(), O_RDWR | O_CLOEXEC);
                   return fd >= 0 && !IOLOCK('E', fd, 0, 1) ? 1 : 0;
               }) == 1;
    }
    static bool voeg_regel_in() {
        ors_ingang cursor = regel_op(1);
        neem_regel(EEN[0].modellen[0], maak_regel(70));
        return wrk_regel_in(&cursor, true, &regel_nu);
    }
};

TEST_F(Handen, JournalAndWorkFileAreLockedAsLongAsTheOrderIsOpen) {
    ASSERT_TRUE(kies(0));
    EXPECT_TRUE(op_slot("JRN") && op_slot("WRK"));
    ASSERT_TRUE(voeg_regel_in());
    EXPECT_TRUE(op_slot("WRK")) << "the new work file took the old one's place";
    // The commit goes on with the new journal, locked, and nothing else is held.
    ASSERT_TRUE(wrk_sluit());
    EXPECT_TRUE(op_slot("JRN"));
    ord_sluit_jrn(journaal);
    journaal = nullptr;
    EXPECT_FALSE(op_slot("JRN"));
}

// What takes the journal's place is on disk by then.
TEST_F(Handen, TheNewJournalIsOnDiskBeforeItIsTheJournal) {
    static std::string volgorde;
    static ino_t nieuw;
    volgorde.clear();
    ASSERT_TRUE(kies(0) && voeg_regel_in());
    SYS.fsync = [](int fd) {
        struct stat st {};
        fstat(fd, &st);
        nieuw = st.st_ino;
        volgorde += "fsync ";
        return fsync(fd);
    };
    SYS.write = [](int fd, const void* p, size_t n) {
        volgorde += "write ";
        return write(fd, p, n);
    };
    SYS.rename = [](const char* van, const char* naar) {
        struct stat st {};
        volgorde += stat(van, &st) == 0 && st.st_ino == nieuw ? "rename " : "rename-unsynced ";
        return rename(van, naar);
    };
    ASSERT_TRUE(sluit());
    EXPECT_EQ(volgorde, "write fsync rename ");
}

TEST_F(Handen, FilesKeepTheirRightsWhoeversTurnItIs) {
    const std::string g = " " + std::to_string(GROEP);
    const mode_t oud = umask(0);
    ASSERT_TRUE(chown("2016Z", static_cast<uid_t>(-1), GROEP) == 0 && chmod("2016Z", 0770) == 0);
    for (mode_t masker : {022, 077}) {
        umask(masker);
        // A journal with rights of its own keeps them.
        ASSERT_TRUE(chown(pad("JRN").c_str(), static_cast<uid_t>(-1), GROEP) == 0 &&
                    chmod(pad("JRN").c_str(), 0664) == 0);
        ASSERT_TRUE(kies(0));
        for (const char* ext : {"WRK", "ORS", "ACT"})
            EXPECT_EQ(rechten(pad(ext)), "0660" + g) << ext << masker;
        ASSERT_EQ(chmod(pad("WRK").c_str(), 0664), 0);
        ASSERT_TRUE(voeg_regel_in());
        EXPECT_EQ(rechten(pad("WRK")), "0664" + g) << masker;
        ASSERT_TRUE(sluit());
        EXPECT_EQ(rechten(pad("JRN")), "0664" + g) << masker;
        // A supplier's first order, and the journal that its commit makes.
        unlink(pad("JRN").c_str());
        ASSERT_TRUE(kies(-1) && nieuwe_kop(EEN[0]));
        EXPECT_EQ(rechten(pad("JRN")), "0660" + g) << masker;
        neem_regel(EEN[0].modellen[0], maak_regel(70));
        ors_ingang cursor{};
        ASSERT_TRUE(wrk_regel_in(&cursor, true, &regel_nu) && sluit());
        EXPECT_EQ(rechten(pad("JRN")), "0660" + g) << masker;
    }
    umask(oud);
}

// The work file of a colleague that this user may not read, or its marker: it stays for who may.
TEST_F(Handen, ARepairThatMayNotReadDeletesNothing) {
    EXPECT_EQ(in_kind([] { return kies(0) && voeg_regel_in() ? 0 : 1; }), 0); // and gone, as if killed
    const std::string jrn = inhoud("JRN"), wrk = inhoud("WRK");
    for (const char* ext : {"WRK", "ACT"})
        for (int reden : {EACCES, EIO}) {
            static std::string dicht;
            static int fout;
            dicht = pad(ext);
            fout = reden;
            SYS.open = [](const char* p, int v, mode_t m) {
                return p == dicht ? (errno = fout, -1) : ::open(p, v, m);
            };
            std::string gezegd;
            EXPECT_EQ(in_kind(herstart, &gezegd), 2) << ext << reden;
            EXPECT_TRUE(bevat(gezegd, reden == EACCES ? "(geen rechten)" : "schrijffout op de schijf"));
            EXPECT_TRUE(inhoud("WRK") == wrk && bestaat("ACT") && inhoud("JRN") == jrn) << ext;
            SYS = echt;
        }
    EXPECT_EQ(herstart(), 1);
    EXPECT_NE(inhoud("JRN"), jrn);
}

// A journal out of reach: why is said, also when the file system gives rights grudgingly.
TEST_F(Handen, TheReasonIsTold) {
    SYS.open = [](const char*, int, mode_t) { return errno = EACCES, -1; };
    std::string gezegd;
    EXPECT_EQ(in_kind([] { return ord_open_jrn("2016Z", 12, O_RDWR | O_CREAT) ? 1 : 0; }, &gezegd), 0);
    EXPECT_EQ(gezegd, "Order ORD0012.JRN: Bestand niet te openen (geen rechten)\n");
    SYS = echt;
    const std::string voor = inhoud("JRN");
    auto niet_vastgelegd = [] {
        if (!kies(0) || !voeg_regel_in())
            return 1;
        SYS.fchmod = [](int, mode_t) { return errno = EIO, -1; };
        return sluit() ? 2 : 0;
    };
    EXPECT_EQ(in_kind(niet_vastgelegd, &gezegd), 0);
    EXPECT_TRUE(bevat(gezegd, "ORD0012.TMP kan niet worden geschreven: lees- of schrijffout"));
    EXPECT_EQ(inhoud("JRN"), voor);
    EXPECT_EQ(herstart(), 1) << "what was entered is there";
}

} // namespace
} // namespace zg::test
