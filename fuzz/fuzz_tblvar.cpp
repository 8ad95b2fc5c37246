// Restauration d'une table triée depuis des octets quelconques : jamais de plantage,
// jamais d'allocation sans borne ; une table relue se lit et se retrie sans faute.
#include <cstdint>
#include <sstream>
#include <string>

#include "../tests/storage/elt_essai.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  if (taille < 1) return 0;
  const int version = donnees[0] & 1 ? 2 : 1;
  std::stringstream s(std::string(reinterpret_cast<const char*>(donnees + 1), taille - 1));
  ipstream flux(s);
  TTableTV table;
  if (!table.Restauration(flux, version)) return 0;
  essai::TEltEssai e, t;
  for (long i = 0; i < table.GetNbElt(); ++i) table.Lit(i, e);
  if (table.GetNbElt() < 2000) table.Classement(e, t);
  table.AjouteClasse(essai::TEltEssai("nouveau", 1), t);
  return 0;
}
