#include "rqbase/dates/interne.h"

#include <algorithm>
#include <climits>
#include <cstdio>

#include "rqbase/dates/conversions.h"
#include "rqbase/platform/cp1252.h"

namespace rqbase::dates_interne {

int ToIntInString(std::string_view texte, std::size_t debut) {
  if (debut >= texte.size()) return 0;
  const std::string_view morceau = texte.substr(debut, 20);
  // Lu à la main, sans rien construire : cette lecture est sur le chemin de chaque
  // comparaison de dates. Même règle que la lecture d'un entier par from_chars sur les
  // seuls chiffres et signes moins : un moins en tête au plus, puis au moins un
  // chiffre et rien d'autre, sans dépasser la capacité d'un int ; sinon 0.
  bool negatif = false, chiffre = false;
  std::int64_t valeur = 0;
  for (char c : morceau) {
    if (c == '.') break;  // arrêt au premier point décimal
    if (c == '-') {
      if (negatif || chiffre) return 0;
      negatif = true;
    } else if (c >= '0' && c <= '9') {
      chiffre = true;
      valeur = valeur * 10 + (c - '0');
      if (valeur > std::int64_t{INT_MAX} + 1) return 0;
    }
  }
  if (!chiffre) return 0;
  if (negatif) return static_cast<int>(-valeur);
  return valeur > INT_MAX ? 0 : static_cast<int>(valeur);
}

std::string Milieu(std::string_view texte, std::size_t position, std::size_t longueur) {
  if (position == 0 || position > texte.size()) return {};
  return std::string(texte.substr(position - 1, longueur));
}

std::string SansBlancsFin(std::string_view texte) {
  std::size_t n = texte.size();
  while (n > 0 && static_cast<unsigned char>(texte[n - 1]) <= ' ') --n;
  return std::string(texte.substr(0, n));
}

std::string Zeros(int valeur, int largeur) {
  // Le cas de toutes les dates (nombre positif, largeur 2 ou 4) s'écrit à la main :
  // snprintf coûtait plus que tout le reste d'une conversion de date.
  if (valeur >= 0 && largeur >= 0 && largeur <= 16) {
    char chiffres[16];
    int n = 0;
    do {
      chiffres[n++] = static_cast<char>('0' + valeur % 10);
      valeur /= 10;
    } while (valeur != 0);
    std::string r(static_cast<std::size_t>(std::max(n, largeur)), '0');
    for (int i = 0; i < n; ++i) r[r.size() - 1 - static_cast<std::size_t>(i)] = chiffres[i];
    return r;
  }
  char tampon[32];
  std::snprintf(tampon, sizeof tampon, "%0*d", largeur, valeur);
  return tampon;
}

bool QueDesPoints(std::string_view texte) {
  return !texte.empty() && std::all_of(texte.begin(), texte.end(), [](char c) { return c == '.'; });
}

std::string FourchetteRepublicaineEnGregorien(std::string_view date) {
  const std::size_t largeur = date.size() == 9 ? 4 : 2;
  auto borne = [](const std::string& s) {
    const int v = ToIntInString(s);
    const int g = v ? ConvAnneeRepubGreg(v) : 0;
    return g ? Zeros(g, 4) : std::string("....");
  };
  return borne(Milieu(date, 1, largeur)) + "/" + borne(Milieu(date, largeur + 2, largeur));
}

std::string Replie(std::string_view texte) {
  std::string r;
  r.reserve(texte.size());
  for (unsigned char c : texte) r += static_cast<char>(MajusculeCp1252(SansAccentCp1252(c)));
  return r;
}

std::int64_t JdnJulien(std::int64_t annee, int mois, int jour) {
  std::int64_t a = (14 - mois) / 12;
  std::int64_t y = annee + 4800 - a;
  std::int64_t m = mois + 12 * a - 3;
  return jour + (153 * m + 2) / 5 + 365 * y + DivBas(y, 4) - 32083;
}

std::int64_t JdnGregorien(std::int64_t annee, int mois, int jour) {
  std::int64_t a = (14 - mois) / 12;
  std::int64_t y = annee + 4800 - a;
  std::int64_t m = mois + 12 * a - 3;
  return jour + (153 * m + 2) / 5 + 365 * y + DivBas(y, 4) - DivBas(y, 100) + DivBas(y, 400) - 32045;
}

void DepuisJdnGregorien(std::int64_t jdn, std::int64_t& annee, int& mois, int& jour) {
  std::int64_t a = jdn + 32044;
  std::int64_t b = DivBas(4 * a + 3, 146097);
  std::int64_t c = a - DivBas(146097 * b, 4);
  std::int64_t d = DivBas(4 * c + 3, 1461);
  std::int64_t e = c - DivBas(1461 * d, 4);
  std::int64_t m = DivBas(5 * e + 2, 153);
  jour = static_cast<int>(e - DivBas(153 * m + 2, 5) + 1);
  mois = static_cast<int>(m + 3 - 12 * DivBas(m, 10));
  annee = 100 * b + d - 4800 + DivBas(m, 10);
}

void DepuisJdnJulien(std::int64_t jdn, std::int64_t& annee, int& mois, int& jour) {
  std::int64_t c = jdn + 32082;
  std::int64_t d = DivBas(4 * c + 3, 1461);
  std::int64_t e = c - DivBas(1461 * d, 4);
  std::int64_t m = DivBas(5 * e + 2, 153);
  jour = static_cast<int>(e - DivBas(153 * m + 2, 5) + 1);
  mois = static_cast<int>(m + 3 - 12 * DivBas(m, 10));
  annee = d - 4800 + DivBas(m, 10);
}

}  // namespace rqbase::dates_interne
