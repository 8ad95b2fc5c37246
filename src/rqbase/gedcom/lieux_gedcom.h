// Les lieux GEDCOM (PLAC) et les lieux du dossier, dans les deux sens.
//
// Un lieu GEDCOM est une hiérarchie séparée par des virgules. Le dossier en garde la commune,
// le code, une partie administrative (département, région, ou les deux joints par « , ») et
// le pays ; le reste va au lieu-dit. Rien d'une hiérarchie n'est perdu :
// - une forme (PLAC FORM de l'en-tête ou du lieu) dont les noms se reconnaissent (commune,
//   ville, city... ; code, INSEE, postal... ; département, county... ; région, state... ;
//   pays, country... ; le reste, subdivision comprise, au lieu-dit) dit le rôle de chaque
//   partie, par position ;
// - sans forme, celle de six parties « Commune, Code, Département, Région, Pays,
//   Subdivision » (celle qu'écrivent les logiciels français et l'export de ce programme) se
//   lit par position dès cinq parties ;
// - une forme plus courte se lit de la gauche : la commune d'abord ; le pays en dernier à
//   partir de trois parties, ou en seconde place quand c'est un nom de pays connu
//   (« Paris, France ») ; un code (chiffres, ou 2A/2B) où il se trouve ; les parties qui
//   restent (deux au plus) font la partie administrative.
// L'écriture redonne la forme de six parties : une partie administrative « A, B » y redevient
// département A et région B.
#pragma once
#include <string>
#include <string_view>

namespace rqbase {

struct TLieuGedcom {
  std::string Commune, Code, Region, Pays, LieuDit;
  bool Vide() const { return Commune.empty() && Code.empty() && Region.empty() && Pays.empty() && LieuDit.empty(); }
};

// `forme` : la PLAC FORM qui vaut pour ce lieu, vide sans forme.
TLieuGedcom DecoupeLieuGedcom(std::string_view plac, std::string_view forme = {});
// La forme de six parties, ou la commune seule quand rien d'autre n'est connu.
std::string ComposeLieuGedcom(const TLieuGedcom& lieu);

}  // namespace rqbase
