// La commande des événements : les événements et champs simples d'une personne tels que
// la base les charge, avec leurs sources, illustrations et personnes citées, et leur
// réenregistrement à l'identique (qui ne doit rien écrire).
//
// Les numéros de lieu, de qualité et de parenté sont traduits par les fichiers partagés du
// dossier ; un numéro qui n'y est pas donne un texte vide. Sans --reenregistrer, le dossier
// est ouvert en lecture seule : regarder ne change rien.
#include <memory>

#include "commandes.h"
#include "description_personne.h"
#include "ouverture.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/notes/fic_notes.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/liste_evenements.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/erreur.h"

namespace rqcli {

namespace {

using rqbase::ERqBase;
using rqbase::TGestFichier;
using rqbase::TModuleBDD;

struct TOptionsEvenements {
  std::string Chemin;
  long Numero = 0;
  bool Reenregistrer = false;
};

// La base du dossier, que le dossier a reliée à ses voisins à l'ouverture.
TModuleBDD& BaseReliee(TGestFichier& gest) {
  TModuleBDD* bdd = gest.ModuleBDD();
  if (!bdd || !bdd->EstOuverte()) throw ERqBase("La base des événements de ce dossier ne peut pas être ouverte.");
  return *bdd;
}

void Evenements(TContexteCli& ctx, const TOptionsEvenements& o) {
  auto gest = Ouvre(o.Chemin, !o.Reenregistrer);
  if (o.Numero < 1 || o.Numero > gest->FicPersons()->NbPersEffective())
    throw ERqBase("La personne " + std::to_string(o.Numero) + " n'existe pas dans ce dossier.");
  TModuleBDD& bdd = BaseReliee(*gest);
  rqbase::TPerson personne(gest->FicPersons(), o.Numero);
  // Chargés, les faits d'une personne supprimée ne désignent plus son conjoint : les
  // réenregistrer les détacherait d'elle.
  if (o.Reenregistrer && personne.FicheSupprimee())
    throw ERqBase("La personne " + std::to_string(o.Numero) +
                  " est supprimée : ses événements ne sont pas réenregistrés.");
  json document = DecritListes(*gest, personne);
  if (o.Reenregistrer) {
    // Les listes chargées pour être décrites repartent telles quelles.
    document["lignes_ecrites"] = rqbase::EnregistrerChpsOfPerson(bdd, personne, personne.ListesChps());
    VerifieEcriture(*gest, "les événements de la personne " + std::to_string(o.Numero));
  }
  if (ctx.Json) {
    EcritJson(document);
    return;
  }
  EcritListes(document);
  if (o.Reenregistrer) Ecrit("Lignes écrites : " + Valeur(document, "lignes_ecrites"));
}

}  // namespace

void AjouteCommandesEvenements(CLI::App& app, TContexteCli& ctx) {
  static TOptionsEvenements o;
  auto* c =
      app.add_subcommand("evenements", U("Événements et champs simples d'une personne, tels que la base les charge"));
  c->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  c->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  c->add_flag("--reenregistrer", o.Reenregistrer,
              U("Les réenregistre tels quels et dit combien de lignes ont été écrites"));
  c->callback([&ctx] { Evenements(ctx, o); });
}

}  // namespace rqcli
