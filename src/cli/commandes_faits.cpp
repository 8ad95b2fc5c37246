// Les commandes des faits d'une personne : ajouter ou supprimer un événement, ajouter un
// champ simple, fixer ses professions.
//
// Le libellé est celui du catalogue du dossier (son libellé interne) : un événement doit y
// être un événement, un champ simple un champ simple. Tout (textes, date, libellé, personne,
// conjoint, limite des 100) se vérifie avant la première écriture.
#include <string>

#include "commandes.h"
#include "ouverture.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/erreur.h"

namespace rqcli {

namespace {

using rqbase::ERqBase;
using rqbase::TGestFichier;
using rqbase::TPerson;

struct TOptionsFaits {
  std::string Chemin, Libelle, Valeur, Date, Commune, Code, Region, Pays, LieuDit, Donnee;
  long Numero = 0, Conjoint = 0;
  int Rang = 0;
};

std::string Num(long n) { return std::to_string(n); }

// La personne vivante de ce numéro, ses listes chargées.
TPerson PersonneAvecListes(TGestFichier& gest, long no) {
  if (no < 1 || no > gest.FicPersons()->NbPersEffective())
    throw ERqBase("La personne " + Num(no) + " n'existe pas dans ce dossier.");
  TPerson p(gest.FicPersons(), no, true);
  if (p.FicheSupprimee()) throw ERqBase("La personne " + Num(no) + " est supprimée : restaurez-la d'abord.");
  return p;
}

const rqbase::TChpCs& ChampDuCatalogue(TGestFichier& gest, const std::string& libelle, bool evenement) {
  const rqbase::TDefChpsCs* cat = gest.GetDefChpsCs();
  const rqbase::TChpCs* c = cat ? cat->RechercheChampsInternePtr(libelle) : nullptr;
  if (!c) throw ERqBase("Le libellé \"" + libelle + "\" n'est pas dans le catalogue de ce dossier.");
  if (evenement && !c->IsEvenement())
    throw ERqBase("Le libellé \"" + libelle + "\" n'est pas un événement dans ce dossier.");
  if (!evenement && !c->IsSimple() && !c->IsDateGestSys())
    throw ERqBase("Le libellé \"" + libelle + "\" n'est pas un champ simple dans ce dossier.");
  return *c;
}

std::string TexteBorne(const std::string& utf8, const char* quoi, size_t taille) {
  const std::string t = ArgTexte(utf8, quoi);
  if (t.size() > taille)
    throw ERqBase(std::string(quoi) + " dépasse " + std::to_string(taille) + " caractères : rien n'a été enregistré.");
  return t;
}

void AjouteEvenement(TContexteCli& ctx, const TOptionsFaits& o) {
  // Les textes et la date d'abord, avant d'ouvrir.
  const std::string libelle = rqbase::Trim(ArgTexte(o.Libelle, "le libellé"));
  const std::string donnee = TexteBorne(o.Donnee, "La donnée", rqbase::kLgDonnee);
  const std::string lieuDit = TexteBorne(o.LieuDit, "Le lieu-dit", rqbase::kLgLieuDit - 1);
  rqbase::TDateRQ date;
  if (!o.Date.empty()) date = DateDeTexte(o.Date);
  const std::string commune = ArgTexte(o.Commune, "la commune"), code = ArgTexte(o.Code, "le code"),
                    region = ArgTexte(o.Region, "la région"), pays = ArgTexte(o.Pays, "le pays");
  if (commune.empty() && !(code.empty() && region.empty() && pays.empty()))
    throw ERqBase("Un lieu demande au moins --lieu COMMUNE : rien n'a été enregistré.");
  if (code.size() > 10) throw ERqBase("Le code dépasse 10 caractères : rien n'a été enregistré.");
  if (pays.size() > 50) throw ERqBase("Le pays dépasse 50 caractères : rien n'a été enregistré.");

  auto gest = OuvrePourEcrire(o.Chemin, true);
  ChampDuCatalogue(*gest, libelle, true);
  TPerson p = PersonneAvecListes(*gest, o.Numero);
  if (o.Conjoint != 0 && p.RetourneRgConj(o.Conjoint) == 0)
    throw ERqBase("La personne " + Num(o.Conjoint) + " n'est pas un conjoint de " + Num(o.Numero) +
                  " : liez-les d'abord (rqbase lier --conjoint).");
  if (p.GetNbInfoEven() >= TPerson::NbLiens || !p.CanAddEvent())
    throw ERqBase("La personne " + Num(o.Numero) + " a déjà 100 événements : rien n'a été enregistré.");
  if (o.Conjoint != 0) {
    TPerson c(gest->FicPersons(), o.Conjoint, true);
    if (c.GetNbInfoEven() >= TPerson::NbLiens || !c.CanAddEvent())
      throw ERqBase("Le conjoint " + Num(o.Conjoint) + " a déjà 100 événements : rien n'a été enregistré.");
  }
  long lieu = 0;
  if (!commune.empty()) {
    rqbase::TFicDupli* lie = gest->FicLie();
    if (!lie || !lie->Fichier()) throw ERqBase("Le fichier des lieux de ce dossier ne peut pas être ouvert.");
    rqbase::TEltDupChn elt(0, commune.c_str(), code.c_str(), region.c_str(), pays.c_str());
    int rang = 0;
    lieu = lie->Cherche(&elt, true, &rang);
  }
  rqbase::TEvenement e(gest->ModuleBDD());
  e.Enreg.SetLibelle(libelle);
  e.Enreg.SetDonnee(donnee);
  e.Enreg.SetLieuDit(lieuDit);
  e.Enreg.Date = date;
  e.Enreg.Lieu = lieu;
  e.Enreg.NoPersA = o.Numero;
  e.Enreg.NoPersB = o.Conjoint;
  if (!p.AjoutEven(&e, true, true, true))
    throw ERqBase("L'événement n'a pas pu être ajouté à la personne " + Num(o.Numero) + ".");
  VerifieEcriture(*gest, "l'événement n'a pas été enregistré.");
  const int rang = p.GetRgEvenByID(e.Enreg.No);
  if (ctx.Json) return EcritJson({{"numero", e.Enreg.No}, {"rang", rang}});
  Ecrit("Événement " + Num(e.Enreg.No) + " ajouté au rang " + Num(rang) + ".");
}

void SupprimeEvenement(TContexteCli& ctx, const TOptionsFaits& o) {
  auto gest = OuvrePourEcrire(o.Chemin, true);
  TPerson p = PersonneAvecListes(*gest, o.Numero);
  rqbase::TEvenement::TEnreg e;
  if (!p.EvenNo(o.Rang, &e))
    throw ERqBase("La personne " + Num(o.Numero) + " n'a pas d'événement au rang " + Num(o.Rang) + ".");
  // L'enregistrement d'abord libéré de ses liens (conjoint, personnes citées), puis ôté de la liste.
  p.SupprimeEvenement(e.No, true);
  p.SupprEvenNo(p.GetRgEvenByID(e.No), true);
  VerifieEcriture(*gest, "l'événement n'a pas été supprimé.");
  if (ctx.Json) return EcritJson({{"numero", e.No}, {"supprime", true}});
  Ecrit("Événement " + Num(e.No) + " supprimé.");
}

void AjouteChamp(TContexteCli& ctx, const TOptionsFaits& o) {
  const std::string libelle = rqbase::Trim(ArgTexte(o.Libelle, "le libellé"));
  const std::string valeur = TexteBorne(o.Valeur, "La valeur", rqbase::kLgDonnee);
  auto gest = OuvrePourEcrire(o.Chemin, true);
  ChampDuCatalogue(*gest, libelle, false);
  TPerson p = PersonneAvecListes(*gest, o.Numero);
  if (p.GetNbChpsSimple() >= TPerson::NbLiens)
    throw ERqBase("La personne " + Num(o.Numero) + " a déjà 100 champs simples : rien n'a été enregistré.");
  rqbase::TChpsSimple::TEnreg rec;
  rec.SetLibelle(libelle);
  rec.SetDonnee(valeur);
  rec.NoPersA = o.Numero;
  p.AjoutChpsSimple(&rec, 0);
  p.Enregistrement();
  VerifieEcriture(*gest, "le champ n'a pas été enregistré.");
  // Le numéro vient de la base à l'enregistrement : le champ est le dernier de ce libellé.
  int rang = 0;
  for (int r = 1; r <= p.GetNbChpsSimple(); ++r)
    if (rqbase::Trim(p.Chps()->Lit(r - 1)->Enreg.Libelle) == libelle) rang = r;
  const long numero = rang > 0 ? p.Chps()->Lit(rang - 1)->Enreg.No : 0;
  if (ctx.Json) return EcritJson({{"numero", numero}, {"rang", rang}});
  Ecrit("Champ " + Num(numero) + " ajouté au rang " + Num(rang) + ".");
}

void Professions(TContexteCli& ctx, const TOptionsFaits& o) {
  const std::string texte = ArgTexte(o.Valeur, "les professions");
  auto gest = OuvrePourEcrire(o.Chemin, true);
  TPerson p = PersonneAvecListes(*gest, o.Numero);
  p.AjusteChampsProf(texte);
  p.Enregistrement();
  VerifieEcriture(*gest, "les professions n'ont pas été enregistrées.");
  const std::string toutes = p.GetToutesProfession();
  if (ctx.Json) return EcritJson({{"numero", o.Numero}, {"professions", Texte(toutes)}});
  Ecrit("Professions : " + toutes);
}

}  // namespace

void AjouteCommandesFaits(CLI::App& app, TContexteCli& ctx) {
  static TOptionsFaits o;
  auto* evenement = app.add_subcommand("evenement", U("Ajoute ou supprime un événement d'une personne"));
  evenement->require_subcommand(1);
  auto* ajouter = evenement->add_subcommand("ajouter", U("Ajoute un événement à sa place habituelle"));
  ajouter->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  ajouter->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  ajouter->add_option("LIBELLE", o.Libelle, U("Libellé interne du catalogue (NAISSANCE, DECES...)"))->required();
  ajouter->add_option("--date", o.Date, U("Date (texte libre ou forme #<acte><calendrier><date>#)"));
  ajouter->add_option("--lieu", o.Commune, U("Commune du lieu"));
  ajouter->add_option("--code", o.Code, U("Code du lieu"));
  ajouter->add_option("--region", o.Region, U("Région du lieu"));
  ajouter->add_option("--pays", o.Pays, U("Pays du lieu"));
  ajouter->add_option("--lieu-dit", o.LieuDit, U("Lieu-dit"));
  ajouter->add_option("--donnee", o.Donnee, U("Donnée de l'événement"));
  ajouter->add_option("--conjoint", o.Conjoint, U("Conjoint, pour un événement de couple"));
  ajouter->callback([&ctx] { AjouteEvenement(ctx, o); });
  auto* supprimer = evenement->add_subcommand("supprimer", U("Supprime l'événement de ce rang"));
  supprimer->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  supprimer->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  supprimer->add_option("RANG", o.Rang, U("Rang de l'événement (à partir de 1)"))->required();
  supprimer->callback([&ctx] { SupprimeEvenement(ctx, o); });

  auto* champ = app.add_subcommand("champ", U("Ajoute un champ simple à une personne"));
  champ->require_subcommand(1);
  auto* champAjouter = champ->add_subcommand("ajouter", U("Ajoute un champ simple après ceux du même libellé"));
  champAjouter->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  champAjouter->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  champAjouter->add_option("LIBELLE", o.Libelle, U("Libellé interne du catalogue"))->required();
  champAjouter->add_option("VALEUR", o.Valeur, U("Valeur du champ"))->required();
  champAjouter->callback([&ctx] { AjouteChamp(ctx, o); });

  auto* professions = app.add_subcommand("professions", U("Fixe les professions d'une personne (\"a,b\")"));
  professions->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  professions->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  professions->add_option("PROFESSIONS", o.Valeur, U("Professions séparées par le séparateur (\",\")"))->required();
  professions->callback([&ctx] { Professions(ctx, o); });
}

}  // namespace rqcli
