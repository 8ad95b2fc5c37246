// Harnais : une ligne quelconque du catalogue lue par TChpCs::Decode. Aucune ligne
// n'est refusée ; la ligne réécrite par Code a toujours 25 colonnes, et hors liste
// de choix (dont la largeur suit les noms) elle se relit à l'identique.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "rqbase/fields/chp_cs.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  const std::string ligne(reinterpret_cast<const char*>(donnees), taille);
  rqbase::TChpCs c;
  c.Decode(ligne);
  const std::string code = c.Code();
  if (c.NbMorceaux < 0 || c.NbMorceaux > rqbase::TChpCs::kNbMorceauxMax) std::abort();
  c.ResumeDonnee(ligne);
  c.GetMorceauNo(2, ligne);
  std::string valeur = ligne;
  c.SetMorceauNo(2, "abc", valeur, 100);
  if (valeur.size() > 100) std::abort();
  c.GetEquivalences(nullptr, true);

  rqbase::TChpCs relu;
  relu.Decode(code);
  if (code.find_first_of("\r\n") == std::string::npos && std::count(code.begin(), code.end(), '\t') != 24)
    std::abort();
  if (c.Type != rqbase::tcCpc && code.find('\t') != std::string::npos) {
    rqbase::TChpCs deux;
    deux.Decode(relu.Code());
    if (deux.Code() != relu.Code()) std::abort();
  }
  return 0;
}
