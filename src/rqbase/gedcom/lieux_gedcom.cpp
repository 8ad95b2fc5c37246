#include "rqbase/gedcom/lieux_gedcom.h"

#include <vector>

#include "rqbase/util/chaines.h"

namespace rqbase {

namespace {

// Un code postal ou de département : 2 à 5 chiffres, ou 2A/2B suivis de chiffres (Corse).
bool EstCode(std::string_view s) {
  if (s.size() < 2 || s.size() > 5) return false;
  for (size_t i = 0; i < s.size(); ++i) {
    const char c = s[i];
    const bool chiffre = c >= '0' && c <= '9';
    const bool corse = i == 1 && s[0] == '2' && (c == 'A' || c == 'B' || c == 'a' || c == 'b');
    if (!chiffre && !corse) return false;
  }
  return true;
}

}  // namespace

TLieuGedcom DecoupeLieuGedcom(std::string_view plac) {
  std::vector<std::string> p;
  for (std::string_view s : DecoupeElts(plac, ',')) p.push_back(Trim(s));
  TLieuGedcom l;
  const size_t n = p.size();
  if (n == 0) return l;
  l.Commune = p[0];
  if (n >= 5) {
    l.Code = p[1];
    l.Region = !p[3].empty() ? p[3] : p[2];
    l.Pays = p[4];
    for (size_t i = 5; i < n; ++i)
      if (!p[i].empty()) l.LieuDit += (l.LieuDit.empty() ? "" : ", ") + p[i];
    return l;
  }
  size_t finMilieu = n;
  if (n >= 3) {
    l.Pays = p[n - 1];
    finMilieu = n - 1;
  }
  for (size_t i = 1; i < finMilieu; ++i) {
    if (p[i].empty()) continue;
    if (l.Code.empty() && EstCode(p[i]))
      l.Code = p[i];
    else
      l.Region = p[i];  // la plus large des parties qui restent
  }
  return l;
}

std::string ComposeLieuGedcom(const TLieuGedcom& l) {
  if (l.Code.empty() && l.Region.empty() && l.Pays.empty() && l.LieuDit.empty()) return l.Commune;
  std::string s = l.Commune + ", " + l.Code + ", , " + l.Region + ", " + l.Pays;
  if (!l.LieuDit.empty()) s += ", " + l.LieuDit;
  return s;
}

}  // namespace rqbase
