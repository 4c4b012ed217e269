// External sort of index entries: pieces that fit are sorted in memory; when there is more than one they are
// written as runs and merged. What is compared is a form of the key that needs no collation any more.
#include "store/sorteer.h"
#include "store/bestand.h"
#include "store/node.h"
#include <algorithm>
#include <bit>
#include <cstring>
#include <unistd.h>

namespace zg {
namespace {

constexpr size_t WERKRUIMTE = 12 << 20; // bytes for one piece, its forms and its order
constexpr size_t LEESRUIMTE = 4 << 20;  // bytes for the buffers of all runs
constexpr size_t EMMERPAREN = 1024;

uint64_t acht(const uint8_t* p, size_t n) {
    uint64_t w = 0;
    memcpy(&w, p, std::min<size_t>(n, 8));
    return std::endian::native == std::endian::little ? __builtin_bswap64(w) : w;
}

// One entry on its way: the first bytes that tell it apart, and where the rest stands.
struct Wijzer {
    uint64_t kop;
    uint32_t vorm; // offset of its form, which begins with a length byte
    uint32_t nr;   // place in the piece
};

struct Stuk {
    std::vector<uint8_t> entries, vormen;
    std::vector<Wijzer> volgorde;
};

void maak_vormen(const IXKEYDEF& def, size_t maat, Stuk& s) {
    size_t n = s.entries.size() / maat;
    s.vormen.clear();
    s.volgorde.clear();
    uint8_t vorm[SORTEERVORM];
    size_t samen = SORTEERVORM; // bytes that all forms begin with
    for (size_t i = 0; i < n; i++) {
        int lang = SORTEERBAAR(def, s.entries.data() + i * maat, vorm);
        s.volgorde.push_back({0, static_cast<uint32_t>(s.vormen.size()), static_cast<uint32_t>(i)});
        s.vormen.push_back(static_cast<uint8_t>(lang));
        s.vormen.insert(s.vormen.end(), vorm, vorm + lang);
        size_t gelijk = 0;
        while (gelijk < samen && gelijk < static_cast<size_t>(lang) && vorm[gelijk] == s.vormen[1 + gelijk])
            gelijk++;
        samen = gelijk;
    }
    for (Wijzer& w : s.volgorde) {
        const uint8_t* v = s.vormen.data() + w.vorm;
        w.kop = *v > samen ? acht(v + 1 + samen, *v - samen) : 0;
    }
}

void sorteer_stuk(const IXKEYDEF& def, size_t maat, Stuk& s) {
    maak_vormen(def, maat, s);
    auto voor = [&s](const Wijzer& a, const Wijzer& b) {
        if (a.kop != b.kop)
            return a.kop < b.kop;
        const uint8_t *va = s.vormen.data() + a.vorm, *vb = s.vormen.data() + b.vorm;
        if (int d = memcmp(va + 1, vb + 1, std::min(*va, *vb)))
            return d < 0;
        return a.nr > b.nr;
    };
    if (!std::is_sorted(s.volgorde.begin(), s.volgorde.end(), voor))
        std::sort(s.volgorde.begin(), s.volgorde.end(), voor);
}

// A sorted run being read.
struct Baan {
    Spoellezer lezer;
    size_t nr;
    uint8_t vorm[SORTEERVORM];
    int lang;
    const uint8_t* entry;

    bool volgende(const IXKEYDEF& def) { // entry null at the end
        if (!lezer.volgende(&entry))
            return false;
        if (entry)
            lang = SORTEERBAAR(def, entry, vorm);
        return true;
    }
};

bool later(const Baan* a, const Baan* b) {
    if (int d = memcmp(a->vorm, b->vorm, static_cast<size_t>(std::min(a->lang, b->lang))))
        return d > 0;
    return a->nr < b->nr; // equal keys: the run that was written last comes first
}

bool voeg_samen(const IXKEYDEF& def, size_t maat, Spoel& banen, const std::vector<int64_t>& grenzen,
                Spoel& klaar, Rangen& rangen, const std::function<void(int64_t)>& stap) {
    std::vector<Baan> baan;
    std::vector<Baan*> hoop;
    const size_t ruimte = std::max<size_t>(LEESRUIMTE / grenzen.size() / maat, 16) * maat;
    for (size_t i = 0; i < grenzen.size(); i++)
        baan.push_back(
            {Spoellezer(banen, i ? grenzen[i - 1] : 0, grenzen[i], maat, ruimte), i, {}, 0, nullptr});
    for (Baan& b : baan) {
        if (!b.volgende(def))
            return false;
        if (b.entry)
            hoop.push_back(&b);
    }
    std::make_heap(hoop.begin(), hoop.end(), later);
    for (uint32_t rang = 0; !hoop.empty(); rang++) {
        std::pop_heap(hoop.begin(), hoop.end(), later);
        Baan* b = hoop.back();
        if (!klaar.schrijf(b->entry, maat) || !rangen.zet(LEES32(b->entry + maat - 4), rang) ||
            !b->volgende(def))
            return false;
        if (b->entry)
            std::push_heap(hoop.begin(), hoop.end(), later);
        else
            hoop.pop_back();
        if (rang % 65536 == 65535)
            stap(65536 / 2);
    }
    return true;
}

} // namespace

int SORTEERBAAR(const IXKEYDEF& def, const uint8_t* sleutel, uint8_t* uit) {
    uint8_t* p = uit;
    for (int d = 0; d < IXDELEN && def.ptype[d]; d++) {
        int breed = IXDEELBREEDTE(def, d);
        if (def.ptype[d] == 'C')
            p += IXGEWICHTEN(sleutel, breed, p);
        else {
            memcpy(p, sleutel, static_cast<size_t>(breed));
            p += breed;
        }
        sleutel += breed;
    }
    if (def.dupflag == 'J') {
        memcpy(p, sleutel, 4);
        p += 4;
    }
    return static_cast<int>(p - uit);
}

bool SORTEER(const IXKEYDEF& def, Spoel& ruw, Spoel& klaar, Rangen& rangen, const std::string& pad,
             const std::function<void(int64_t)>& stap) {
    const size_t maat = def.keylen + 4u;
    const size_t zwaarte = maat + 1 + static_cast<size_t>(3 * def.keylen) + sizeof(Wijzer);
    const size_t deel = std::max<size_t>(WERKRUIMTE / zwaarte, 1024) * maat;
    Spoel banen(pad, 256 * 1024);
    std::vector<int64_t> grenzen;
    Stuk s;
    bool een = ruw.lengte() <= static_cast<int64_t>(deel);
    uint32_t rang = 0;
    for (int64_t plaats = 0; plaats < ruw.lengte();) {
        s.entries.resize(
            static_cast<size_t>(std::min<int64_t>(static_cast<int64_t>(deel), ruw.lengte() - plaats)));
        if (!ruw.lees(plaats, s.entries.data(), s.entries.size()))
            return false;
        plaats += static_cast<int64_t>(s.entries.size());
        sorteer_stuk(def, maat, s);
        for (const Wijzer& w : s.volgorde) {
            const uint8_t* entry = s.entries.data() + w.nr * maat;
            if (een ? !klaar.schrijf(entry, maat) || !rangen.zet(LEES32(entry + maat - 4), rang++)
                    : !banen.schrijf(entry, maat))
                return false;
        }
        grenzen.push_back(banen.lengte());
        stap(static_cast<int64_t>(s.volgorde.size()) / (een ? 1 : 2));
    }
    ruw.weg();
    s = {};
    return een || voeg_samen(def, maat, banen, grenzen, klaar, rangen, stap);
}

Rangen::Rangen(std::string pad, int64_t records, int32_t venster)
    : pad_(std::move(pad)), venster_(venster),
      nu_(static_cast<size_t>(std::min<int64_t>(records, venster)), uint32_t{GEEN}) {
    if (records > venster) {
        emmer_.resize(static_cast<size_t>((records + venster - 1) / venster));
        aantal_.resize(emmer_.size());
    }
}

Rangen::Rangen(Rangen&& ander) noexcept
    : pad_(std::move(ander.pad_)), venster_(ander.venster_), nu_(std::move(ander.nu_)),
      emmer_(std::move(ander.emmer_)), aantal_(std::move(ander.aantal_)), fd_(ander.fd_) {
    ander.fd_ = -1;
}

Rangen::~Rangen() {
    if (fd_ >= 0)
        SYS.close(fd_);
}

bool Rangen::leeg(size_t emmer) {
    std::vector<Paar>& e = emmer_[emmer];
    int64_t plaats =
        (static_cast<int64_t>(emmer) * venster_ + aantal_[emmer]) * static_cast<int64_t>(sizeof(Paar));
    if (fd_ < 0 && (fd_ = NAAMLOOSBESTAND(pad_.c_str())) < 0)
        return false;
    if (!SYSSCHRIJFOP(fd_, e.data(), e.size() * sizeof(Paar), plaats))
        return false;
    aantal_[emmer] += static_cast<int32_t>(e.size());
    e.clear();
    return true;
}

bool Rangen::zet(int32_t recnr, uint32_t rang) {
    if (emmer_.empty()) {
        nu_[static_cast<size_t>(recnr)] = rang;
        return true;
    }
    size_t emmer = static_cast<size_t>(recnr / venster_);
    emmer_[emmer].push_back({recnr % venster_, rang});
    return emmer_[emmer].size() < EMMERPAREN || leeg(emmer);
}

const uint32_t* Rangen::laad(int64_t nr) {
    if (emmer_.empty())
        return nu_.data();
    std::fill(nu_.begin(), nu_.end(), uint32_t{GEEN});
    size_t emmer = static_cast<size_t>(nr);
    for (const Paar& p : emmer_[emmer])
        nu_[static_cast<size_t>(p.recnr)] = p.rang;
    std::vector<Paar> stuk(EMMERPAREN);
    for (int32_t i = 0; i < aantal_[emmer];) {
        size_t n =
            static_cast<size_t>(std::min<int32_t>(static_cast<int32_t>(EMMERPAREN), aantal_[emmer] - i));
        int64_t plaats = (nr * venster_ + i) * static_cast<int64_t>(sizeof(Paar));
        if (SYSLEES(fd_, stuk.data(), n * sizeof(Paar), plaats) != static_cast<ssize_t>(n * sizeof(Paar)))
            return nullptr;
        for (size_t j = 0; j < n; j++)
            nu_[static_cast<size_t>(stuk[j].recnr)] = stuk[j].rang;
        i += static_cast<int32_t>(n);
    }
    return nu_.data();
}

} // namespace zg
