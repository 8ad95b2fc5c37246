// Les commandes du dossier : créer, décrire, lister et lire les personnes, en ajouter,
// copier, renommer, supprimer un dossier.
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <filesystem>
#include <memory>
#include <optional>

#include "commandes.h"
#include "description_personne.h"
#include "ouverture.h"
#include "rqbase/index/prenom_usuel.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/platform/attributs.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/date_heure.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace fs = std::filesystem;

namespace rqcli {

namespace {

using rqbase::ERqBase;
using rqbase::TGestFichier;
using rqbase::TPerson;

// Les commandes de lecture ouvrent toujours en lecture seule (rien ne change sur le
// disque) ; l'état du dossier lui-même se lit à ses droits et à sa version.
bool LectureSeule(const TGestFichier& gest) {
  return gest.AnneeVersion() != 2020 || DossierEnLectureSeule(gest.FabriqueNomFichier(rqbase::tfPersons));
}

json Liste(const rqbase::TLienPers* liens, int n) {
  json l = json::array();
  for (int i = 0; i < n; ++i)
    if (liens[i].No != 0) l.push_back(static_cast<long>(liens[i].No));
  return l;
}

json ListeConj(const rqbase::TLienConj* liens, int n) {
  json l = json::array();
  for (int i = 0; i < n; ++i)
    if (liens[i].No != 0) l.push_back(static_cast<long>(liens[i].No));
  return l;
}

std::string Car(char c) { return c == 0 ? std::string() : std::string(1, c); }

std::string Nombres(const json& l) {
  std::string s;
  for (const auto& v : l) s += (s.empty() ? "" : ", ") + std::to_string(v.get<long>());
  return s.empty() ? "-" : s;
}

void Info(TContexteCli& ctx, const std::string& nom) {
  auto gest = Ouvre(nom, true);
  rqbase::TFicPersons* fic = gest->FicPersons();
  const long supprimees = gest->FicPersSuppr() ? gest->FicPersSuppr()->GetNbPersSuppr() : 0;
  json fichiers = json::array();
  std::vector<std::string> noms;
  // Les fichiers de travail que la base tient ouverts le temps de la lecture ne sont pas
  // des fichiers du dossier : ils disparaissent à la fermeture.
  auto travailBase = [](const std::string& n) {
    for (const char* suffixe : {"-wal", "-shm", "-journal"})
      if (n.size() > std::strlen(suffixe) && n.compare(n.size() - std::strlen(suffixe), std::string::npos, suffixe) == 0)
        return true;
    return false;
  };
  for (const auto& e : fs::directory_iterator(rqbase::CheminOs(gest->DossierFichiers()))) {
    const std::string n = rqbase::CheminInterne(e.path().filename());
    if (!travailBase(n)) noms.push_back(n);
  }
  std::sort(noms.begin(), noms.end());
  for (const auto& n : noms) fichiers.push_back(Texte(n));
  json j = {{"version", gest->AnneeVersion()},
            {"titre", Texte(gest->Titre)},
            {"personnes", gest->NombrePersonnes()},
            {"numeros", fic->NbPersEffective()},
            {"personnes_supprimees", supprimees},
            {"de_cujus", fic->NoDeCujus},
            {"signets", {fic->Signet1, fic->Signet2}},
            {"creation", rqbase::DateHeureEnTexte(gest->DateCreation)},
            {"modification", rqbase::DateHeureEnTexte(gest->DateModification)},
            {"lecture_seule", LectureSeule(*gest)},
            {"fichiers", fichiers}};
  if (ctx.Json) return EcritJson(j);
  Ecrit("Dossier        : " + gest->DossierFichiers() + gest->NomDossier());
  Ecrit("Version        : " + std::to_string(gest->AnneeVersion()));
  Ecrit("Titre          : " + gest->Titre);
  Ecrit("Personnes      : " + std::to_string(gest->NombrePersonnes()) + " (" + std::to_string(fic->NbPersEffective()) +
        " numéros, " + std::to_string(supprimees) + " supprimées)");
  Ecrit("De cujus       : " + std::to_string(fic->NoDeCujus));
  Ecrit("Signets        : " + std::to_string(fic->Signet1) + ", " + std::to_string(fic->Signet2));
  Ecrit("Création       : " + rqbase::DateHeureEnTexte(gest->DateCreation));
  Ecrit("Modification   : " + rqbase::DateHeureEnTexte(gest->DateModification));
  Ecrit(std::string("Lecture seule  : ") + (LectureSeule(*gest) ? "oui" : "non"));
  std::string liste;
  for (const auto& n : noms) liste += (liste.empty() ? "" : " ") + n;
  Ecrit("Fichiers       : " + liste);
}

void Personnes(TContexteCli& ctx, const std::string& nom, long debut, long nombre) {
  auto gest = Ouvre(nom, true);
  rqbase::TFicPersons* fic = gest->FicPersons();
  const long fin = nombre > 0 ? std::min(fic->NbPersEffective(), debut + nombre - 1) : fic->NbPersEffective();
  std::optional<TTableauJsonEnFlux> tableau;
  if (ctx.Json) tableau.emplace(json{{"debut", std::max(1L, debut)}, {"numeros", fic->NbPersEffective()}}, "personnes");
  TPerson p(fic, -3);
  for (long no = std::max(1L, debut); no <= fin; ++no) {
    p.Lecture(no);
    if (tableau) {
      // Écrit sans objet json intermédiaire (le coût d'un million de personnes), membres
      // dans l'ordre des clés : le texte est celui que json écrirait.
      TTableauJsonEnFlux::TObjet(*tableau)
          .Texte("nom", p.Enreg.Nom)
          .Entier("numero", no)
          .Texte("prenoms", p.Enreg.Prenoms)
          .Texte("sexe", Car(p.Enreg.Sexe))
          .Booleen("supprime", p.FicheSupprimee());
    } else {
      Ecrit(std::to_string(no) + "\t" + Car(p.Enreg.Sexe) + "\t" + p.Enreg.Nom + "\t" + p.Enreg.Prenoms +
            (p.FicheSupprimee() ? "\t(supprimée)" : ""));
    }
  }
}

void Personne(TContexteCli& ctx, const std::string& nom, long no) {
  auto gest = Ouvre(nom, true);
  rqbase::TFicPersons* fic = gest->FicPersons();
  if (no < 1 || no > fic->NbPersEffective())
    throw ERqBase("La personne " + std::to_string(no) + " n'existe pas dans ce dossier.");
  TPerson p(fic, no);
  const json listes = DecritListes(*gest, p);
  const json conjoints = ListeConj(p.Enreg.Conjoints, TPerson::NbConjoints);
  const json enfants = Liste(p.Enreg.Enfants, TPerson::NbEnfants);
  json j = {{"numero", no},
            {"type", Texte(Car(p.Enreg.Type))},
            {"supprime", p.FicheSupprimee()},
            {"sexe", Texte(Car(p.Enreg.Sexe))},
            {"nom", Texte(p.Enreg.Nom)},
            {"prenoms", Texte(p.Enreg.Prenoms)},
            {"prenom_usuel", static_cast<long>(p.Enreg.PrenomUsuel)},
            {"pere", static_cast<long>(p.Enreg.Pere.No)},
            {"mere", static_cast<long>(p.Enreg.Mere.No)},
            {"conjoints", conjoints},
            {"enfants", enfants},
            {"note", static_cast<long>(p.Enreg.Note)},
            {"extension", static_cast<long>(p.Enreg.Extension)},
            {"evenements", listes["evenements"]},
            {"champs", listes["champs"]}};
  if (ctx.Json) return EcritJson(j);
  Ecrit("Numéro      : " + std::to_string(no) + (p.FicheSupprimee() ? " (supprimée)" : ""));
  Ecrit("Type        : " + Car(p.Enreg.Type));
  Ecrit("Nom         : " + std::string(p.Enreg.Nom));
  Ecrit("Prénoms     : " + rqbase::NoCotePrenomUsuel(p.Enreg.Prenoms, p.Enreg.PrenomUsuel) + " (usuel : " +
        std::to_string(p.Enreg.PrenomUsuel) + ")");
  Ecrit("Sexe        : " + Car(p.Enreg.Sexe));
  Ecrit("Père, mère  : " + std::to_string(p.Enreg.Pere.No) + ", " + std::to_string(p.Enreg.Mere.No));
  Ecrit("Conjoints   : " + Nombres(conjoints));
  Ecrit("Enfants     : " + Nombres(enfants));
  Ecrit("Note        : " + std::to_string(p.Enreg.Note));
  Ecrit("Débordement : " + std::to_string(p.Enreg.Extension));
  EcritListes(listes);
}

void AjoutePersonne(TContexteCli& ctx, const std::string& nom, const std::string& nomFamille,
                    const std::string& prenoms, const std::string& sexe) {
  // Tout se vérifie avant d'ouvrir : une commande refusée ne change pas un octet.
  const std::string s = Arg(sexe);
  if (s != "M" && s != "F" && s != "?") throw ERqBase("Le sexe doit être M, F ou ?.");
  const std::string nomInterne = ArgTexte(nomFamille, "le nom");
  std::string prenomsInternes = ArgTexte(prenoms, "les prénoms");
  // Le prénom usuel est tapé entre guillemets : la fiche garde les prénoms sans eux, et son rang.
  const short usuel = rqbase::CoteNoPrenomUsuel(prenomsInternes.data());
  prenomsInternes.resize(std::strlen(prenomsInternes.c_str()));
  if (nomInterne.size() > 100) throw ERqBase("Le nom dépasse 100 caractères : rien n'a été enregistré.");
  if (prenomsInternes.size() > 70) throw ERqBase("Les prénoms dépassent 70 caractères : rien n'a été enregistré.");
  auto gest = Ouvre(nom, false);
  TPerson p(gest->FicPersons(), 0);
  p.NouvelleFiche(-3);
  p.SetNom(nomInterne);
  p.SetPrenoms(prenomsInternes);
  p.Enreg.PrenomUsuel = static_cast<uint8_t>(usuel);
  p.SetSexe(s[0]);
  p.Enregistrement();
  gest->EcritureEntete();
  VerifieEcriture(*gest, "la personne n'a pas été ajoutée.");
  if (ctx.Json) return EcritJson({{"numero", p.No()}});
  Ecrit("Personne " + std::to_string(p.No()) + " ajoutée.");
}

// Le compte rendu d'une opération sur le dossier entier : erreur, ou succès avec ce qui a
// été laissé (fichiers qui n'étaient pas au dossier) dit sur stderr.
void Conclut(const rqbase::TCompteRendu& r) {
  if (!r.Reussi) throw ERqBase(r.Message);
  for (const auto& f : r.Conserves)
    std::cerr << U("Laissé en place (n'appartient pas au dossier) : " + f) << '\n';
}

}  // namespace

void AjouteCommandesDossier(CLI::App& app, TContexteCli& ctx) {
  // Les valeurs des options vivent aussi longtemps que l'application.
  struct TOptions {
    std::string Chemin, Titre, Cible, Nom, Prenoms, Sexe = "?";
    bool PremierePersonne = false;
    long Numero = 0, Debut = 1, Nombre = 0;
  };
  static TOptions o;

  auto* creer = app.add_subcommand("creer", U("Crée un dossier généalogique (CHEMIN, avec ou sans .rq2)"));
  creer->add_option("CHEMIN", o.Chemin, U("Dossier à créer"))->required();
  creer->add_option("--titre", o.Titre, U("Titre du dossier"));
  creer->add_flag("--premiere-personne", o.PremierePersonne, U("Crée aussi une première personne"));
  creer->callback([&ctx] {
    fs::path p(rqbase::SupprimeSlashSiNecessaire(Arg(o.Chemin)));
    if (p.extension() != ".rq2") p = p.string() + ".rq2";
    const std::string prs = (p / (p.stem().string() + ".prs")).string();
    const std::string titre = ArgTexte(o.Titre, "le titre");
    if (titre.size() > 100) throw ERqBase("Le titre dépasse 100 caractères : rien n'a été créé.");
    TGestFichier gest(prs, true, false, false, false, o.PremierePersonne ? 1 : 0, rqbase::mcFormulaire, false);
    if (gest.EnErreur()) {
      if (gest.DerniereReponse() != 0)
        throw ERqBase("Le dossier \"" + p.string() + "\" existe déjà : rien n'a été changé.");
      if (!gest.MessageErreur().empty()) throw ERqBase(gest.MessageErreur());
      throw ERqBase("Le dossier \"" + p.string() + "\" n'a pas pu être créé.");
    }
    if (!titre.empty()) {
      gest.Titre = titre;
      gest.EcritureEntete();
    }
    VerifieEcriture(gest, "le dossier est incomplet.");
    if (ctx.Json) return EcritJson({{"dossier", Texte(p.string())}, {"identifiant", Texte(gest.GetIdGenea())}});
    Ecrit("Dossier créé : " + p.string());
  });

  auto* info = app.add_subcommand("info", U("Décrit un dossier"));
  info->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  info->callback([&ctx] { Info(ctx, o.Chemin); });

  auto* personnes = app.add_subcommand("personnes", U("Liste les personnes d'un dossier"));
  personnes->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  personnes->add_option("--debut", o.Debut, U("Premier numéro listé (1 par défaut)"));
  personnes->add_option("--nombre", o.Nombre, U("Nombre de numéros listés (tous par défaut)"));
  personnes->callback([&ctx] { Personnes(ctx, o.Chemin, o.Debut, o.Nombre); });

  auto* personne = app.add_subcommand("personne", U("Montre la fiche d'une personne"));
  personne->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  personne->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  personne->callback([&ctx] { Personne(ctx, o.Chemin, o.Numero); });

  auto* ajouter = app.add_subcommand("ajouter-personne", U("Ajoute une personne à un dossier"));
  ajouter->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  ajouter->add_option("--nom", o.Nom, U("Nom de famille"));
  ajouter->add_option("--prenoms", o.Prenoms, U("Prénoms séparés par des blancs"));
  ajouter->add_option("--sexe", o.Sexe, U("M, F ou ?"));
  ajouter->callback([&ctx] { AjoutePersonne(ctx, o.Chemin, o.Nom, o.Prenoms, o.Sexe); });

  auto* copier = app.add_subcommand("copier", U("Copie un dossier entier sous un autre nom"));
  copier->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  copier->add_option("CIBLE", o.Cible, U("Nouveau dossier (avec ou sans .rq2)"))->required();
  copier->callback([&ctx] {
    auto gest = Ouvre(o.Chemin, true);
    fs::path cible(rqbase::SupprimeSlashSiNecessaire(Arg(o.Cible)));
    if (cible.extension() != ".rq2") cible = cible.string() + ".rq2";
    std::error_code ec;
    if (fs::exists(rqbase::CheminOs(cible.string()), ec)) throw ERqBase("Le dossier \"" + cible.string() + "\" existe déjà.");
    Conclut(gest->DupliqueDossier(cible.string()));
    if (ctx.Json) return EcritJson({{"dossier", Texte(cible.string())}});
    Ecrit("Dossier copié : " + cible.string());
  });

  auto* renommer = app.add_subcommand("renommer", U("Renomme un dossier et tous ses fichiers"));
  renommer->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  renommer->add_option("NOM", o.Nom, U("Nouveau nom (sans .rq2)"))->required();
  renommer->callback([&ctx] {
    const std::string nouveau = ArgTexte(o.Nom, "le nouveau nom");
    if (nouveau.empty() || nouveau.find('/') != std::string::npos || nouveau[0] == '.')
      throw ERqBase("Nouveau nom invalide : rien n'a changé.");
    VerifieDossierGenealogique(o.Chemin);
    // La cible se vérifie avant d'ouvrir : l'ouverture en écriture peut déjà écrire.
    const fs::path dossierActuel = fs::path(CheminPrs(Arg(o.Chemin))).parent_path();
    const std::string cible = (dossierActuel.parent_path() / (nouveau + ".rq2")).string();
    std::error_code ec;
    if (fs::exists(fs::symlink_status(rqbase::CheminOs(cible), ec)))
      throw ERqBase("Le dossier \"" + cible + "\" existe déjà : rien n'a changé.");
    auto gest = Ouvre(o.Chemin, false);
    Conclut(gest->RenommeDossier(nouveau));
    const std::string dossier = rqbase::SupprimeSlashSiNecessaire(gest->DossierFichiers());
    if (ctx.Json) return EcritJson({{"dossier", Texte(dossier)}});
    Ecrit("Dossier renommé : " + dossier);
  });

  auto* supprimer = app.add_subcommand("supprimer", U("Supprime un dossier et tout son contenu"));
  supprimer->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  supprimer->callback([&ctx] {
    VerifieDossierGenealogique(o.Chemin);
    // La question vient avant l'ouverture : un refus ne touche à rien.
    const std::string dossier = fs::path(CheminPrs(Arg(o.Chemin))).parent_path().string();
    const int reponse = rqbase::Dialogue().Question("Supprimer définitivement le dossier \"" + dossier + "\" ?",
                                                    "Suppression d'un dossier", rqbase::TBoutons::OuiNon);
    if (reponse != rqbase::ReponseOui) throw ERqBase("Suppression abandonnée : rien n'a été changé.");
    auto gest = Ouvre(o.Chemin, false);
    Conclut(gest->SupprimeDossier());
    if (ctx.Json) return EcritJson({{"supprime", Texte(dossier)}});
    Ecrit("Dossier supprimé : " + dossier);
  });
}

}  // namespace rqcli
