// Notre lecteur RTF : un passage sur le texte, une pile d'états par groupe.
#include "rqbase/notes/lecteur_rtf.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "rqbase/platform/cp1252.h"

namespace rqbase {

namespace {

// Groupes dont rien ne s'affiche.
constexpr std::string_view kDestinationsCachees[] = {
    "fonttbl",  "colortbl",  "stylesheet", "info",      "pict",     "header",    "headerl",
    "headerr",  "headerf",   "footer",     "footerl",   "footerr",  "footerf",   "author",
    "operator", "title",     "subject",    "keywords",  "comment",  "doccomm",   "generator",
    "listtable", "listoverridetable", "rsidtbl", "themedata", "colorschememapping", "datastore",
    "latentstyles", "xmlnstbl", "object", "objdata", "fldinst", "bkmkstart", "bkmkend",
    "annotation", "atnid", "atnauthor", "footnote", "filetbl", "revtbl", "pgdsctbl", "mmathPr",
    "panose", "falt", "leveltext", "levelnumbers", "pnseclvl", "template", "company", "category",
    "manager", "hlinkbase", "nonshppict", "shpinst", "userprops", "xe", "tc", "txe"};

// Au-delà, les groupes ne sont plus empilés mais comptés : ils gardent l'état du dernier.
constexpr size_t kProfondeurMax = 4096;

struct TEtat {
  bool Cache = false;
  int Repli = 1;  // \ucN : caractères de repli qui suivent un \u
};

class TLecteur {
 public:
  TLecteur(const std::string& texte, bool sauts) : S(texte), Sauts(sauts) {}

  std::string Lit() {
    Pile.push_back(TEtat{});
    while (I < S.size()) {
      const char c = S[I];
      if (c == '{') {
        ++I;
        if (Pile.size() < kProfondeurMax)
          Pile.push_back(Pile.back());
        else
          ++Deborde;
      } else if (c == '}') {
        ++I;
        if (Deborde > 0)
          --Deborde;
        else if (Pile.size() > 1)
          Pile.pop_back();
      } else if (c == '\\') {
        Commande();
      } else if (c == '\r' || c == '\n') {
        ++I;  // les fins de ligne du fichier RTF ne disent rien
      } else {
        ++I;
        Emet(c);
      }
    }
    return Sortie;
  }

 private:
  TEtat& Etat() { return Pile.back(); }

  void Emet(char c) {
    if (ASauter > 0) {
      --ASauter;
      return;
    }
    if (!Etat().Cache) Sortie += c;
  }
  void Emet(const char* texte) {
    ASauter = 0;
    if (!Etat().Cache) Sortie += texte;
  }
  void FinDeLigne() { Emet(Sauts ? "\r\n" : " "); }

  static int Hexa(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
  }

  static bool Lettre(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

  // Un caractère Unicode ramené au codage des dossiers, « ? » s'il n'y est pas.
  static char DepuisUnicode(long point) {
    if (point < 0) point += 65536;
    if (point <= 0 || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) return '?';
    std::string utf8;
    const auto u = static_cast<uint32_t>(point);
    if (u < 0x80) {
      utf8 += static_cast<char>(u);
    } else if (u < 0x800) {
      utf8 += static_cast<char>(0xC0 | (u >> 6));
      utf8 += static_cast<char>(0x80 | (u & 0x3F));
    } else if (u < 0x10000) {
      utf8 += static_cast<char>(0xE0 | (u >> 12));
      utf8 += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
      utf8 += static_cast<char>(0x80 | (u & 0x3F));
    } else {
      utf8 += static_cast<char>(0xF0 | (u >> 18));
      utf8 += static_cast<char>(0x80 | ((u >> 12) & 0x3F));
      utf8 += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
      utf8 += static_cast<char>(0x80 | (u & 0x3F));
    }
    if (PremierCaractereSansEquivalent(utf8) != 0) return '?';
    const std::string cp = DepuisUtf8(utf8);
    return cp.size() == 1 ? cp[0] : '?';
  }

  void Commande() {
    ++I;  // la barre
    if (I >= S.size()) return;
    const char c = S[I];
    if (!Lettre(c)) {
      ++I;
      switch (c) {
        case '\\': case '{': case '}': Emet(c); break;
        case '~': Emet('\xA0'); break;
        case '_': Emet('-'); break;
        case '*': Etat().Cache = true; break;
        case '\r': case '\n': FinDeLigne(); break;
        case '\'': {
          // Deux chiffres hexadécimaux ; un échappement coupé (fin du texte, chiffre
          // manquant) part sans rien donner.
          const int h = I < S.size() ? Hexa(S[I]) : -1;
          const int l = h >= 0 && I + 1 < S.size() ? Hexa(S[I + 1]) : -1;
          I += (h >= 0) + (l >= 0);
          if (h >= 0 && l >= 0) {
            const char octet = static_cast<char>(h * 16 + l);
            if (octet != 0) Emet(octet);
          }
          break;
        }
        default: break;  // \- (césure possible), \| et les autres symboles : rien
      }
      return;
    }
    const size_t debut = I;
    while (I < S.size() && Lettre(S[I])) ++I;
    const std::string_view mot(S.data() + debut, I - debut);
    bool avecNombre = false;
    bool negatif = false;
    long nombre = 0;
    if (I < S.size() && S[I] == '-' && I + 1 < S.size() && S[I + 1] >= '0' && S[I + 1] <= '9') {
      negatif = true;
      ++I;
    }
    while (I < S.size() && S[I] >= '0' && S[I] <= '9') {
      if (nombre < 100000000) nombre = nombre * 10 + (S[I] - '0');
      avecNombre = true;
      ++I;
    }
    if (negatif) nombre = -nombre;
    if (I < S.size() && S[I] == ' ') ++I;  // le blanc qui ferme le mot lui appartient
    Mot(mot, avecNombre, nombre);
  }

  void Mot(std::string_view mot, bool avecNombre, long nombre) {
    if (mot == "par" || mot == "line" || mot == "page" || mot == "sect" || mot == "row") return FinDeLigne();
    if (mot == "tab" || mot == "cell") return Emet("\t");
    if (mot == "emdash") return Emet('\x97');
    if (mot == "endash") return Emet('\x96');
    if (mot == "bullet") return Emet('\x95');
    if (mot == "lquote") return Emet('\x91');
    if (mot == "rquote") return Emet('\x92');
    if (mot == "ldblquote") return Emet('\x93');
    if (mot == "rdblquote") return Emet('\x94');
    if (mot == "emspace" || mot == "enspace" || mot == "qmspace") return Emet(' ');
    if (mot == "uc" && avecNombre) {
      Etat().Repli = static_cast<int>(std::clamp(nombre, 0L, 16L));
      return;
    }
    if (mot == "u" && avecNombre) {
      const char c = DepuisUnicode(nombre);
      ASauter = 0;
      if (!Etat().Cache) Sortie += c;
      ASauter = Etat().Repli;
      return;
    }
    if (mot == "bin") {
      // Des octets bruts : sautés, sans aller au-delà du texte.
      const size_t n = avecNombre && nombre > 0 ? static_cast<size_t>(nombre) : 0;
      I += std::min(n, S.size() - I);
      return;
    }
    if (std::find(std::begin(kDestinationsCachees), std::end(kDestinationsCachees), mot) !=
        std::end(kDestinationsCachees))
      Etat().Cache = true;
  }

  const std::string& S;
  bool Sauts;
  size_t I = 0;
  std::vector<TEtat> Pile;
  size_t Deborde = 0;
  int ASauter = 0;
  std::string Sortie;
};

bool Garde(char c) { return static_cast<unsigned char>(c) > ' '; }

std::string Rogne(const std::string& s) {
  const auto debut = std::find_if(s.begin(), s.end(), Garde);
  const auto fin = std::find_if(s.rbegin(), s.rend(), Garde).base();
  return debut < fin ? std::string(debut, fin) : std::string();
}

// Texte ordinaire : fins de ligne CR, LF ou CR LF ramenées à CR LF (ou à un blanc).
std::string TexteOrdinaire(const std::string& texte, bool sauts) {
  std::string r;
  r.reserve(texte.size());
  for (size_t i = 0; i < texte.size(); ++i) {
    const char c = texte[i];
    if (c == '\r' || c == '\n') {
      if (c == '\r' && i + 1 < texte.size() && texte[i + 1] == '\n') ++i;
      r += sauts ? "\r\n" : " ";
    } else {
      r += c;
    }
  }
  return r;
}

}  // namespace

std::string ConvertirRtfTxt(const std::string& texte, bool sautsDeLigne) {
  const auto debut = std::find_if(texte.begin(), texte.end(), Garde);
  const std::string_view reste(texte.data() + (debut - texte.begin()), static_cast<size_t>(texte.end() - debut));
  if (reste.substr(0, 5) != "{\\rtf") return Rogne(TexteOrdinaire(texte, sautsDeLigne));
  return Rogne(TLecteur(texte, sautsDeLigne).Lit());
}

}  // namespace rqbase
