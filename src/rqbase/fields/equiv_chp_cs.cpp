#include "rqbase/fields/equiv_chp_cs.h"

#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/platform/ressources.h"

namespace rqbase {

bool TEquivChpCs::Rest(const std::vector<std::string>& lignes, size_t& position) {
  // Un fichier coupé garde la valeur par défaut du rôle plutôt qu'un rôle à moitié lu.
  if (position > lignes.size() || lignes.size() - position < 3) return false;
  LibelleUtilisateur = lignes[position];
  LibelleChamp1 = lignes[position + 1];
  LibelleChamp2 = lignes[position + 2];
  position += 3;
  return true;
}

void TEquivChpCs::Sauv(std::vector<std::string>& lignes) const {
  lignes.push_back(LibelleUtilisateur);
  lignes.push_back(LibelleChamp1);
  lignes.push_back(LibelleChamp2);
}

std::string TEquivChpCs::RetourneLibelleEcran(const TDefChpsCs& catalogue) const {
  if (!LibelleUtilisateur.empty()) return LibelleUtilisateur;
  return catalogue.RetourneLibelleEcran(LibelleChamp1) + Ressource(7250);
}

}  // namespace rqbase
