// Les lieux GEDCOM (PLAC) et les lieux du dossier, dans les deux sens.
//
// Un lieu GEDCOM est une hiérarchie séparée par des virgules. La forme de six parties
// « Commune, Code, Département, Région, Pays, Subdivision » (celle qu'écrivent les logiciels
// français et l'export de ce programme) se lit par position : le département ne sert que
// quand la région manque, la subdivision et ce qui suit vont au lieu-dit. Une forme plus
// courte se lit de la gauche : la commune d'abord, le pays en dernier à partir de trois
// parties, un code (chiffres, ou 2A/2B) où il se trouve, la région dans ce qui reste.
#pragma once
#include <string>
#include <string_view>

namespace rqbase {

struct TLieuGedcom {
  std::string Commune, Code, Region, Pays, LieuDit;
  bool Vide() const { return Commune.empty() && Code.empty() && Region.empty() && Pays.empty() && LieuDit.empty(); }
};

TLieuGedcom DecoupeLieuGedcom(std::string_view plac);
// La forme de six parties, ou la commune seule quand rien d'autre n'est connu.
std::string ComposeLieuGedcom(const TLieuGedcom& lieu);

}  // namespace rqbase
