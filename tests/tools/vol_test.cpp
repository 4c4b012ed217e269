// A disk that takes no more under every tool: none of them says that it went well, and none leaves half of anything.
#include "support/demomap.h"
#include "tools/shell.h"

using namespace zg;
using namespace zg::test;

TEST(Vol, NoToolEndsWellOnAFullDisk) {
    DemoMap demo("data/demo", "--register");
    TijdelijkeMap map;
    const std::string in_demo = "cd " + demo.pad() + " && export ZEBPRT=print MACRO=macro && ";
    const Uit maak = sh(in_demo +
                        "echo 'macro 1 k toetsen=\"<Enter>\"' >k && zgmacro load k && zgedi init internet && "
                        "zgcopy -q . " +
                        map.pad() + "/kopie");
    ASSERT_EQ(maak.status, 0) << maak.tekst;
    for (const char* opdracht : {"ixcheck .",
                                 "ixstat .",
                                 "ixstat -j DTLEV",
                                 "ixdump DTLEV",
                                 "ixdump -o /dev/full DTLEV",
                                 "echo help | ixsh",
                                 "ixremake DTLEV",
                                 "orddump 2016Z/ORD0012.JRN",
                                 "orddump -c 2016Z/ORD0012.JRN",
                                 "orddump -j 2016Z/ORD0012.JRN",
                                 "ordprint 2016Z/ORD0012.JRN",
                                 "zgcheck .",
                                 "zgcheck -j .",
                                 "zgcheck -r .",
                                 "zgcopy --check $m/kopie",
                                 "zgcopy . $m/nog",
                                 "zgdruk list",
                                 "zgdruk user",
                                 "zgstatus",
                                 "zgstatus -j",
                                 "zgedi show",
                                 "zgedi boxes",
                                 "zgmacro list",
                                 "zgteksten ZEBCAT",
                                 "ixcheck --help",
                                 "zgcopy --version",
                                 "zgdeel --help",
                                 "zgdruk --words"}) {
        const Uit u = sh("m=" + map.pad() + "; " + in_demo + opdracht + " >/dev/full");
        EXPECT_NE(u.status, 0) << opdracht << ": " << u.tekst;
    }

    // A disk of its own, with nothing free and with one block: what stood there is as it was.
    const std::string schijf = geteuid() == 0 ? "unshare -m" : "unshare -rm";
    if (sh(schijf + " true").status != 0)
        GTEST_SKIP() << "no disk of our own can be mounted here";
    const struct {
        const char *voor, *opdracht;
        int blokken = 2; // free at most, tried downwards
    } RIJEN[] = {
        {"", "ixdump -o vol/uit $d/DTLEV", 0},
        {"", "ixdump $d/DTLEV | ixload vol/DTLEV"},
        {"", "ixdump $d/DTEAN | ixload vol/DTEAN", 8}, // the data fits, the index doesn't
        {"cp $d/DTLEV.??? vol", "ixdump $d/DTLEV | ixload --replace -i - vol/DTLEV"},
        {"cp $d/DTLEV.??? vol", "ixdump $d/DTLEV | ixload --replace vol/DTLEV"},
        {"", "ixcopy $d/DTLEV vol"},
        {"cp $d/DTLEV.TXT vol", "ixremake -d vol/DTLEV", 0},
        {"cp $d/DTLEV.??? vol; printf x >>vol/DTLEV.TXT", "ixremake -t vol/DTLEV", 0},
        {"", "zgcopy $d vol/kopie"},
        {"", "ordprint -o vol/order $d/2016Z/ORD0012.JRN", 0},
        {"", "ordprint -o vol/order.pdf $d/2016Z/ORD0012.JRN"},
        {"mkdir vol/2016Z", "orddump -j $d/2016Z/ORD0012.JRN | ordload vol/2016Z/ORD0012.JRN"},
        {"",
         "zgdemo vol/demo; s=$?; rm -rf vol/demo; (exit $s)"}, // marked as broken off, and begun anew next time
        {"", "(cd $d && MACRO=$m/vol zgmacro load k)"},
        {"", "(cd $d && ZEBPRT=$m/vol zgdruk load \"$s\"/data/demo/printers.txt)"},
        {"cp $d/DTSYS.TXT vol", "(cd vol && zgedi init internet)", 0},
    };
    for (const auto& r : RIJEN)
        for (int vrij = 0; vrij <= r.blokken; vrij++) {
            const Uit u =
                sh("export m=" + map.pad() + " d=" + demo.pad() + " s=\"" ZG_SOURCE_DIR "\"; mkdir -p vol; " +
                   schijf + " sh -c 'mount -t tmpfs -o size=400k none vol; " + (*r.voor ? r.voor : ":") +
                   "; som() { find vol ! -name vulling ! -type d -exec cksum {} + | sort; find vol -type d | "
                   "sort; }; "
                   "cat /dev/zero >vol/vulling 2>/dev/null; truncate -s -" +
                   std::to_string(4 * vrij) + "K vol/vulling; stond=$(som); " + r.opdracht +
                   "; status=$?; [ \"$stond\" = \"$(som)\" ] || { echo LEFT; som; }; exit $status'");
            EXPECT_NE(u.status, 0) << r.opdracht << " " << vrij << ": " << u.tekst;
            EXPECT_FALSE(u.zegt("can't be built\n")) << "why not? " << u.tekst;
            EXPECT_FALSE(u.zegt("LEFT")) << r.opdracht << " " << vrij << ": " << u.tekst;
        }
}
