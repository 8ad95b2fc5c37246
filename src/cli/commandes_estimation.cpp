// La commande estimer : les dates de vie d'une personne estimées par tout ce que le dossier
// sait d'elle et de ses proches.
//
//   rqbase estimer DOSSIER N
//     naissance, décès, première union et naissances possibles des enfants, chacun un
//     intervalle d'années décimales ; les années de naissance et de décès quand elles sont
//     notées exactement ; l'âge estimé (au décès, ou aujourd'hui pour une personne présumée
//     vivante). --json : {"naissance", "deces", "union", "procreation"} chacun {"min", "max"}
//     (null pour une borne ouverte), "annee_naissance", "annee_deces" (null quand elle n'est
//     pas connue exactement), "age_estime" (null quand la naissance n'est pas estimée).
//
// Le dossier est ouvert en lecture seule : estimer ne change rien sur le disque.
#include <cmath>
#include <cstdio>

#include "commandes.h"
#include "ouverture.h"
#include "rqbase/person/estimation_personne.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/util/erreur.h"

namespace rqcli {

namespace {

using rqbase::kIncalculableF;
using rqbase::TInterval;

// Une année décimale au centième : assez pour lire un jour près, sans le bruit des flottants.
double Centieme(float v) {
  return std::round(double(v) * 100.0) / 100.0;
}

json Borne(bool ouverte, float v) {
  return ouverte ? json(nullptr) : json(Centieme(v));
}

json Intervalle(const TInterval<float>& i) {
  return {{"min", Borne(i.InfOuvert, i.Inf)}, {"max", Borne(i.SupOuvert, i.Sup)}};
}

json Annee(float v) {
  return v == kIncalculableF ? json(nullptr) : json(Centieme(v));
}

std::string Nombre(float v) {
  char texte[32];
  std::snprintf(texte, sizeof texte, "%.2f", Centieme(v));
  std::string s = texte;
  for (char& c : s)
    if (c == '.') c = ',';
  return s;
}

std::string EnMots(const TInterval<float>& i, const char* inconnu) {
  if (i.InfOuvert && i.SupOuvert) return inconnu;
  if (i.InfOuvert) return "avant " + Nombre(i.Sup);
  if (i.SupOuvert) return "après " + Nombre(i.Inf);
  if (i.Inf == i.Sup) return "en " + Nombre(i.Inf);
  return "entre " + Nombre(i.Inf) + " et " + Nombre(i.Sup);
}

// L'âge au décès, ou aujourd'hui pour une personne qui n'est pas morte à coup sûr ; -1 si la
// naissance n'est pas estimée.
int AgeEstime(rqbase::TPerson& p, rqbase::TEstimationPersonne& e) {
  float naissance = kIncalculableF, deces = kIncalculableF;
  e.RecupAnneeNaissanceDeces(nullptr, naissance, deces);
  if (naissance == kIncalculableF) return -1;
  float fin = deces;
  if (!p.IsDeadToday()) fin = rqbase::AnneeDecimaleAujourdhui();
  if (fin == kIncalculableF || fin < naissance) return -1;
  return static_cast<int>(fin - naissance);
}

void Estimer(TContexteCli& ctx, const std::string& nom, long no) {
  auto gest = Ouvre(nom, true);
  rqbase::TFicPersons* fic = gest->FicPersons();
  if (no < 1 || no > fic->NbPersEffective())
    throw rqbase::ERqBase("La personne " + std::to_string(no) + " n'existe pas dans ce dossier.");
  rqbase::TPerson p(fic, no);
  rqbase::TEstimationPersonne e;
  e.EstimePersonne(no, &p);
  const int age = AgeEstime(p, e);
  if (ctx.Json) {
    EcritJson({{"naissance", Intervalle(e.IntervalNaissance)},
               {"deces", Intervalle(e.IntervalDeces)},
               {"union", Intervalle(e.IntervalUnion)},
               {"procreation", Intervalle(e.IntervalProcreation)},
               {"annee_naissance", Annee(e.AnneeNaissance)},
               {"annee_deces", Annee(e.AnneeDeces)},
               {"age_estime", age < 0 ? json(nullptr) : json(age)}});
    return;
  }
  Ecrit("Naissance          : " + EnMots(e.IntervalNaissance, "inconnue"));
  Ecrit("Décès              : " + EnMots(e.IntervalDeces, "inconnu"));
  Ecrit("Première union     : " + EnMots(e.IntervalUnion, "inconnue"));
  Ecrit("Enfants possibles  : " + EnMots(e.IntervalProcreation, "inconnu"));
  Ecrit("Année de naissance : " + (e.AnneeNaissance == kIncalculableF ? "inconnue" : Nombre(e.AnneeNaissance)));
  Ecrit("Année de décès     : " + (e.AnneeDeces == kIncalculableF ? "inconnue" : Nombre(e.AnneeDeces)));
  Ecrit("Âge estimé         : " + (age < 0 ? std::string("inconnu") : std::to_string(age) + " ans"));
}

}  // namespace

void AjouteCommandesEstimation(CLI::App& app, TContexteCli& ctx) {
  static std::string chemin;
  static long numero = 0;
  auto* estimer = app.add_subcommand("estimer", U("Estime les dates de vie d'une personne"));
  estimer->add_option("DOSSIER", chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  estimer->add_option("N", numero, U("Numéro de la personne"))->required();
  estimer->callback([&ctx] { Estimer(ctx, chemin, numero); });
}

}  // namespace rqcli
