// Le lecteur de lignes GEDCOM et l'arbre sur des octets quelconques : jamais de plantage,
// de boucle ni d'exception ; chaque ligne rendue tient dans le tampon, ses niveaux ne sautent
// pas, et le refus ne vient qu'avec aucune ligne.
#include <cstdint>
#include <string>
#include <string_view>

#include "rqbase/gedcom/arbre.h"
#include "rqbase/gedcom/lecteur_lignes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  const std::string_view octets(reinterpret_cast<const char*>(donnees), taille);
  TRapportImport r;
  std::string refus;
  const TLignesGedcom l = LitLignesGedcom(octets, r, refus);
  if (refus.empty() == l.Lignes.empty()) __builtin_trap();
  int precedent = -1;
  for (const TLigneGedcom& x : l.Lignes) {
    if (size_t(x.Debut) + x.LgXref + x.LgTag + x.LgValeur > l.Tampon.size()) __builtin_trap();
    if (x.Niveau > precedent + 1 || x.LgTag == 0) __builtin_trap();
    if (l.Tag(x) == "CONC" || l.Tag(x) == "CONT") __builtin_trap();
    precedent = x.Niveau;
  }
  const TArbreGedcom a(l, r);
  for (const uint32_t i : a.Enregistrements()) {
    if (a.Fin(i) <= i) __builtin_trap();
    a.Enfants(i, [&](uint32_t j) { (void)a.Valeur(j); });
    (void)a.Cherche("INDI", a.Xref(i));
  }
  for (const TAvertissement& av : r.Avertissements)
    if (av.Texte.size() > 200) __builtin_trap();
  return 0;
}
