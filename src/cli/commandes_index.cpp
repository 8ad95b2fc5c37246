// Les commandes de l'index des noms : chercher des personnes par leur nom, voir les lignes
// d'index d'une personne, reconstruire l'index.
//
//   rqbase chercher DOSSIER [--nom N] [--prenoms P] [--soundex] [--sexe S] [--annees A-B]
//                   [--conjoint-nom N] [--sans-pere] [--sans-mere] [--exclure N...] [--limite K]
//                   [--equivalences] [--evenement LIBELLE] [--donnee TEXTE]
//     les personnes qui répondent, chacune une fois, dans l'ordre de l'index ; --json : une
//     liste de {"numero", "nom", "prenoms", "sexe", "annee_min", "annee_max"} (null pour une
//     année inconnue). Plusieurs noms s'écrivent séparés par ';', comme dans ajouter-personne ;
//     un '*' fait un masque. --equivalences : chaque nom et prénom aussi sous ses graphies
//     équivalentes ; --evenement, --donnee : la personne a un fait de ce libellé, de cette
//     donnée.
//   rqbase index DOSSIER N
//     les lignes d'index de la personne N, par identifiant ; --json : une liste de {"id", "nom",
//     "prenom", "nom_soundex", "prenom_soundex", "annee_min", "annee_max", "rg_nom",
//     "rg_prenom", "type", "supprime", "sexe"}.
//   rqbase index reconstruire DOSSIER
//     refait la table de l'index depuis les personnes, puis la mémoire et son fichier (barre de
//     progression sur un terminal) ; --json : {"personnes", "lignes"}.
//
//   rqbase equivalences DOSSIER [--prenoms] [--ajouter "A;B;C"]
//     les groupes de graphies équivalentes des noms (ou des prénoms), un par ligne ; --ajouter
//     en écrit un de plus d'abord ; --json : {"groupes": [[...], ...], "avertissements": [...]}.
//
// Chercher et lire les lignes ne font que lire : le dossier est ouvert en lecture seule.
#include <iostream>
#include <optional>
#include <set>

#include "commandes.h"
#include "ouverture.h"
#include "validateurs.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/index/index_personnes.h"
#include "rqbase/index/noms_equivalents.h"
#include "rqbase/util/chaines.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/erreur.h"

namespace rqcli {

namespace {

using rqbase::ERqBase;
using rqbase::TFicIndexPerson;
using rqbase::TGestEltIndex;
using rqbase::TIndexPerson;

struct TOptionsChercher {
  std::string Chemin, Nom, Prenoms, Sexe = "?", Annees, ConjointNom, Evenement, Donnee;
  bool Soundex = false, SansPere = false, SansMere = false, Equivalences = false;
  std::vector<long> Exclus;
  long Limite = 0;
};

std::string Car(char c) {
  return c == 0 ? std::string() : std::string(1, c);
}
json Annee(int a) {
  return a == 0 ? json(nullptr) : json(a);
}

TFicIndexPerson& IndexDe(rqbase::TGestFichier& gest) {
  TFicIndexPerson* index = gest.FicIndexPerson();
  if (!index) throw ERqBase("L'index des noms de ce dossier n'a pas pu être ouvert.");
  return *index;
}

// "1800-1850" -> (1800, 1850) ; faux si la forme n'y est pas.
bool LitAnnees(const std::string& texte, int& debut, int& fin) {
  const size_t tiret = texte.find('-', 1);
  if (tiret == std::string::npos) return false;
  try {
    size_t lu1 = 0, lu2 = 0;
    debut = std::stoi(texte.substr(0, tiret), &lu1);
    fin = std::stoi(texte.substr(tiret + 1), &lu2);
    return lu1 == tiret && lu2 == texte.size() - tiret - 1 && debut <= fin;
  } catch (const std::exception&) {
    return false;
  }
}

void Chercher(TContexteCli& ctx, const TOptionsChercher& o) {
  TGestEltIndex::TRechSimple rs;
  rs.Nom = ArgTexte(o.Nom, "le nom");
  rs.Prenoms = ArgTexte(o.Prenoms, "les prénoms");
  rs.NomConjoint = ArgTexte(o.ConjointNom, "le nom du conjoint");
  rs.SoundexNom = rs.SoundexPrenom = rs.SoundexConjoint = o.Soundex;
  rs.Sexe = o.Sexe[0];
  if (!o.Annees.empty()) {
    rs.AvecPeriode = true;
    LitAnnees(o.Annees, rs.AnneeDebut, rs.AnneeFin);  // déjà vérifié par l'option
  }
  if (o.SansPere) rs.Parents = "ZPASZDEZPERE";
  if (o.SansMere) rs.Parents += std::string(rs.Parents.empty() ? "" : ";") + "ZPASZDEZMERE";
  rs.Exclus.insert(o.Exclus.begin(), o.Exclus.end());
  rs.Limite = o.Limite;
  rs.Equivalences = o.Equivalences;
  rs.Evenement = ArgTexte(o.Evenement, "le fait");
  rs.DonneeEvenement = ArgTexte(o.Donnee, "la donnée du fait");
  if (!rs.DonneeEvenement.empty() && rs.Evenement.empty()) rs.Evenement = "*";  // tout fait

  auto gest = Ouvre(o.Chemin, true);
  TFicIndexPerson& index = IndexDe(*gest);
  std::vector<TGestEltIndex::TLigneResultat> lignes;
  index.Table().RechercheSimpleLV(rs, lignes);

  json liste = json::array();
  for (const TGestEltIndex::TLigneResultat& l : lignes) {
    if (ctx.Json) {
      liste.push_back({{"numero", l.Numero},
                       {"nom", Texte(l.Nom)},
                       {"prenoms", Texte(l.Prenoms)},
                       {"sexe", Texte(Car(l.Sexe))},
                       {"annee_min", Annee(l.AnneeMin)},
                       {"annee_max", Annee(l.AnneeMax)}});
    } else {
      std::string annees;
      if (l.AnneeMin != 0 || l.AnneeMax != 0)
        annees = "\t" + (l.AnneeMin ? std::to_string(l.AnneeMin) : std::string("?")) + "-" +
                 (l.AnneeMax ? std::to_string(l.AnneeMax) : std::string("?"));
      Ecrit(std::to_string(l.Numero) + "\t" + Car(l.Sexe) + "\t" + l.Nom + "\t" + l.Prenoms + annees);
    }
  }
  if (ctx.Json) return EcritJson(liste);
  if (lignes.empty()) Ecrit("Aucune personne trouvée.");
}

void Lignes(TContexteCli& ctx, const std::string& chemin, long no) {
  auto gest = Ouvre(chemin, true);
  if (no < 1 || no > gest->FicPersons()->NbPersEffective())
    throw ERqBase("La personne " + std::to_string(no) + " n'existe pas dans ce dossier.");
  TFicIndexPerson& index = IndexDe(*gest);
  TIndexPerson ligne(&index);
  std::vector<int> ids;
  ligne.GetIDIndexByNoPers(no, ids);
  json liste = json::array();
  for (auto it = ids.rbegin(); it != ids.rend(); ++it) {
    ligne.Lecture(*it);
    const rqbase::TEnregIndex& e = ligne.Enreg;
    if (ctx.Json) {
      liste.push_back({{"id", ligne.ID},
                       {"nom", Texte(e.Nom)},
                       {"prenom", Texte(e.Prenom)},
                       {"nom_soundex", Texte(e.NomSoundex)},
                       {"prenom_soundex", Texte(e.PrenomSoundex)},
                       {"annee_min", e.AnneeMin},
                       {"annee_max", e.AnneeMax},
                       {"rg_nom", e.RgNom},
                       {"rg_prenom", e.RgPrenom},
                       {"type", Texte(Car(e.TypePersonne))},
                       {"supprime", e.FicheSupprimee == 'O'},
                       {"sexe", Texte(Car(e.Sexe))}});
    } else {
      Ecrit(std::to_string(ligne.ID) + "\t" + e.Nom + "\t" + e.Prenom + "\t" + e.NomSoundex + "\t" + e.PrenomSoundex +
            "\t" + std::to_string(e.RgNom) + "/" + std::to_string(e.RgPrenom));
    }
  }
  if (ctx.Json) return EcritJson(liste);
  if (ids.empty()) Ecrit("Aucune ligne d'index pour la personne " + std::to_string(no) + ".");
}

// Les groupes d'équivalences du dossier ; avec `ajout`, un groupe de plus, écrit d'abord.
void Equivalences(TContexteCli& ctx, const std::string& chemin, bool prenoms, const std::string& ajout) {
  using rqbase::TTabNomEquiv;
  const auto genre = prenoms ? TTabNomEquiv::TGenre::Prenoms : TTabNomEquiv::TGenre::Noms;
  const std::string groupe = ArgTexte(ajout, "le groupe");
  auto gest = groupe.empty() ? Ouvre(chemin, true) : OuvrePourEcrire(chemin);
  TTabNomEquiv* table = gest->TabNomEquiv();
  if (!table) throw ERqBase("Les équivalences de noms de ce dossier n'ont pas pu être lues.");
  if (!groupe.empty()) {
    std::vector<std::string> noms;
    for (std::string_view n : rqbase::DecoupeElts(groupe, ';')) noms.emplace_back(n);
    // Refusé avant toute écriture : le fichier reste tel qu'il était.
    if (!table->AjouteGroupe(noms, genre))
      throw ERqBase("Un groupe d'équivalences demande au moins deux graphies différentes, séparées par ';'.");
    if (!table->Sauvegarde(genre)) throw ERqBase("L'écriture des équivalences a échoué : le fichier est resté tel quel.");
  }
  json groupes = json::array();
  for (const std::vector<std::string>& g : table->Groupes(genre)) {
    json noms = json::array();
    std::string ligne;
    for (const std::string& n : g) {
      noms.push_back(Texte(n));
      ligne += (ligne.empty() ? "" : ";") + n;
    }
    groupes.push_back(noms);
    if (!ctx.Json) Ecrit(ligne);
  }
  json avertissements = json::array();
  for (const std::string& a : table->Avertissements) {
    avertissements.push_back(Texte(a));
    if (!ctx.Json) std::cerr << U("Attention : " + a) << '\n';
  }
  if (ctx.Json) return EcritJson({{"groupes", groupes}, {"avertissements", avertissements}});
  if (groupes.empty()) Ecrit("Aucune équivalence.");
}

void Reconstruire(TContexteCli& ctx, const std::string& chemin) {
  // La base est indispensable : c'est elle qui tient la table de l'index.
  auto gest = OuvrePourEcrire(chemin, true);
  TFicIndexPerson& index = IndexDe(*gest);
  TProgressionTerminal progression;
  if (!index.ReinitTableIndex(&progression))
    throw ERqBase("Reconstruction de l'index interrompue : l'index d'avant est resté tel quel.");
  index.ReinitTableIndexBis(&progression);
  gest->ModuleBDD()->MAJInfoChps("INDEXNAME", "UPDATED");
  // Les personnes indexées : les numéros distincts de la mémoire refaite.
  std::set<long> personnes;
  TGestEltIndex& table = index.Table();
  rqbase::TEltIndex elt;
  for (long i = 0; i < table.GetNbElt(); ++i) {
    table.Lit(i, elt);
    personnes.insert(elt.Enreg.NoPers);
  }
  const long lignes = index.LectureEntete();
  if (!index.SauvegardeFichier()) throw ERqBase("Le fichier de l'index n'a pas pu être écrit.");
  VerifieEcriture(*gest, "l'index n'a pas été reconstruit.");
  if (ctx.Json) return EcritJson({{"personnes", long(personnes.size())}, {"lignes", lignes}});
  Ecrit("Index reconstruit : " + std::to_string(personnes.size()) + " personnes, " + std::to_string(lignes) +
        " lignes.");
}

}  // namespace

void AjouteCommandesIndex(CLI::App& app, TContexteCli& ctx) {
  static TOptionsChercher o;
  auto* chercher = app.add_subcommand("chercher", U("Cherche des personnes par leur nom dans l'index"));
  chercher->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
  chercher->add_option("--nom", o.Nom, U("Nom ; plusieurs séparés par ';', '*' pour un masque"));
  chercher->add_option("--prenoms", o.Prenoms, U("Prénoms séparés par des blancs, '*' pour un masque"));
  chercher->add_flag("--soundex", o.Soundex, U("Compare aussi au son (soundex) les noms et les prénoms"));
  // Les messages des vérifications restent en Windows-1252 : l'écriture de l'erreur les convertit.
  chercher->add_option("--sexe", o.Sexe, U("M, F ou ? (tous, par défaut)"))
      ->check(CLI::Validator(
          [](std::string& s) {
            return s == "M" || s == "F" || s == "?" ? std::string() : std::string("le sexe doit être M, F ou ?");
          },
          "M|F|?"));
  chercher->add_option("--annees", o.Annees, U("Période A-B que la vie de la personne doit toucher"))
      ->check(CLI::Validator(
          [](std::string& s) {
            int a = 0, b = 0;
            return LitAnnees(s, a, b) ? std::string() : std::string("période attendue sous la forme 1800-1850");
          },
          "A-B"));
  chercher->add_option("--conjoint-nom", o.ConjointNom, U("Nom d'un conjoint"));
  chercher->add_flag("--sans-pere", o.SansPere, U("Seulement les personnes sans père connu"));
  chercher->add_flag("--sans-mere", o.SansMere, U("Seulement les personnes sans mère connue"));
  chercher->add_option("--exclure", o.Exclus, U("Numéros de personnes à écarter"))->check(EntierAuMoins(1));
  chercher->add_option("--limite", o.Limite, U("Au plus K personnes (0 : toutes)"))->check(EntierAuMoins(0));
  chercher->add_flag("--equivalences", o.Equivalences,
                     U("Cherche aussi les graphies équivalentes des noms et des prénoms (.neq, .preq)"));
  chercher->add_option("--evenement", o.Evenement,
                       U("Libellé d'un fait que la personne doit avoir ('*' pour un masque)"));
  chercher->add_option("--donnee", o.Donnee, U("Donnée de ce fait ('*' pour un masque)"));
  chercher->callback([&ctx] { Chercher(ctx, o); });

  static std::string chemin, cheminReconstruire;
  static long no = 0;
  auto* index = app.add_subcommand("index", U("Les lignes d'index d'une personne, ou la reconstruction de l'index"));
  index->add_option("DOSSIER", chemin, U("Dossier .rq2 ou fichier .prs"));
  index->add_option("N", no, U("Numéro de la personne"));
  auto* reconstruire = index->add_subcommand("reconstruire", U("Refait l'index depuis les personnes"));
  reconstruire->add_option("DOSSIER", cheminReconstruire, U("Dossier .rq2 ou fichier .prs"))->required();
  reconstruire->callback([&ctx] { Reconstruire(ctx, cheminReconstruire); });
  static std::string cheminEquiv, ajout;
  static bool prenoms = false;
  auto* equivalences = app.add_subcommand("equivalences", U("Montre ou complète les équivalences de noms du dossier"));
  equivalences->add_option("DOSSIER", cheminEquiv, U("Dossier .rq2 ou fichier .prs"))->required();
  equivalences->add_flag("--prenoms", prenoms, U("Les équivalences de prénoms (sinon de noms)"));
  equivalences->add_option("--ajouter", ajout, U("Un groupe de graphies équivalentes, séparées par ';'"));
  equivalences->callback([&ctx] { Equivalences(ctx, cheminEquiv, prenoms, ajout); });
  index->callback([&ctx, index, reconstruire] {
    if (index->got_subcommand(reconstruire)) return;
    if (chemin.empty() || no == 0) throw CLI::RequiredError(U("DOSSIER et N"));
    Lignes(ctx, chemin, no);
  });
}

}  // namespace rqcli
