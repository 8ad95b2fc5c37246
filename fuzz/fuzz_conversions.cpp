// Conversions de calendrier sur des textes et des années quelconques : jamais de
// plantage ; une date grégorienne valide de l'ère républicaine fait l'aller-retour.
#include <cstdint>
#include <cstring>
#include <string>

#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/conversions.h"
#include "rqbase/dates/convjuif.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  const std::string texte(reinterpret_cast<const char*>(donnees), taille);
  ConvRepublicainGregorien(texte);
  ConvRepublicainGregorien2(texte);
  ConvHebraiqueGregorien(texte);
  CalculNbJours(texte);
  JourJulien(texte);
  const std::string republicain = ConvGregorienRepublicain(texte);
  const std::string hebreu = ConvGregorienHebraique(texte);
  ConvJuif conv;
  conv.convCivil_juif(texte);
  conv.convJuif_civil(texte);
  int annee = 0;
  if (taille >= 4) std::memcpy(&annee, donnees, 4);
  ConvAnneeGregHebr(annee);
  ConvAnneeHebrGreg(annee);
  ConvAnneeRepubGreg(annee);
  ConvAnneeGregRepub(annee);
  CalcDatePaques(annee);
  conv.embolismic(annee);

  // Aller-retour d'une date grégorienne entière et valide.
  int j = 0, m = 0, a = 0;
  bool chiffres = DateFormatGregorien(texte);
  for (std::size_t i : {0u, 1u, 3u, 4u, 6u, 7u, 8u, 9u}) chiffres = chiffres && texte[i] >= '0' && texte[i] <= '9';
  if (chiffres) {
    RecupJourMoisAnnee(texte, j, m, a);
    if (DateGregorienOk(j, m, a) && a > 1583) {
      if (!republicain.empty() && ConvRepublicainGregorien(republicain) != texte) __builtin_trap();
      if (!republicain.empty() && ConvRepublicainGregorien2(republicain) != texte) __builtin_trap();
      if (!hebreu.empty() && ConvHebraiqueGregorien(hebreu) != texte) __builtin_trap();
    }
  }
  return 0;
}
