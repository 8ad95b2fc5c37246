// Harnais : un fichier catalogue quelconque, lu puis chargé comme à l'ouverture d'un
// ancien dossier (mise à niveau comprise). Rien ne doit casser, et le fichier que le
// catalogue écrirait se relit en entier (sinon chaque ouverture le mettrait de côté comme
// abîmé), avec le même nombre de champs. Tout se passe en mémoire, sans fichier.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/fields/fichier_dch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  const std::string texte(reinterpret_cast<const char*>(donnees), taille);
  const rqbase::TContenuDch contenu = rqbase::DecodeDch(texte);
  rqbase::TDefChpsCs cat(nullptr, contenu, true);
  cat.NumeroteIndiceIndexDupli();
  cat.RetChpCsRgEven(3, true);
  cat.RechercheChampsInternePtr("UNION");
  const std::string ecrit = rqbase::CodeDch(cat.ContenuFichier());
  const rqbase::TContenuDch relu = rqbase::DecodeDch(ecrit);
  // Un champ dont un texte porte un saut de ligne ne peut se relire ligne pour ligne.
  bool sauts = false;
  for (const auto& c : cat.Champs) sauts |= c->Code().find_first_of("\r\n") != std::string::npos;
  if (!sauts && (relu.Champs.size() != cat.Champs.size() || !relu.Entier())) std::abort();
  return 0;
}
