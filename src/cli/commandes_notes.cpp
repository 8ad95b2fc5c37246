// Les commandes des notes : écrire, lire, lister et supprimer les notes d'une personne, et
// tirer le texte brut d'un RTF.
//
// Le texte d'une note arrive en UTF-8 sur l'entrée standard et repart en UTF-8 ; dans le
// dossier il est en Windows-1252, ses fins de ligne en CR LF comme elles l'ont toujours été,
// et la commande les rend en LF. Tout se vérifie avant d'ouvrir le dossier en écriture : une
// commande refusée ne change pas un octet.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <memory>

#include "commandes.h"
#include "ouverture.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/notes/conv_rtf_txt.h"
#include "rqbase/notes/fic_notes.h"
#include "rqbase/notes/lecteur_rtf.h"
#include "rqbase/notes/note.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/erreur.h"

namespace rqcli {

namespace {

using rqbase::ERqBase;
using rqbase::TFicNotes;
using rqbase::TGestFichier;
using rqbase::TNote;
using rqbase::TPerson;

std::string LitEntree() {
  std::cin >> std::noskipws;
  return std::string(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
}

// Un texte venu de l'entrée standard (UTF-8) en texte interne, sans rien changer en
// silence : UTF-8 invalide, caractère que Windows-1252 n'a pas ou caractère de contrôle
// (hors tabulation et fins de ligne) sont refusés.
std::string TexteEntree(const std::string& utf8, const std::string& quoi) {
  if (!rqbase::EstUtf8Valide(utf8)) throw ERqBase("Le texte lu (" + quoi + ") n'est pas en UTF-8 : rien n'a été enregistré.");
  std::string controle = utf8;
  std::replace_if(controle.begin(), controle.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
  (void)ArgTexte(controle, quoi);
  return Arg(utf8);
}

// Fins de ligne CR, LF ou CR LF -> CR LF (la forme du dossier).
std::string VersCrLf(const std::string& texte) {
  std::string r;
  r.reserve(texte.size() + texte.size() / 32);
  for (size_t i = 0; i < texte.size(); ++i) {
    if (texte[i] == '\r' || texte[i] == '\n') {
      if (texte[i] == '\r' && i + 1 < texte.size() && texte[i + 1] == '\n') ++i;
      r += "\r\n";
    } else {
      r += texte[i];
    }
  }
  return r;
}

// CR LF -> LF (la forme de la sortie).
std::string VersLf(const std::string& texte) {
  std::string r;
  r.reserve(texte.size());
  for (size_t i = 0; i < texte.size(); ++i)
    if (!(texte[i] == '\r' && i + 1 < texte.size() && texte[i + 1] == '\n')) r += texte[i];
  return r;
}

// Le texte seul sur la sortie standard, suivi d'une fin de ligne s'il n'en a pas.
void EcritTexteSeul(const std::string& cp1252) {
  std::string utf8 = rqbase::VersUtf8(cp1252);
  if (!utf8.empty() && utf8.back() != '\n') utf8 += '\n';
  std::cout << utf8;
}

std::string Titre(const std::string& utf8) {
  const std::string titre = ArgTexte(utf8, "le titre");
  if (titre.empty()) throw ERqBase("Le titre de la note est vide : rien n'a été changé.");
  return titre;
}

// La personne N du dossier (elle doit exister) et le bloc de son en-tête de notes, 0 si
// elle n'en a pas : un numéro hors du fichier ou qui ne désigne pas un en-tête ne compte pas.
long EnteteDeLaPersonne(TGestFichier& gest, long no, TPerson& personne) {
  if (no < 1 || no > gest.FicPersons()->NbPersEffective())
    throw ERqBase("La personne " + std::to_string(no) + " n'existe pas dans ce dossier.");
  personne.Lecture(no);
  TFicNotes* fic = gest.FicNotes();
  const long entete = personne.Enreg.Note;
  if (!fic || !fic->BlocEcrit(entete)) return 0;
  TNote curseur(fic, 0);
  TNote::TEnreg bloc;
  if (!curseur.LectureElementaire(entete, bloc) || bloc.Suivant != -1) return 0;
  return entete;
}

std::string PasDeNote(long no, const std::string& titre) {
  return "La personne " + std::to_string(no) + " n'a pas de note « " + titre + " »";
}

long Nombre(const std::string& texte) {
  errno = 0;
  char* fin = nullptr;
  const long v = std::strtol(texte.c_str(), &fin, 10);
  return texte.empty() || errno != 0 || *fin != 0 ? 0 : v;
}

void Ecrire(TContexteCli& ctx, const std::string& nom, long no, const std::string& titreUtf8) {
  const std::string titre = Titre(titreUtf8);
  const std::string texte = VersCrLf(TexteEntree(LitEntree(), "le texte de la note"));
  if (texte.empty())
    throw ERqBase("La note est vide : rien n'a été enregistré (rqbase note supprimer efface une note).");
  constexpr size_t kMax = static_cast<size_t>(TFicNotes::BlocsMaxParNote) * 507;
  if (texte.size() > kMax)
    throw ERqBase("La note dépasse " + std::to_string(kMax) + " caractères : rien n'a été enregistré.");

  auto gest = Ouvre(nom, false);
  TFicNotes* fic = gest->FicNotes();
  if (!fic || !fic->Fichier())
    throw ERqBase("Le fichier des notes du dossier ne peut pas être ouvert : rien n'a été enregistré.");
  TPerson personne(gest->FicPersons(), 0);
  const long entete = EnteteDeLaPersonne(*gest, no, personne);
  TNote note(fic, entete);
  // L'en-tête tient dans un bloc : un titre de plus qui le ferait couper est refusé avant
  // toute écriture (la coupe perdrait les titres d'après). Une chaîne neuve commence au bloc
  // qui suit le dernier ; une chaîne reprise garde son numéro, plus court.
  {
    TNote essai(fic, 0);
    essai.Assign(note);
    essai.SetPositionTitre(titre, fic->NbBlocs() + 1);
    if (essai.Liste.CommaText().size() > 507)
      throw ERqBase("Les titres des notes de la personne " + std::to_string(no) +
                    " ne tiennent plus dans leur bloc : rien n'a été enregistré.");
  }
  std::string copie = texte;
  note.ModifNote(titre, copie);
  if (note.NoFiche != personne.Enreg.Note) {
    personne.Enreg.Note = static_cast<int32_t>(note.NoFiche);
    personne.Enregistrement();
  }
  gest->EcritureEntete();
  VerifieEcriture(*gest, "la note n'a pas été enregistrée.");
  const long bloc = note.GetPositionTitre(titre);
  if (ctx.Json) return EcritJson({{"titre", Texte(titre)}, {"bloc", bloc}});
  Ecrit("Note « " + titre + " » enregistrée pour la personne " + std::to_string(no) + ".");
}

void Lire(TContexteCli& ctx, const std::string& nom, long no, const std::string& titreUtf8, bool brut) {
  const std::string titre = Titre(titreUtf8);
  auto gest = Ouvre(nom, true);
  TPerson personne(gest->FicPersons(), 0);
  const long entete = EnteteDeLaPersonne(*gest, no, personne);
  TNote note(gest->FicNotes(), entete);
  if (entete == 0 || note.RangTitre(titre) < 0) throw ERqBase(PasDeNote(no, titre) + ".");
  std::string texte = note.LectureNote(titre);
  if (brut && texte.rfind("{\\rtf", 0) == 0) texte = rqbase::ConvertirRtfTxt(texte, true);
  texte = VersLf(texte);
  if (ctx.Json) return EcritJson({{"titre", Texte(titre)}, {"texte", Texte(texte)}});
  EcritTexteSeul(texte);
}

void Titres(TContexteCli& ctx, const std::string& nom, long no) {
  auto gest = Ouvre(nom, true);
  TPerson personne(gest->FicPersons(), 0);
  const long entete = EnteteDeLaPersonne(*gest, no, personne);
  const TNote note(gest->FicNotes(), entete);
  json liste = json::array();
  for (int i = 0; entete != 0 && i + 1 < note.Liste.Count(); i += 2) {
    liste.push_back({{"titre", Texte(note.Liste[i])}, {"bloc", Nombre(note.Liste[i + 1])}});
    if (!ctx.Json) Ecrit(note.Liste[i] + "\t" + std::to_string(Nombre(note.Liste[i + 1])));
  }
  if (ctx.Json) EcritJson(liste);
}

void Supprimer(TContexteCli& ctx, const std::string& nom, long no, const std::string& titreUtf8) {
  const std::string titre = Titre(titreUtf8);
  auto gest = Ouvre(nom, false);
  TPerson personne(gest->FicPersons(), 0);
  const long entete = EnteteDeLaPersonne(*gest, no, personne);
  TNote note(gest->FicNotes(), entete);
  if (entete == 0 || note.RangTitre(titre) < 0) throw ERqBase(PasDeNote(no, titre) + " : rien n'a été changé.");
  note.SupprimeNote(titre);
  gest->EcritureEntete();
  VerifieEcriture(*gest, "la note n'a pas été supprimée.");
  if (ctx.Json) return EcritJson({{"supprime", Texte(titre)}});
  Ecrit("Note « " + titre + " » supprimée pour la personne " + std::to_string(no) + ".");
}

void RtfTexte(TContexteCli& ctx, bool sansSauts, bool lecteur) {
  const std::string rtf = TexteEntree(LitEntree(), "le texte RTF");
  std::string texte;
  if (lecteur) {
    texte = rqbase::ConvertirRtfTxt(rtf, !sansSauts);
  } else {
    rqbase::TConvRtfTxt conv(rtf);
    texte = conv.TraitementRtfTxt(!sansSauts);
  }
  texte = VersLf(texte);
  if (ctx.Json) return EcritJson({{"texte", Texte(texte)}});
  EcritTexteSeul(texte);
}

}  // namespace

void AjouteCommandesNotes(CLI::App& app, TContexteCli& ctx) {
  struct TOptions {
    std::string Chemin, Titre;
    long Numero = 0;
    bool Brut = false, SansSauts = false, Lecteur = false;
  };
  static TOptions o;

  auto* note = app.add_subcommand("note", U("Notes d'une personne (écrire, lire, titres, supprimer)"));
  note->require_subcommand(1);
  const auto dossierEtPersonne = [](CLI::App* c) {
    c->add_option("DOSSIER", o.Chemin, U("Dossier .rq2 ou fichier .prs"))->required();
    c->add_option("N", o.Numero, U("Numéro de la personne"))->required();
  };

  auto* ecrire = note->add_subcommand("ecrire", U("Écrit une note (texte UTF-8 sur l'entrée standard)"));
  dossierEtPersonne(ecrire);
  ecrire->add_option("--titre", o.Titre, U("Titre de la note"))->required();
  ecrire->callback([&ctx] { Ecrire(ctx, o.Chemin, o.Numero, o.Titre); });

  auto* lire = note->add_subcommand("lire", U("Montre le texte d'une note"));
  dossierEtPersonne(lire);
  lire->add_option("--titre", o.Titre, U("Titre de la note"))->required();
  lire->add_flag("--texte", o.Brut, U("Une note RTF en texte brut"));
  lire->callback([&ctx] { Lire(ctx, o.Chemin, o.Numero, o.Titre, o.Brut); });

  auto* titres = note->add_subcommand("titres", U("Liste les titres des notes d'une personne"));
  dossierEtPersonne(titres);
  titres->callback([&ctx] { Titres(ctx, o.Chemin, o.Numero); });

  auto* supprimer = note->add_subcommand("supprimer", U("Supprime une note d'une personne"));
  dossierEtPersonne(supprimer);
  supprimer->add_option("--titre", o.Titre, U("Titre de la note"))->required();
  supprimer->callback([&ctx] { Supprimer(ctx, o.Chemin, o.Numero, o.Titre); });

  auto* rtf = app.add_subcommand("rtf", U("Textes RTF"));
  rtf->require_subcommand(1);
  auto* texte = rtf->add_subcommand("texte", U("Le texte brut d'un RTF lu sur l'entrée standard"));
  texte->add_flag("--sans-sauts", o.SansSauts, U("Tout sur une ligne"));
  texte->add_flag("--lecteur", o.Lecteur, U("Par le lecteur RTF complet plutôt que par le décapeur"));
  texte->callback([&ctx] { RtfTexte(ctx, o.SansSauts, o.Lecteur); });
}

}  // namespace rqcli
