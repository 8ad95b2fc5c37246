// TDateRQ construit depuis un texte quelconque, ou depuis 15 octets quelconques,
// puis interrogé par tous ses membres : aucun plantage, aucune boucle sans fin.
#include <cstdint>
#include <cstring>
#include <string>

#include "rqbase/dates/bo_jours.h"

namespace {

void Interroge(const rqbase::TDateRQ& d, const rqbase::TDateRQ& autre) {
  using namespace rqbase;
  std::string a, b;
  short n = 0;
  int i = 0, j = 0, k = 0;
  float f = 0;
  bool v = false;
  d.ExportInString();
  d.Vide();
  d.AnneeDateVide(&a);
  d.CalculDatePossible();
  d.DateIncomplete(&a, &b, true);
  d.IsDatePrecise(&i, &j, &k, "", false);
  d.DateNiPreciseNiFourchette(d.GetDate());
  d.RecupAnneeChn(true, &i, &j, &k, nullptr, true);
  TDateRQ c(d);
  c.RecupAnnee(true, &i, &j, nullptr, nullptr, true);
  c = d;
  c.RecupAnneeFloat(true, &i, &j, &v);
  d.ConstruitActeAnneeChn(1850, v, true);
  TInterval<float> iv;
  d.CalculAnneeFloatOuFourchette(f, iv);
  c = d;
  c.TransformeFourchetteDate();
  c = d;
  c.CalculDateMoyenneFourchette(true);
  c = d;
  c.CalculDateMoyenneFourchette(false);
  d.GetDateLimiteFourchette(true);
  d.GetDateLimiteFourchette(false);
  d.DateDansFourchette("1800", "1900");
  short s1 = 0, s2 = 0;
  d.AjusteFourchette(s1, s2, true);
  float f1 = 0, f2 = 0;
  d.AjusteFourchette(f1, f2, true);
  d.ExtractJourMoisAnnee(i, j, k, true);
  d.RetAnneeMoisJour();
  c = d;
  c.Decalage(static_cast<int>(d.GetDate().size()) * 97 - 400);
  d.CalcNbJoursAbs(false);
  TDateRQ::CompareDate(d, autre, 0);
  CalcJours(d, autre, nullptr, nullptr, nullptr, true, &v, nullptr);
  CalcJours(d, autre);
  d.RedigeFourchette();
  d.RedigeAnnee(true);
  d.PlaceJour(true);
  d.FormatDateTilde();
  d.RetourneJourSemaine(a, b, &n, true);
  d.GetSaison(&a);
  c = d;
  c.GetSigneZodiaque();
  c = d;
  MajFourchetteAnnee(c, autre.GetDate());
  TDateRQ::PrefixeActe(d.GetActe(), true, true);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  const std::string texte(reinterpret_cast<const char*>(donnees), taille);
  const TDateRQ libre(texte);
  // Les mêmes octets pris comme un enregistrement de 15 octets.
  TDateRQ brut;
  std::memcpy(static_cast<void*>(&brut), donnees, taille < 15 ? taille : 15);
  const TDateRQ repere('G', "15/06/1850");
  Interroge(libre, repere);
  Interroge(brut, libre);
  // L'export d'une date de 10 caractères se relit à l'identique.
  const std::string exporte = libre.ExportInString();
  bool acteNet = true;
  for (unsigned char c : libre.GetActe()) acteNet = acteNet && c > ' ';
  if (acteNet && exporte.size() == 15 && libre.GetCalendrier() != 0 && libre.GetDate().size() == 10 &&
      !TDateRQ(exporte).MemesOctets(libre))
    __builtin_trap();
  return 0;
}
