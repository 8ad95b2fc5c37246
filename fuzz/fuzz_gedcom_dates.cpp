// Les dates GEDCOM sur des textes quelconques : jamais de plantage ; une date lue tient dans
// son TDateRQ, et toute date lue s'écrit puis se relit en la même date.
#include <cstdint>
#include <string>

#include "rqbase/gedcom/dates_gedcom.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  const std::string texte(reinterpret_cast<const char*>(donnees), taille);
  TDateRQ d;
  std::string raison;
  const bool entiere = DateGedcomVersRQ(texte, d, raison);
  if (entiere != raison.empty()) __builtin_trap();
  if (d.GetDate().size() > 10 || d.GetActe().size() > 2) __builtin_trap();
  const std::string ecrite = DateRQVersGedcom(d);
  if (!ecrite.empty()) {
    TDateRQ relue;
    std::string r2;
    DateGedcomVersRQ(ecrite, relue, r2);
    if (!relue.MemesOctets(d)) __builtin_trap();
  }
  TDateRQ copie(d);
  copie.RecupAnnee(true);
  return 0;
}
