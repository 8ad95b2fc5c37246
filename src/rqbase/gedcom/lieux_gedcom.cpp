#include "rqbase/gedcom/lieux_gedcom.h"

#include <algorithm>
#include <vector>

#include "rqbase/platform/cp1252.h"
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

// En capitales sans accents, pour comparer des noms.
std::string Cle(std::string_view s) {
  std::string r;
  for (unsigned char c : Trim(s)) r += static_cast<char>(MajusculeCp1252(SansAccentCp1252(c)));
  return r;
}

// Les pays qu'un lieu de deux parties nomme en seconde place (« Paris, France ») : ceux des
// familles que ce programme sert, en français et en anglais.
bool EstPays(std::string_view s) {
  static const char* const kPays[] = {
      "FRANCE",  "BELGIQUE", "BELGIUM",   "SUISSE",  "SWITZERLAND", "LUXEMBOURG", "MONACO",     "ITALIE",
      "ITALY",   "ESPAGNE",  "SPAIN",     "ALLEMAGNE", "GERMANY",   "PORTUGAL",   "PAYS-BAS",   "NETHERLANDS",
      "CANADA",  "QUEBEC",   "ALGERIE",   "ALGERIA", "MAROC",       "MOROCCO",    "TUNISIE",    "TUNISIA",
      "ETATS-UNIS", "USA",   "UNITED STATES", "ROYAUME-UNI", "UNITED KINGDOM", "ANGLETERRE", "ENGLAND",
      "IRLANDE", "IRELAND",  "POLOGNE",   "POLAND",  "AUTRICHE",    "AUSTRIA",    "ARGENTINE",  "ARGENTINA",
      "BRESIL",  "BRAZIL",   "RUSSIE",    "RUSSIA"};
  const std::string c = Cle(s);
  return std::any_of(std::begin(kPays), std::end(kPays), [&](const char* p) { return c == p; });
}

enum class TRole { Commune, Code, Departement, Region, Pays, LieuDit };

// Le rôle d'un nom de la forme ; ce qui ne se reconnaît pas va au lieu-dit (gardé, pas perdu).
TRole RoleDe(std::string_view nom) {
  const std::string c = Cle(nom);
  auto contient = [&](const char* m) { return c.find(m) != std::string::npos; };
  if (contient("CODE") || contient("INSEE") || contient("ZIP") || contient("POSTAL")) return TRole::Code;
  if (contient("COMMUNE") || contient("VILLE") || contient("CITY") || contient("TOWN") || contient("VILLAGE") ||
      contient("PAROISSE") || contient("PARISH") || contient("LOCALIT") || contient("MUNICIPAL"))
    return TRole::Commune;
  if (contient("DEPARTEMENT") || contient("COUNTY") || contient("COMTE")) return TRole::Departement;
  if (contient("REGION") || contient("STATE") || contient("PROVINCE") || contient("ETAT")) return TRole::Region;
  if (contient("PAYS") || contient("COUNTRY") || contient("NATION")) return TRole::Pays;
  return TRole::LieuDit;
}

void Ajoute(std::string& a, const std::string& b) {
  if (!b.empty()) a += (a.empty() ? "" : ", ") + b;
}

}  // namespace

TLieuGedcom DecoupeLieuGedcom(std::string_view plac, std::string_view forme) {
  std::vector<std::string> p;
  for (std::string_view s : DecoupeElts(plac, ',')) p.push_back(Trim(s));
  TLieuGedcom l;
  const size_t n = p.size();
  if (n == 0) return l;
  if (!forme.empty()) {
    std::vector<TRole> roles;
    for (std::string_view s : DecoupeElts(forme, ',')) roles.push_back(RoleDe(s));
    if (std::find(roles.begin(), roles.end(), TRole::Commune) != roles.end()) {
      std::string dep, region;
      for (size_t i = 0; i < n; ++i) {
        const TRole r = i < roles.size() ? roles[i] : TRole::LieuDit;  // au-delà de la forme : plus fin
        std::string& cible = r == TRole::Commune       ? l.Commune
                             : r == TRole::Code        ? l.Code
                             : r == TRole::Departement ? dep
                             : r == TRole::Region      ? region
                             : r == TRole::Pays        ? l.Pays
                                                       : l.LieuDit;
        Ajoute(cible, p[i]);
      }
      l.Region = dep;
      Ajoute(l.Region, region);
      return l;
    }
  }
  l.Commune = p[0];
  if (n >= 5) {
    l.Code = p[1];
    l.Region = p[2];
    Ajoute(l.Region, p[3]);
    l.Pays = p[4];
    for (size_t i = 5; i < n; ++i) Ajoute(l.LieuDit, p[i]);
    return l;
  }
  size_t finMilieu = n;
  if (n >= 3 || (n == 2 && EstPays(p[1]))) {
    l.Pays = p[n - 1];
    finMilieu = n - 1;
  }
  // Au plus deux parties restent (quatre parties dont un pays) : elles font la partie
  // administrative, jointes.
  for (size_t i = 1; i < finMilieu; ++i) {
    if (p[i].empty()) continue;
    if (l.Code.empty() && EstCode(p[i]))
      l.Code = p[i];
    else
      Ajoute(l.Region, p[i]);
  }
  return l;
}

std::string ComposeLieuGedcom(const TLieuGedcom& l) {
  if (l.Code.empty() && l.Region.empty() && l.Pays.empty() && l.LieuDit.empty()) return l.Commune;
  // Une partie administrative « département, région » reprend ses deux places.
  std::string dep, region = l.Region;
  if (const size_t v = region.find(','); v != std::string::npos) {
    dep = Trim(std::string_view(region).substr(0, v));
    region = Trim(std::string_view(region).substr(v + 1));
  }
  std::string s = l.Commune + ", " + l.Code + ", " + dep + ", " + region + ", " + l.Pays;
  if (!l.LieuDit.empty()) s += ", " + l.LieuDit;
  return s;
}

}  // namespace rqbase
