#include "rqbase/gedcom/dates_gedcom.h"

#include <cstdio>
#include <vector>

#include "rqbase/dates/calendriers.h"

namespace rqbase {

namespace {

constexpr const char* kMoisG[12] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                    "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
constexpr const char* kMoisR[13] = {"VEND", "BRUM", "FRIM", "NIVO", "PLUV", "VENT", "GERM",
                                    "FLOR", "PRAI", "MESS", "THER", "FRUC", "COMP"};
// Dans l'ordre des numéros de mois hébraïques du dossier (1 Tichri ... 13 Eloul).
constexpr const char* kMoisH[13] = {"TSH", "CSH", "KSL", "TVT", "SHV", "ADR", "ADS",
                                    "NSN", "IYR", "SVN", "TMZ", "AAV", "ELL"};

// Une date simple lue : calendrier 'G', 'J' (julien), 'R', 'H' ; 0 pour une partie absente.
struct TSimple {
  char Cal = 'G';
  int Jour = 0, Mois = 0, Annee = 0;
  bool AvantJC = false;
};

bool Chiffres(std::string_view s) {
  if (s.empty()) return false;
  for (char c : s)
    if (c < '0' || c > '9') return false;
  return true;
}

int Nombre(std::string_view s) {
  int n = 0;
  for (char c : s) n = n * 10 + (c - '0');
  return n;
}

int ChercheMois(std::string_view m, const char* const* table, int n) {
  for (int i = 0; i < n; ++i)
    if (m == table[i]) return i + 1;
  return 0;
}

bool EstAvantJC(std::string_view t) { return t == "B.C." || t == "BC" || t == "BCE" || t == "B.C" || t == "AV.J.C."; }

// Lit une date simple dans tokens[i, fin) ; `raison` dit l'échec.
bool LitSimple(const std::vector<std::string>& t, size_t i, size_t fin, TSimple& d, std::string& raison) {
  if (i < fin) {
    const std::string& c = t[i];
    char cal = 0;
    if (c == "@#DGREGORIAN@" || c == "GREGORIAN") cal = 'G';
    else if (c == "@#DJULIAN@" || c == "JULIAN") cal = 'J';
    else if (c == "@#DFRENCHR@" || c == "FRENCH_R") cal = 'R';
    else if (c == "@#DHEBREW@" || c == "HEBREW") cal = 'H';
    else if (c.rfind("@#D", 0) == 0) {
      raison = "calendrier inconnu";
      return false;
    }
    if (cal) {
      d.Cal = cal;
      ++i;
    }
  }
  if (fin > i && EstAvantJC(t[fin - 1])) {
    d.AvantJC = true;
    --fin;
  }
  const size_t n = fin - i;
  if (n < 1 || n > 3) {
    raison = n == 0 ? "date sans année" : "date de forme inconnue";
    return false;
  }
  std::string annee = t[fin - 1];
  // Double datation « 1750/51 » : l'année du style nouveau.
  if (const size_t barre = annee.find('/'); barre != std::string::npos && barre > 0) {
    const std::string fin2 = annee.substr(barre + 1);
    if (!Chiffres(fin2) || fin2.size() > barre) {
      raison = "année illisible";
      return false;
    }
    annee = annee.substr(0, barre - fin2.size()) + fin2;
  }
  if (!Chiffres(annee) || annee.size() > 4) {
    raison = "année illisible";
    return false;
  }
  d.Annee = Nombre(annee);
  if (n >= 2) {
    const std::string& m = t[fin - 2];
    const char cal = d.Cal == 'J' ? 'G' : d.Cal;
    d.Mois = cal == 'R' ? ChercheMois(m, kMoisR, 13) : cal == 'H' ? ChercheMois(m, kMoisH, 13) : ChercheMois(m, kMoisG, 12);
    if (d.Mois == 0) {
      raison = "mois inconnu";
      return false;
    }
  }
  if (n == 3) {
    if (!Chiffres(t[i]) || t[i].size() > 2) {
      raison = "jour illisible";
      return false;
    }
    d.Jour = Nombre(t[i]);
  }
  // Les bornes de chaque calendrier.
  bool ok;
  if (d.Cal == 'R')
    ok = d.Annee >= 1 && AnneeRepublicaineOk(d.Annee) &&
         (d.Jour == 0 || JourRepublicainOk(d.Jour, kMoisR[d.Mois - 1], d.Annee)) && (d.Jour == 0 || d.Jour >= 1);
  else if (d.Cal == 'H')
    ok = d.Annee >= 1 && (d.Jour == 0 || (d.Jour >= 1 && JourHebOk(d.Jour, d.Mois)));
  else
    ok = AnneeOk(d.Annee) && (d.Jour == 0 || (d.Jour >= 1 && JourOk(d.Jour, d.Mois, d.Annee)));
  if (!ok) raison = "date hors des bornes du calendrier";
  return ok;
}

int JdnJulien(int j, int m, int a) {
  const int x = (14 - m) / 12, y = a + 4800 - x, mm = m + 12 * x - 3;
  return j + (153 * mm + 2) / 5 + 365 * y + y / 4 - 32083;
}

void GregorienDeJdn(int jdn, int& j, int& m, int& a) {
  const int x = jdn + 32044, b = (4 * x + 3) / 146097, c = x - 146097 * b / 4;
  const int d = (4 * c + 3) / 1461, e = c - 1461 * d / 4, mm = (5 * e + 2) / 153;
  j = e - (153 * mm + 2) / 5 + 1;
  m = mm + 3 - 12 * (mm / 10);
  a = 100 * b + d - 4800 + mm / 10;
}

// Chaque date d'un import passe ici : les chiffres sont posés à la main (snprintf en faisait
// une part visible), un nombre négatif garde la forme de printf.
std::string Deux(int n) {
  if (n == 0) return "..";
  n %= 100;
  if (n < 0) {
    char b[8];
    std::snprintf(b, sizeof b, "%02d", n);
    return b;
  }
  return {char('0' + n / 10), char('0' + n % 10)};
}

std::string Quatre(int n) {
  n %= 10000;
  if (n < 0) {
    char b[8];
    std::snprintf(b, sizeof b, "%04d", n);
    return b;
  }
  return {char('0' + n / 1000), char('0' + n / 100 % 10), char('0' + n / 10 % 10), char('0' + n % 10)};
}

// Le texte du dossier d'une date simple, et son calendrier.
std::string TexteSimple(TSimple d, char& cal) {
  if (d.Cal == 'J') {
    // Le dossier lit en julien les dates d'avant la réforme : seules celles d'après changent.
    if (d.Jour && d.Mois && (d.Annee > 1582 || (d.Annee == 1582 && (d.Mois == 12 ? d.Jour > 9 : false))))
      GregorienDeJdn(JdnJulien(d.Jour, d.Mois, d.Annee), d.Jour, d.Mois, d.Annee);
    d.Cal = 'G';
  }
  if (d.Cal == 'R') {
    cal = 'R';
    return Deux(d.Jour) + "/" + (d.Mois ? kMoisR[d.Mois - 1] : "....") + "/" + Deux(d.Annee);
  }
  cal = d.Cal == 'H' ? 'H' : d.AvantJC ? 'A' : 'G';
  return Deux(d.Jour) + "/" + Deux(d.Mois) + "/" + Quatre(d.Annee);
}

std::string AnneeFourchette(const TSimple& d) { return d.Cal == 'R' ? Deux(d.Annee) : Quatre(d.Annee); }

std::vector<std::string> Mots(std::string_view texte, std::string& phrase) {
  std::string s;
  for (char c : texte) s += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
  // La phrase entre parenthèses (INT, ou une date en texte libre) est mise à part.
  if (const size_t p = s.find('('); p != std::string::npos) {
    phrase = s.substr(p);
    s.erase(p);
  }
  for (size_t p = s.find("@#DFRENCH R@"); p != std::string::npos; p = s.find("@#DFRENCH R@")) s.erase(p + 9, 1);
  std::vector<std::string> t;
  size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) ++i;
    const size_t d = i;
    while (i < s.size() && s[i] != ' ' && s[i] != '\t') ++i;
    if (i > d) t.push_back(s.substr(d, i - d));
  }
  return t;
}

}  // namespace

bool DateGedcomVersRQ(std::string_view texte, TDateRQ& date, std::string& raison) {
  date = TDateRQ();
  raison.clear();
  std::string phrase;
  const std::vector<std::string> t = Mots(texte, phrase);
  if (t.empty()) {
    raison = phrase.empty() ? "date vide" : "date en texte libre";
    return false;
  }
  const std::string& m = t[0];
  std::string acte;
  size_t debut = 0;
  if (m == "ABT" || m == "CAL" || m == "EST" || m == "ABOUT" || m == "CIRCA") {
    acte = "ca";
    debut = 1;
  } else if (m == "BEF" || m == "BEFORE") {
    acte = "<";
    debut = 1;
  } else if (m == "AFT" || m == "AFTER") {
    acte = ">";
    debut = 1;
  } else if (m == "INT") {
    debut = 1;
  }
  const bool bet = m == "BET";
  const bool from = m == "FROM";
  const bool to = m == "TO";
  if (bet || from || to) {
    // Une fourchette d'années : BET x AND y, FROM x [TO y], TO y.
    size_t milieu = t.size();
    for (size_t k = 1; k < t.size(); ++k)
      if (t[k] == (bet ? "AND" : "TO")) milieu = k;
    TSimple a, b;
    bool aLu = false, bLu = false;
    if (to) {
      bLu = LitSimple(t, 1, t.size(), b, raison);
      if (!bLu) return false;
    } else {
      if (bet && milieu == t.size()) {
        raison = "BET sans AND";
        return false;
      }
      if (!LitSimple(t, 1, milieu, a, raison)) return false;
      aLu = true;
      if (milieu < t.size()) {
        if (!LitSimple(t, milieu + 1, t.size(), b, raison)) return false;
        bLu = true;
      }
    }
    const TSimple& ref = aLu ? a : b;
    if (ref.AvantJC || (aLu && bLu && (a.AvantJC || b.AvantJC))) {
      raison = "fourchette avant Jésus-Christ";
      return false;
    }
    // Julien et grégorien ne font qu'un calendrier pour une fourchette d'années.
    auto famille = [](char c) { return c == 'J' ? 'G' : c; };
    if (aLu && bLu && famille(a.Cal) != famille(b.Cal)) {
      raison = "fourchette entre deux calendriers";
      return false;
    }
    if (aLu && bLu && a.Annee > b.Annee) {
      raison = "fourchette dont la première année suit la seconde";
      return false;
    }
    const char cal = ref.Cal == 'R' ? 'R' : ref.Cal == 'H' ? 'H' : 'G';
    const std::string vide = cal == 'R' ? ".." : "....";
    date = TDateRQ(cal, (aLu ? AnneeFourchette(a) : vide) + "/" + (bLu ? AnneeFourchette(b) : vide));
    const bool precis = (aLu && (a.Jour || a.Mois)) || (bLu && (b.Jour || b.Mois));
    if (precis) raison = "fourchette réduite à ses années";
    if (!phrase.empty()) raison = "phrase entre parenthèses laissée";
    return raison.empty();
  }
  TSimple d;
  if (!LitSimple(t, debut, t.size(), d, raison)) return false;
  char cal = 'G';
  const std::string txt = TexteSimple(d, cal);
  date = TDateRQ(cal, txt);
  if (!acte.empty()) date.SetActe(acte);
  if (!phrase.empty()) {
    raison = "phrase entre parenthèses laissée";
    return false;
  }
  return true;
}

std::string DateRQVersGedcom(const TDateRQ& date) {
  const std::string txt = date.GetDate();
  if (txt.empty()) return {};
  const char cal = date.GetCalendrier();
  std::string prefixe;
  if (cal == 'R') prefixe = "@#DFRENCH R@ ";
  if (cal == 'H') prefixe = "@#DHEBREW@ ";
  const std::string suffixe = cal == 'A' ? " B.C." : "";
  auto annee = [](std::string a) {
    while (a.size() > 1 && a[0] == '0') a.erase(0, 1);
    return a;
  };
  auto inconnu = [](const std::string& s) { return s.empty() || s.find_first_not_of('.') == std::string::npos; };
  if (date.DateFormatFourchette()) {
    const size_t barre = txt.find('/');
    const std::string a = txt.substr(0, barre), b = txt.substr(barre + 1);
    const bool ia = inconnu(a), ib = inconnu(b);
    if (ia && ib) return {};
    if (ia) return "TO " + prefixe + annee(b);
    if (ib) return "FROM " + prefixe + annee(a);
    return "BET " + prefixe + annee(a) + " AND " + prefixe + annee(b);
  }
  std::string jour, mois, an;
  if (cal == 'R' && txt.size() >= 10) {
    jour = txt.substr(0, 2);
    const std::string code = txt.substr(3, 4);
    an = txt.substr(8, 2);
    if (code != "....") mois = code;
  } else if (txt.size() == 10) {
    jour = txt.substr(0, 2);
    const std::string m = txt.substr(3, 2);
    an = txt.substr(6, 4);
    if (!inconnu(m) && m != "00") {
      const int n = Nombre(m);
      if (cal == 'H' && n >= 1 && n <= 13) mois = kMoisH[n - 1];
      else if (n >= 1 && n <= 12) mois = kMoisG[n - 1];
    }
  } else {
    return {};
  }
  if (inconnu(an) || !Chiffres(an)) return {};
  std::string s;
  const std::string acte = date.GetActe();
  if (acte == "ca" || acte == "CA" || acte == "Ca" || acte == "~" || acte == "?") s = "ABT ";
  else if (acte == "<") s = "BEF ";
  else if (acte == ">") s = "AFT ";
  s += prefixe;
  if (!mois.empty() && Chiffres(jour) && jour != "00") s += annee(jour) + " ";
  if (!mois.empty()) s += mois + " ";
  return s + annee(an) + suffixe;
}

}  // namespace rqbase
