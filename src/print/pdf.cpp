// A report as a PDF: A4, every line on its row and every character in its column. A library of its own, so that only
// what makes PDFs loads cairo. Measures are points, from the upper left corner.
#include "print/printjob.h"
#include "print/printtabel.h"
#include "shared/syscalls.h"
#include "term/natl.h"
#include <algorithm>
#include <array>
#include <cairo-pdf.h>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace zg {
namespace {

constexpr double A4_KORT = 595.276, A4_LANG = 841.89, RAND = 28.35;
constexpr double LETTERMAX = 12; // a larger letter is for posters
constexpr double RUIM_BREED = 1.15,
                 RUIM_HOOG = 1.4; // how far a letter and a line may be drawn out to fill the page
constexpr char LETTERTYPE[] = "DejaVu Sans Mono";
constexpr size_t LEESBLOK = 64 * 1024;
constexpr size_t REGELMAX = 32000; // bytes of a line, more than any page takes

struct Leeg {
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
    void operator()(cairo_t* cr) const { cairo_destroy(cr); }
};

struct Uitvoer {
    int fd;
    int fout;
};

cairo_status_t schrijf(void* doel, const unsigned char* bytes, unsigned n) {
    auto* uit = static_cast<Uitvoer*>(doel);
    if (!uit->fout && !SYSSCHRIJF(uit->fd, bytes, n))
        uit->fout = errno;
    return uit->fout ? CAIRO_STATUS_WRITE_ERROR : CAIRO_STATUS_SUCCESS;
}

struct Pagina {
    cairo_t* cr;
    int rijen, kolommen;
    double letter, breed, hoog, stijging; // size of the font, a cell, the baseline in it
    int rij;                              // next row to be written, from 0
    bool begonnen;                        // something is to come out, an empty page too
    std::string regel;
    std::array<std::string, 256> utf8;
    std::array<unsigned long, 256> glief;
    // The row as cairo takes it; kept, so that a row costs no memory.
    std::string tekst;
    std::vector<cairo_glyph_t> glieven;
    std::vector<cairo_text_cluster_t> groepen;
};

// Size of letter and cell, and the page's font: the largest letter that fits both ways. Without pages as many rows as
// a well set page takes.
void maten(Pagina* p, double w, double h) {
    cairo_font_options_t* opties = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(opties, CAIRO_HINT_METRICS_OFF);
    cairo_set_font_options(p->cr, opties);
    cairo_font_options_destroy(opties);
    cairo_select_font_face(p->cr, LETTERTYPE, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(p->cr, 1);
    cairo_font_extents_t e;
    cairo_font_extents(p->cr, &e);
    cairo_text_extents_t m;
    cairo_text_extents(p->cr, "M", &m);
    const double lengte = e.ascent + e.descent, breedte = m.x_advance > 0 ? m.x_advance : 1;
    const double kolom = (w - 2 * RAND) / p->kolommen;
    p->letter = std::min(kolom / breedte, LETTERMAX);
    if (!p->rijen)
        p->rijen = std::max(1, static_cast<int>((h - 2 * RAND) / (p->letter * lengte)));
    const double rij = (h - 2 * RAND) / p->rijen;
    p->letter = std::min(p->letter, rij / lengte);
    p->breed = std::min(kolom, p->letter * breedte * RUIM_BREED);
    p->hoog = std::min(rij, p->letter * lengte * RUIM_HOOG);
    p->stijging = (p->hoog - p->letter * lengte) / 2 + p->letter * e.ascent;
    cairo_matrix_t m2;
    cairo_matrix_init_scale(&m2, p->breed / breedte, p->letter);
    cairo_set_font_matrix(p->cr, &m2);
}

// The font's glyph for each byte; control bytes are blanks.
void gliefen(Pagina* p) {
    cairo_scaled_font_t* font = cairo_get_scaled_font(p->cr);
    for (size_t c = 0; c < 256; c++) {
        const char teken = c < ' ' || c == 127 ? ' ' : static_cast<char>(c);
        p->utf8[c] = CP850UTF8({&teken, 1});
        cairo_glyph_t* g = nullptr;
        int n = 0;
        if (cairo_scaled_font_text_to_glyphs(font, 0, 0, p->utf8[c].data(),
                                             static_cast<int>(p->utf8[c].size()), &g, &n, nullptr, nullptr,
                                             nullptr) == CAIRO_STATUS_SUCCESS &&
            n > 0)
            p->glief[c] = g[0].index;
        cairo_glyph_free(g);
    }
}

void blad_uit(Pagina* p) {
    if (p->begonnen)
        cairo_show_page(p->cr);
    p->begonnen = false;
    p->rij = 0;
}

// The characters collected, on the row that is to be written.
void teken_regel(Pagina* p) {
    p->tekst.clear(), p->glieven.clear(), p->groepen.clear();
    const size_t n = std::min(p->regel.find_last_not_of(' ') + 1, static_cast<size_t>(p->kolommen));
    if (n && p->rij >= p->rijen)
        blad_uit(p);
    const double y = RAND + p->rij * p->hoog + p->stijging;
    for (size_t i = 0; i < n; i++) {
        const auto c = static_cast<uint8_t>(p->regel[i]);
        p->glieven.push_back({p->glief[c], RAND + static_cast<double>(i) * p->breed, y});
        p->groepen.push_back({static_cast<int>(p->utf8[c].size()), 1});
        p->tekst += p->utf8[c];
    }
    if (n)
        cairo_show_text_glyphs(p->cr, p->tekst.data(), static_cast<int>(p->tekst.size()), p->glieven.data(),
                               static_cast<int>(n), p->groepen.data(), static_cast<int>(n),
                               static_cast<cairo_text_cluster_flags_t>(0));
    p->begonnen = p->begonnen || n;
    p->regel.clear();
}

void lees(Pagina* p, std::string_view bytes) {
    for (size_t i = 0; i < bytes.size(); i++) {
        const size_t tot = std::min(bytes.find_first_of("\n\r\f", i), bytes.size());
        p->regel.append(bytes, i, std::min(tot - i, REGELMAX - p->regel.size()));
        if ((i = tot) == bytes.size())
            return;
        switch (bytes[i]) {
        case '\n':
            teken_regel(p);
            p->rij++;
            break;
        case '\r':
            teken_regel(p); // what comes now goes over it
            break;
        case '\f':
            teken_regel(p);
            p->begonnen = true;
            blad_uit(p);
            break;
        }
    }
}

// The pages of an open report on a surface; 0 or an errno.
int vul(int in, cairo_surface_t* vlak, Pagina* p, double w, double h) {
    const std::unique_ptr<cairo_t, Leeg> cr(cairo_create(vlak));
    p->cr = cr.get();
    maten(p, w, h);
    gliefen(p);
    std::string blok(LEESBLOK, '\0');
    int64_t plaats = 0;
    bool iets = false;
    for (;;) {
        const ssize_t n = SYSLEES(in, blok.data(), blok.size(), plaats);
        if (n < 0)
            return errno;
        if (n == 0)
            break;
        lees(p, {blok.data(), static_cast<size_t>(n)});
        plaats += n;
        iets = true;
        if (cairo_status(p->cr) != CAIRO_STATUS_SUCCESS || cairo_surface_status(vlak) != CAIRO_STATUS_SUCCESS)
            return ENOMEM;
    }
    teken_regel(p);
    p->begonnen = p->begonnen || !iets; // a document has a page
    blad_uit(p);
    return cairo_status(p->cr) == CAIRO_STATUS_SUCCESS ? 0 : ENOMEM;
}

} // namespace

bool prt_pdf(const char* van, const char* naar, int rijen, int kolommen, bool staand,
             const std::string& titel) {
    const int in = SYS.open(van, O_RDONLY | O_CLOEXEC, 0);
    if (in < 0)
        return false;
    Uitvoer uit{SYSNIEUW(naar, O_WRONLY | O_EXCL), 0};
    if (uit.fd < 0) {
        const int fout = errno;
        SYS.close(in);
        errno = fout;
        return false;
    }
    const double w = staand ? A4_KORT : A4_LANG, h = staand ? A4_LANG : A4_KORT;
    int fout = 0;
    {
        const std::unique_ptr<cairo_surface_t, Leeg> vlak(
            cairo_pdf_surface_create_for_stream(schrijf, &uit, w, h));
        cairo_pdf_surface_set_metadata(vlak.get(), CAIRO_PDF_METADATA_TITLE, CP850UTF8(titel).c_str());
        Pagina p{};
        p.rijen = rijen > 0 && rijen != PRT_ZONDER_BLADEN ? rijen : 0;
        p.kolommen = std::max(kolommen, 1);
        fout = vul(in, vlak.get(), &p, w, h);
        cairo_surface_finish(vlak.get());
        if (!fout && cairo_surface_status(vlak.get()) != CAIRO_STATUS_SUCCESS)
            fout = ENOMEM;
    }
    SYS.close(in);
    if (uit.fout)
        fout = uit.fout; // the cause of the other
    if (!fout && SYS.fsync(uit.fd) < 0)
        fout = errno;
    if (SYS.close(uit.fd) < 0 && !fout)
        fout = errno;
    if (fout)
        SYS.unlink(naar);
    errno = fout;
    return fout == 0;
}

} // namespace zg
