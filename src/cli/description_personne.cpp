#include "description_personne.h"

#include "rqbase/dossier/gest_fic.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/util/erreur.h"

namespace rqcli {

namespace {

using rqbase::TEvenementTV;
using rqbase::TFicDupli;
using rqbase::TGestFichier;
using rqbase::TModuleBDD;

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

}  // namespace

std::string Valeur(const json& j, const char* cle) {
  return j[cle].is_string() ? rqbase::DepuisUtf8(j[cle].get<std::string>()) : std::to_string(j[cle].get<long>());
}

json DecritListes(TGestFichier& gest, rqbase::TPerson& personne) {
  json document = {{"evenements", json::array()}, {"champs", json::array()}};
  TModuleBDD* bdd = gest.ModuleBDD();
  if (!bdd || !bdd->EstOuverte()) return document;
  personne.LectureComplementaire();
  long rang = 0;
  for (TEvenementTV& e : *personne.Evens()) document["evenements"].push_back(DecritEvenement(*bdd, gest, e, ++rang));
  rang = 0;
  for (const rqbase::TChpsSimpleTV& c : *personne.Chps())
    document["champs"].push_back({{"numero", c.Enreg.No},
                                  {"libelle", Texte(c.Enreg.Libelle)},
                                  {"donnee", Texte(c.Enreg.Donnee)},
                                  {"personne_a", c.Enreg.NoPersA},
                                  {"personne_b", c.Enreg.NoPersB},
                                  {"rang", ++rang}});
  return document;
}

void EcritListes(const json& listes) {
  for (const json& e : listes["evenements"]) {
    Ecrit(Valeur(e, "rang") + "\t" + Valeur(e, "libelle") + "\t" + Valeur(e, "acte") + Valeur(e, "date") + "\t" +
          Valeur(e, "lieu_texte") + "\t" + Valeur(e, "lieu_dit") + "\t" + Valeur(e, "donnee"));
    for (const json& s : e["sources"]) Ecrit("\tsource\t" + Valeur(s, "type") + "\t" + Valeur(s, "descriptif"));
    for (const json& i : e["illustrations"]) Ecrit("\tillustration\t" + Valeur(i, "chemin"));
    for (const json& p : e["personnes_citees"])
      Ecrit("\tcitée\t" + Valeur(p, "numero") + "\t" + Valeur(p, "qualite") + "\t" + Valeur(p, "parente"));
  }
  for (const json& c : listes["champs"])
    Ecrit(Valeur(c, "rang") + "\t" + Valeur(c, "libelle") + "\t" + Valeur(c, "donnee"));
}

}  // namespace rqcli
