// The open job of the print layer, and its way out. Between the files of this folder.
#pragma once
#include "print/xprt.h"
#include <chrono>
#include <string>
#include <vector>

namespace zg {

enum class Printweg { geen, wachtrij, apparaat, map, aux, terminal, bestand };

struct printjob {
    bool open;
    bool voorbeeld; // preview first
    Printweg weg;
    uint16_t code;       // printer, 0 for none
    uint8_t config;      // its configuration
    int rijen, kolommen; // a page; 0 or PRT_ZONDER_BLADEN rows: no pages
    bool staand;
    int blad;               // pages started
    int regel;              // on the page; PRT_REGEL_VOOR behind the opening
    int boven, links;       // margins
    std::string init, exit; // bytes, NUL among them
    std::string apparaat;   // queue, path, or directory; paths in bytes of the file system
    std::string bestand;    // of a file: its path as the screen shows it
    bool over;              // a file that is there may go: the user said so
    std::string tekens;     // how it leaves: "cp850", "utf-8", "latin1", "ascii", "pdf"
    std::string titel;
    int kopieen;
    std::chrono::steady_clock::time_point geopend;
    // The spool file: its path, and what has been written. Behind the first refused write (errno in `fout`) nothing
    // more is.
    std::string spool;
    int fd = -1;
    int slot = -1; // its description (print/spooljob.h), locked; -1 for a job that nobody describes
    std::string buffer;
    int64_t plaats, begin; // bytes written; of those the init text
    int fout;
};
extern printjob printopdracht;

inline constexpr int PRT_REGEL_VOOR = 10000; // so that the first line finds the page full
inline bool prt_bladen(const printjob& job) {
    return job.rijen > 0 && job.rijen != 9999;
}

// The two halves of a job without its destination. Open one on a new file, its record filled in but for the state: zigzag
// on, init text written. False with errno, nothing is open then; EEXIST when the file is there.
bool prt_job_open(const printjob& job, const std::string& pad);
// The same on a spool file of a new name in a directory ("" the present one), described as one that is being made. False
// with errno, nothing is there then.
bool prt_job_begin(const printjob& job, const std::string& map);
enum class Jobeind { klaar, leeg, fout };
// Flush, last form feed, exit text, file closed; the job is no longer open, its record stays. `leeg`: nothing was printed
// and the file is gone. `fout`: a write was refused, errno in printopdracht.fout, the file stays for the caller.
Jobeind prt_job_sluit(bool onderbroken);
// The closed job's spool file and description go, as far as they are there.
void prt_job_weg();

// The zigzag line. Starting twice or stopping twice is the report (1, 199) or (1, 200); sizes come from the environment.
void zigzag_start();
void zigzag_stop();
void zigzag_leeg(); // drop the line
// Bytes on the spool file. Formatting and pages know nothing of its buffer.
void prt_schrijf(const char* bytes, size_t n);
// In place: control bytes become blanks.
void prt_blank(char* tekst, size_t n);

// Is the destination there, so far as can be seen without opening it? A queue that lpstat doesn't know within 5 s, a device
// that isn't one, a path into the data directory: false.
bool prt_bestaat(Printweg weg, const std::string& apparaat);
// Hand the closed spool file, which is described, to zgspoel, or to the terminal itself. False: told, the file stays with its
// reason.
bool prt_verzend(const printjob& job);

// The preview of the closed spool file: copies to be printed, 0 for none.
int PRT_SCR(const printjob& job);

// Run a program with these words, the first its name, without a shell or input, for so long at most: its status as waitpid
// gives it, and the beginning of what it said. False: it can't be run or gave no answer, and runs no more.
bool prt_programma(std::vector<std::string> woorden, std::chrono::seconds wacht, int* status,
                   std::string* gezegd);

// Lines of code page 850 in a file, with form feeds, as a PDF: A4, exactly so many rows (0 or PRT_ZONDER_BLADEN: as many as
// fit) and columns. `naar` is a new file, EEXIST when it is there; it is whole and on disk, or gone again. False with errno.
bool prt_pdf(const char* van, const char* naar, int rijen, int kolommen, bool staand,
             const std::string& titel);
// Bytes of code page 850 in the character set of a job; what it hasn't got is its base letter or the nearest sign. Control
// bytes stay, and every character is one column. "cp850", "pdf" and what nobody knows: as they are.
std::string prt_omzet(const std::string& bytes, const std::string& tekens);

} // namespace zg
