// La commande des événements : les événements et champs simples d'une personne tels que
// la base les charge, avec leurs sources, illustrations et personnes citées, et leur
// réenregistrement à l'identique (qui ne doit rien écrire).
//
// Les numéros de lieu, de qualité et de parenté sont traduits par les fichiers partagés du
// dossier ; un numéro qui n'y est pas donne un texte vide. Sans --reenregistrer, le dossier
// est ouvert en lecture seule : regarder ne change rien.
#include <memory>

#include "commandes.h"
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
using rqbase::TEvenementTV;
using rqbase::TFicDupli;
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

// Le texte d'une valeur partagée ; vide pour 0 ou un numéro que le fichier n'a pas.
std::string TextePartage(TFicDupli* fic, long numero, bool lieu) {
  if (!fic || numero <= 0 || numero > fic->NbFiches()) return "";
  rqbase::TFicheDupli fiche(fic, numero, true);
  if (!lieu) return fiche.Elt.Ville;
  std::string commune, region, pays, texte;
  fiche.Elt.GetVilleRegionPays(commune, region, pays);
  for (const std::string* morceau : {&commune, &region, &pays}) {
    if (morceau->empty()) continue;
    if (!texte.empty()) texte += ", ";
    texte += *morceau;
  }
  return texte;
}

json DecritEvenement(TModuleBDD& bdd, TGestFichier& gest, TEvenementTV& elt, long rang) {
  rqbase::TEvenement::TEnreg& e = elt.Enreg;
  if (!e.SourcesChargees) bdd.ChargerSourceOfEven(&e);
  if (!e.IllustrationsChargees) bdd.ChargerIllustrationOfEven(&e);
  if (!e.PersAssocieesChargees) bdd.ChargerPersAssocieeOfEven(&e);
  json sources = json::array(), illustrations = json::array(), cites = json::array();
  for (int32_t id : e.Sources) {
    if (id == 0) continue;
    rqbase::TSource s(&bdd, id);
    sources.push_back({{"type", Texte(s.Enreg.Type)}, {"descriptif", Texte(s.Enreg.Descriptif)}});
  }
  for (int32_t id : e.Illustrations) {
    if (id == 0) continue;
    rqbase::TIllustration i(&bdd, id);
    illustrations.push_back({{"chemin", Texte(i.Enreg.Chemin)}});
  }
  for (const rqbase::TPersAssociee& p : e.PersAssociees) {
    if (p.Vide()) continue;
    cites.push_back({{"numero", static_cast<long>(p.Lien.No)},
                     {"qualite", Texte(TextePartage(gest.FicQua(), p.LienQualite, false))},
                     {"parente", Texte(TextePartage(gest.FicPar(), p.LienParente, false))}});
  }
  const char calendrier = e.Date.GetCalendrier();
  return {{"numero", e.No},
          {"libelle", Texte(e.Libelle)},
          {"acte", Texte(e.Date.GetActe())},
          {"calendrier", Texte(calendrier == 0 ? std::string() : std::string(1, calendrier))},
          {"date", Texte(e.Date.GetDate())},
          {"lieu", e.Lieu},
          {"lieu_texte", Texte(TextePartage(gest.FicLie(), e.Lieu, true))},
          {"lieu_dit", Texte(e.LieuDit)},
          {"note", e.Note},
          {"donnee", Texte(e.Donnee)},
          {"personne_a", e.NoPersA},
          {"personne_b", e.NoPersB},
          {"rang", rang},
          {"sources", sources},
          {"illustrations", illustrations},
          {"personnes_citees", cites}};
}

std::string Valeur(const json& j, const char* cle) {
  return j[cle].is_string() ? rqbase::DepuisUtf8(j[cle].get<std::string>()) : std::to_string(j[cle].get<long>());
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
  rqbase::TListesChps listes;
  rqbase::ChargerLienChpsOfPerson(bdd, personne, listes);

  json document = {{"evenements", json::array()}, {"champs", json::array()}};
  long rang = 0;
  for (TEvenementTV& e : *listes.Evens) document["evenements"].push_back(DecritEvenement(bdd, *gest, e, ++rang));
  rang = 0;
  for (const rqbase::TChpsSimpleTV& c : *listes.Chps)
    document["champs"].push_back({{"numero", c.Enreg.No},
                                  {"libelle", Texte(c.Enreg.Libelle)},
                                  {"donnee", Texte(c.Enreg.Donnee)},
                                  {"personne_a", c.Enreg.NoPersA},
                                  {"personne_b", c.Enreg.NoPersB},
                                  {"rang", ++rang}});
  if (o.Reenregistrer) {
    // Les listes des événements ont été chargées pour être décrites : elles repartent aussi.
    document["lignes_ecrites"] = rqbase::EnregistrerChpsOfPerson(bdd, personne, listes);
    VerifieEcriture(*gest, "les événements de la personne " + std::to_string(o.Numero));
  }
  if (ctx.Json) {
    EcritJson(document);
    return;
  }
  for (const json& e : document["evenements"]) {
    Ecrit(Valeur(e, "rang") + "\t" + Valeur(e, "libelle") + "\t" + Valeur(e, "acte") + Valeur(e, "date") + "\t" +
          Valeur(e, "lieu_texte") + "\t" + Valeur(e, "lieu_dit") + "\t" + Valeur(e, "donnee"));
    for (const json& s : e["sources"]) Ecrit("\tsource\t" + Valeur(s, "type") + "\t" + Valeur(s, "descriptif"));
    for (const json& i : e["illustrations"]) Ecrit("\tillustration\t" + Valeur(i, "chemin"));
    for (const json& p : e["personnes_citees"])
      Ecrit("\tcitée\t" + Valeur(p, "numero") + "\t" + Valeur(p, "qualite") + "\t" + Valeur(p, "parente"));
  }
  for (const json& c : document["champs"])
    Ecrit(Valeur(c, "rang") + "\t" + Valeur(c, "libelle") + "\t" + Valeur(c, "donnee"));
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
