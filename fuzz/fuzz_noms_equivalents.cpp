// Harnais libFuzzer : un fichier d'équivalences de noms fait des octets donnés se lit sans
// planter ni boucler ; chaque graphie lue a des équivalents ; une sauvegarde se relit à
// l'identique.
//
// Tout se passe sur un disque en mémoire. Le premier octet coupe les autres en deux : le
// fichier des noms et celui des prénoms.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "rqbase/index/noms_equivalents.h"
#include "rqbase/platform/fichier_memoire.h"

namespace {

using namespace rqbase;
using TGenre = TTabNomEquiv::TGenre;

const std::string kNoms = "/memoire/F.rq2/F.neq";
const std::string kPrenoms = "/memoire/F.rq2/F.preq";

TDisqueMemoire& Disque() {
  static TDisqueMemoire disque;
  static TDisqueMemoire::TInstallation installation(disque);
  return disque;
}

void Verifie(const TTabNomEquiv& t, TGenre genre) {
  for (const auto& groupe : t.Groupes(genre)) {
    if (groupe.size() < 2) std::abort();
    for (const std::string& g : groupe) {
      // Chaque graphie d'un groupe a au moins un équivalent autre qu'elle-même.
      if (t.GetNomEquiv(g, genre).size() < 2) std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  if (taille < 1) return 0;
  const size_t coupe = std::min<size_t>(donnees[0] * (taille - 1) / 255, taille - 1);
  const uint8_t* debut = donnees + 1;
  Disque().Pose(kNoms, TDisqueMemoire::TOctets(debut, debut + coupe));
  Disque().Pose(kPrenoms, TDisqueMemoire::TOctets(debut + coupe, donnees + taille));
  TTabNomEquiv t(kNoms, kPrenoms);
  Verifie(t, TGenre::Noms);
  Verifie(t, TGenre::Prenoms);
  if (!t.Groupes(TGenre::Noms).empty() && t.Sauvegarde(TGenre::Noms)) {
    TTabNomEquiv relue(kNoms, "");
    if (relue.Groupes(TGenre::Noms) != t.Groupes(TGenre::Noms)) std::abort();
  }
  return 0;
}
