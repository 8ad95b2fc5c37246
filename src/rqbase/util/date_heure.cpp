#include "rqbase/util/date_heure.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace rqbase {
namespace {

bool Bissextile(int a) { return (a % 4 == 0 && a % 100 != 0) || a % 400 == 0; }

int JoursDuMois(int a, int m) {
  static constexpr int kJours[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && Bissextile(a) ? 29 : kJours[m - 1];
}

// Jours depuis le 1/1/0001 (grégorien proleptique), le 1/1/0001 valant 0.
long JoursAbsolus(int a, int m, int j) {
  const long y = a - 1;
  long n = y * 365 + y / 4 - y / 100 + y / 400;
  for (int k = 1; k < m; ++k) n += JoursDuMois(a, k);
  return n + j - 1;
}

constexpr long kDecalage1899 = 693593;  // JoursAbsolus(1899, 12, 30)

}  // namespace

TDateTime Maintenant() {
  const auto s = std::chrono::system_clock::now().time_since_epoch();
  const double secondes = std::chrono::duration<double>(s).count();
  std::time_t t = std::time_t(secondes);
  std::tm local{};
  localtime_r(&t, &local);
  const double decalage = double(local.tm_gmtoff);
  return 25569.0 + (secondes + decalage) / 86400.0;  // 25569 : le 1/1/1970
}

bool EncodeDate(int annee, int mois, int jour, TDateTime& resultat) {
  if (annee < 1 || annee > 9999 || mois < 1 || mois > 12 || jour < 1 || jour > JoursDuMois(annee, mois)) return false;
  resultat = double(JoursAbsolus(annee, mois, jour) - kDecalage1899);
  return true;
}

TDateTime EncodeDateHeure(int annee, int mois, int jour, int heure, int minute, int seconde) {
  TDateTime d = 0;
  EncodeDate(annee, mois, jour, d);
  const double fraction = (heure * 3600.0 + minute * 60.0 + seconde) / 86400.0;
  return d >= 0 ? d + fraction : d - fraction;
}

void DecodeDate(TDateTime dt, int& annee, int& mois, int& jour) {
  if (!std::isfinite(dt) || std::fabs(dt) > 3.0e6) {
    annee = mois = jour = 0;
    return;
  }
  long n = long(std::trunc(dt)) + kDecalage1899;  // jours depuis le 1/1/0001
  if (n < 0) {
    annee = mois = jour = 0;
    return;
  }
  long a = long(double(n) / 365.2425) + 1;
  while (a > 1 && JoursAbsolus(int(a), 1, 1) > n) --a;
  while (JoursAbsolus(int(a + 1), 1, 1) <= n) ++a;
  long reste = n - JoursAbsolus(int(a), 1, 1);
  int m = 1;
  while (reste >= JoursDuMois(int(a), m)) reste -= JoursDuMois(int(a), m++);
  annee = int(a);
  mois = m;
  jour = int(reste) + 1;
}

void DecodeHeure(TDateTime dt, int& heure, int& minute, int& seconde) {
  double f = std::fabs(dt - std::trunc(dt));
  long s = std::lround(f * 86400.0);
  if (s >= 86400) s = 86399;
  heure = int(s / 3600);
  minute = int(s / 60 % 60);
  seconde = int(s % 60);
}

std::string DateHeureEnTexte(TDateTime dt) {
  int a, m, j, h, mi, s;
  DecodeDate(dt, a, m, j);
  DecodeHeure(dt, h, mi, s);
  char texte[40];
  std::snprintf(texte, sizeof texte, "%02d/%02d/%04d %02d:%02d:%02d", j, m, a, h, mi, s);
  return texte;
}

TDateTime IncMonth(TDateTime dt, int mois) {
  int a, m, j;
  DecodeDate(dt, a, m, j);
  if (a == 0) return dt;
  long total = long(a) * 12 + (m - 1) + mois;
  int na = int(total / 12), nm = int(total % 12) + 1;
  if (na < 1 || na > 9999) return dt;
  const int nj = std::min(j, JoursDuMois(na, nm));
  TDateTime r = 0;
  EncodeDate(na, nm, nj, r);
  const double fraction = std::fabs(dt - std::trunc(dt));
  return r >= 0 ? r + fraction : r - fraction;
}

std::string TexteTDT(TDateTime dt) {
  char tampon[64];
  auto [fin, ec] = std::to_chars(tampon, tampon + sizeof tampon, dt);
  return ec == std::errc() ? std::string(tampon, fin) : std::string("0");
}

TDateTime RetourneTDT(const std::string& texte) {
  if (texte.empty()) return Maintenant();
  double v = 0;
  auto [fin, ec] = std::from_chars(texte.data(), texte.data() + texte.size(), v);
  if (ec == std::errc() && fin == texte.data() + texte.size() && std::isfinite(v)) return v;
  int j = 0, m = 0, a = 0, h = 0, mi = 0, s = 0;
  const int lus = std::sscanf(texte.c_str(), "%d/%d/%d %d:%d:%d", &j, &m, &a, &h, &mi, &s);
  TDateTime d = 0;
  if (lus >= 3 && EncodeDate(a, m, j, d) && h >= 0 && h < 24 && mi >= 0 && mi < 60 && s >= 0 && s < 60)
    return EncodeDateHeure(a, m, j, h, mi, s);
  return Maintenant();
}

}  // namespace rqbase
