// TGestFichier : ouverture dans l'ordre fixe, verrou d'un seul écrivain, création à l'écart,
// identifiant du dossier, clés d'état. Les opérations sur le dossier entier sont dans
// operations_dossier.cpp.
#include "rqbase/dossier/gest_fic.h"


#include <cerrno>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/index/index_personnes.h"
#include "rqbase/index/noms_equivalents.h"
#include "rqbase/notes/fic_notes.h"
#include "rqbase/person/estimation_personne.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/attributs.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/empreinte.h"
#include "rqbase/platform/fil.h"
#include "rqbase/platform/preferences.h"
#include "rqbase/platform/remplacement.h"
#include "rqbase/platform/ressources.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/storage/fic_xml.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace fs = std::filesystem;

namespace rqbase {

// --- Construction ---

TGestFichier::TGestFichier(const std::string& chemin, bool nouveau, bool a, bool b, bool sansOuverture,
                           int premierePersonne, TModeConversion mode, bool lectureSeule)
    : TContexteDossier(chemin, lectureSeule) {
  Erreur = false;
  Annulation = false;
  VersionAnnee = 2009;

  if (nouveau) {
    VersionAnnee = 2020;
    NouveauFichier(premierePersonne);
    if (Erreur) return;
  } else {
    // Un dossier système qu'on ne peut écrire s'ouvre en lecture seule : rien n'y change.
    if (SansDroitEcriture(SupprimeSlashSiNecessaire(Dossier))) LectureSeule = true;
    // Le verrou vient avant toute lecture d'un compte et avant tout changement sur le disque.
    if (!sansOuverture && !PrendVerrou()) return;
    const std::string adb = FabriqueNomFichier(tfAdb);
    if (IsExt2009() && FichierExiste(adb)) {
      // Une base laissée par une conversion inachevée est mise de côté, avec son journal,
      // sous un nom libre, et l'utilisateur en est prévenu.
      if (!LectureSeule) TModuleBDD::MetDeCoteConversionInachevee(adb);
    }
    if (!IsExt2009() && FichierExiste(adb)) {
      VersionAnnee = 2020;
    } else if (mode == mcFormulaire) {
      // Le formulaire de conversion n'est pas dans cette bibliothèque : son résultat
      // est un chemin vide, et le dossier reste en lecture seule.
      LectureSeule = true;
    }
  }
  if (VersionAnnee != 2020 && mode != mcSansProtection) LectureSeule = true;

  DateCreation = DateModification = DateTroisieme = Maintenant();
  IdEcrivain = IdLecteur = 0;
  Entier1 = Entier2 = -1;

  if (!sansOuverture && !nouveau) {
    OuvrirFichier(a, b);
    // Les mises à jour d'ouverture d'un dossier modifiable dont la base est ouverte : l'index
    // des noms jamais fait l'est ("INDEXNAME", marqué seulement s'il a été mené à son terme),
    // puis la question de la profession.
    if (BDD && BDD->EstOuverte() && !LectureSeule) {
      if (Index && BDD->GetInfoChps("INDEXNAME") == "0" && Index->ReinitTableIndex(BDD->Progression))
        BDD->MAJInfoChps("INDEXNAME", "UPDATED");
      MetAJourProfession();
    }
  }
  ClassementTypeEven = LitPreferenceEntier(SectionPreferences(), "Type de classement des evenements", 0) == 1;
  // Place des listes de lieux du processus.
}

void TGestFichier::MetAJourProfession() {
  if (!DefChpsCs || BDD->GetInfoChps("UPDATE_PROF") != "0") return;
  TChpCs* profession = DefChpsCs->RechercheChampsInternePtr("PROFESSION");
  if (!profession || profession->Type == tcEc) {
    BDD->MAJInfoChps("UPDATE_PROF", "UPDATED");
    return;
  }
  // Sur toute autre réponse que Oui, la clé reste : la question reviendra à la prochaine ouverture.
  if (Dialogue().Question("Donnez-vous votre accord pour améliorer le champ Profession, afin de profiter au mieux "
                          "des évolutions de Filiora 2020 ?",
                          "Evolution de votre base de données", TBoutons::OuiNonAnnuler) != ReponseOui)
    return;
  BDD->ChpsSimpleEven("PROFESSION");
  profession->Type = tcEc;
  if (DefChpsCs->Sauvegarde()) BDD->MAJInfoChps("UPDATE_PROF", "UPDATED");
}

bool TGestFichier::PrendVerrou() {
  if (Verrou) return true;
  TVerrou::TIssue issue;
  Verrou = TVerrou::Prend(FabriqueNomFichier(tfPersons), LectureSeule ? TVerrou::TMode::Partage : TVerrou::TMode::Exclusif,
                          TVerrou::AttenteParDefaut(), issue);
  if (Verrou) return true;
  Erreur = true;
  const std::string dossier = SupprimeSlashSiNecessaire(Dossier);
  Message = issue == TVerrou::TIssue::Occupe
                ? "Le dossier \"" + dossier + "\" est déjà ouvert en écriture par un autre programme : réessayez quand il sera fermé."
                : "Le dossier \"" + dossier + "\" ne peut pas être ouvert : son fichier des personnes manque ou n'est pas un fichier ordinaire.";
  return false;
}

TGestFichier::~TGestFichier() {
  // Place de StopBufferChamps (catalogue des champs).
  FermerFichiers();
}

// --- Version ---

bool TGestFichier::isVersion10() {
  if (!FichierExiste(FabriqueNomFichier(tfAdb)) || FichierExiste(FabriqueNomFichier(tfChs))) return false;
  if (BDD && BDD->EstOuverte()) return BDD->GetVersionBDD() == "5.90";
  return false;
}

bool TGestFichier::IsConvertedForRQ2013() {
  return BDD && BDD->EstOuverte() && BDD->TypeMoteurColonne("Evenements", "_DATE") == 27;
}

bool TGestFichier::IsSameGenea(const TGestFichier& autre) const {
  return MajusculesCp1252(FabriqueNomFichier(tfPersons)) == MajusculesCp1252(autre.FabriqueNomFichier(tfPersons));
}

// --- Ouverture des fichiers ---

void TGestFichier::OuvrirFichier(bool a, bool b) {
  FermerFichiers();
  if (Erreur) return;

  // 1. Personnes (sans création), supprimés, XML.
  Persons = std::make_unique<TFicPersons>(this, false);
  PersSuppr = std::make_unique<TFicPersSuppr>(this, false);
  Xml = std::make_unique<TFicXml>(this, false);

  // 2. L'identifiant du dossier : refait quand il manque ou que le marqueur lienidpers.cpt
  // est absent (GenereIdGenea pose le marqueur dans un dossier modifiable, si bien que
  // l'identifiant reste le même d'une ouverture à l'autre).
  IdGenea = Xml->LectureValeur("LienIdPers", "IdGenea");
  if (IdGenea.empty() || !FichierExiste(FabriqueNomFichier(tfLienIdCpt))) {
    GenereIdGenea();
    if (!Xml->EcritureValeur("LienIdPers", "IdGenea", IdGenea) && EcritureRatee())
      Message = "L'identifiant du dossier n'a pas pu être écrit dans \"" + FabriqueNomFichier(tfXin) +
                "\" (lien symbolique, fichier spécial ou disque plein) : le dossier ne peut pas être ouvert en écriture.";
  }

  // 3. La base relationnelle.
  if (!a || b) {
    BDD = std::make_unique<TModuleBDD>(FabriqueNomFichier(tfAdb), "5.90",
                                       LectureSeule ? TAccesDossier::LectureSeule : TAccesDossier::Modifiable);
    if (!LectureSeule && !a) BDD->CreateDataBase();
    BDD->OpenDataBase();
  }
  // 4. et 5. Le reste, dans l'ordre ; sans `b`, le drapeau d'erreur est testé avant chacun.
  if (b)
    AjouteObjets(true);
  else if (!a)
    AjouteObjets(false);
  RelieBase();
}

void TGestFichier::RelieBase() {
  if (!BDD) return;
  // La base lit des numéros de personnes, de lieux et de notes : elle reçoit de quoi chasser
  // une personne du cache et annuler un renvoi au-delà de la fin d'un fichier. La base est
  // détruite la première à la fermeture : ces renvois ne lui survivent jamais.
  BDD->Contexte = this;
  if (TFicDupli* lie = Lie.get()) BDD->NbLieux = [lie] { return lie->NbFiches(); };
  if (TFicNotes* notes = Notes.get()) BDD->NbNotes = [notes] { return notes->NbBlocs(); };
}

void TGestFichier::ModifClef(TPerson& personne, bool enregistrer) {
  if (Index) Index->ModifClef(&personne, enregistrer);
}

bool TGestFichier::IsIDPersExists(const std::string& id) {
  return BDD && BDD->EstOuverte() && BDD->DonneeExiste("ID_PERS", id);
}

void TGestFichier::AjouteObjets(bool sansTest) {
  auto peut = [&] { return sansTest || !Erreur; };
  // Les chaînes partagées .qua, .par, .lie (types 1, 3, 5), puis les façades de la base.
  if (peut()) Qua = std::make_unique<TFicDupli>(this, tfQua, false);
  if (peut()) Par = std::make_unique<TFicDupli>(this, tfPar, false);
  if (peut()) Lie = std::make_unique<TFicDupli>(this, tfLie, false);
  if (peut()) Illustrations = std::make_unique<TFicIllustrations>(this, BDD.get());
  if (peut()) ExtPersons = std::make_unique<TFicExtPersons>(this, false);
  AjouteFacades(sansTest);
  // Place de TFicSosas ; puis les notes ; puis places de TFicIndexPerson, TFicNoticesPat,
  // le catalogue TDefChpsCs et les équivalences de noms TTabNomEquiv.
  if (peut()) Notes = std::make_unique<TFicNotes>(this, false);
  if (peut()) {
    Index = std::make_unique<TFicIndexPerson>(this, false);
    Index->Fourchette = FourchetteDeVie;  // années des lignes : l'estimation des dates de vie
  }
  if (peut()) DefChpsCs = std::make_unique<TDefChpsCs>(this, false);
  if (peut()) OuvreNomsEquiv();
}

void TGestFichier::OuvreNomsEquiv() {
  NomsEquiv = std::make_unique<TTabNomEquiv>(FabriqueNomFichier(tfNeq), FabriqueNomFichier(tfPreq));
  if (Index) Index->NomsEquiv = NomsEquiv.get();
}

void TGestFichier::AjouteFacades(bool sansTest) {
  auto peut = [&] { return sansTest || !Erreur; };
  if (peut()) Sources = std::make_unique<TFicSources>(this, BDD.get());
  if (peut()) ChpsSimple = std::make_unique<TFicChpsSimple>(this, BDD.get());
  if (peut()) ExtEvens = std::make_unique<TFicExtEvens>(this);
  if (peut()) {
    Evens = std::make_unique<TFicEvens>(this, BDD.get());
    Evens->Ext = ExtEvens.get();
  }
}

void TGestFichier::NouveauFichier(int premierePersonne) {
  FermerFichiers();
  // Tous les noms d'abord : un chemin trop long est refusé avant que rien ne soit créé.
  for (int type = tfPersons; type <= tfBrd; ++type) (void)FabriqueNomFichier(type);
  const std::string dossier = SupprimeSlashSiNecessaire(Dossier);
  std::error_code ecExiste;
  if (fs::exists(fs::symlink_status(CheminOs(dossier), ecExiste))) {
    // Le nom est pris : on compte ce qu'il tient, on referme et on demande, sans rien
    // changer sur le disque.
    const bool lectureSeule = LectureSeule;
    LectureSeule = true;
    std::string texte = Ressource(6200);
    try {
      OuvrirFichier(true, false);
      char tampon[32];
      std::snprintf(tampon, sizeof tampon, "%ld", NombrePersonnes());
      texte = RemplaceString(texte, "#2", tampon);
    } catch (const ERqBase&) {
      texte = RemplaceString(texte, "#2", "plusieurs");
    }
    FermerFichiers();
    LectureSeule = lectureSeule;
    texte = RemplaceString(texte, "#1", "\"" + Nom + "\"");
    Reponse = Dialogue().Question(texte, Ressource(6201), TBoutons::OuiNonAnnuler);
    Erreur = true;
    return;
  }

  // Le dossier se fait à l'écart, sous un nom caché, puis prend sa place d'un seul
  // renommage qui refuse d'écraser : personne ne voit jamais un dossier à moitié créé.
  const std::string definitif = Dossier;
  const std::string parent = AjouteSlashSiNecessaire(fs::path(dossier).parent_path().string());
  // Un nom court : les chemins de l'écart ne doivent pas dépasser ceux du dossier définitif.
  const std::string ecart = parent + ".rq" + std::to_string(IdProcessus()) + "n";
  std::error_code ec;
  fs::remove_all(CheminOs(ecart), ec);
  fs::create_directories(CheminOs(ecart + "/Notices"), ec);
  if (ec) {
    Erreur = true;
    Message = "Le dossier \"" + dossier + "\" n'a pas pu être créé : " + CheminInterne(ec.message()) + ".";
    fs::remove_all(CheminOs(ecart), ec);
    return;
  }
  Dossier = AjouteSlashSiNecessaire(ecart);
  bool reussi = false;
  try {
    CreeDans(premierePersonne, definitif + Nom + ".prs");
    reussi = !Erreur && !EchecEcriture;
  } catch (...) {
    FermerFichiers();
    Dossier = definitif;
    fs::remove_all(CheminOs(ecart), ec);
    throw;
  }
  FermerFichiers();
  Dossier = definitif;
  int erreur = 0;
  if (reussi) reussi = RenommeSansEcraser(ecart, dossier, &erreur);
  if (!reussi) {
    fs::remove_all(CheminOs(ecart), ec);
    Erreur = true;
    Message = erreur == EEXIST || erreur == ENOTEMPTY
                  ? "Le dossier \"" + dossier + "\" existe déjà : rien n'a été changé."
                  : "Le dossier \"" + dossier + "\" n'a pas pu être créé (écriture impossible) : rien n'a été laissé.";
    return;
  }
  SynchroniseDossier(parent);
  // Le dossier est à sa place : on l'ouvre comme tout dossier, verrou compris.
  Erreur = false;
  LectureSeule = false;
  if (!PrendVerrou()) return;
  OuvrirFichier(false, false);
}

void TGestFichier::CreeDans(int premierePersonne, const std::string& prsDefinitif) {
  BDD = std::make_unique<TModuleBDD>(FabriqueNomFichier(tfAdb), "5.90", TAccesDossier::Modifiable);
  BDD->CreateDataBase();
  BDD->OpenDataBase();
  Persons = std::make_unique<TFicPersons>(this, true);
  Qua = std::make_unique<TFicDupli>(this, tfQua, true);
  Par = std::make_unique<TFicDupli>(this, tfPar, true);
  Lie = std::make_unique<TFicDupli>(this, tfLie, true);
  Illustrations = std::make_unique<TFicIllustrations>(this, BDD.get());
  ExtPersons = std::make_unique<TFicExtPersons>(this, true);
  PersSuppr = std::make_unique<TFicPersSuppr>(this, true);
  AjouteFacades(true);
  // Place de TFicSosas ; les notes ; places de TFicIndexPerson, TFicNoticesPat, TDefChpsCs,
  // TTabNomEquiv.
  Notes = std::make_unique<TFicNotes>(this, true);
  Index = std::make_unique<TFicIndexPerson>(this, true);
  Index->Fourchette = FourchetteDeVie;
  DefChpsCs = std::make_unique<TDefChpsCs>(this, true);
  OuvreNomsEquiv();
  // Un dossier neuf naît à jour : son catalogue a déjà PROFESSION pour événement, et aucune
  // ouverture ne devra plus poser la question ni écrire la clé.
  if (const TChpCs* profession = DefChpsCs->RechercheChampsInternePtr("PROFESSION");
      !profession || profession->Type == tcEc)
    BDD->MAJInfoChps("UPDATE_PROF", "UPDATED");
  Xml = std::make_unique<TFicXml>(this, true);
  // L'identifiant se calcule sur le chemin que le dossier aura, pas sur celui de l'écart.
  GenereIdGeneaPour(prsDefinitif);
  Xml->EcritureValeur("LienIdPers", "IdGenea", IdGenea);

  // Le premier numéro (1) est à la fois de cujus et second signet.
  const long no = Persons->ReturnNewNum();
  Persons->NoDeCujus = no;
  Persons->Signet2 = no;
  if (premierePersonne == 1) {
    TEnregPersonne enreg{};
    enreg.Type = 'P';
    enreg.Supprime = ' ';
    enreg.Sexe = '?';
    std::strcpy(enreg.Nom, "X");
    Persons->EcritEnreg(no, enreg);
    // Place du Sosa 1 du fichier .sst, quand TFicSosas sera là.
    asNoStradoCujus = 1;
  } else {
    // Le numéro réservé a sa fiche sur le disque, vierge, avant que l'en-tête ne le compte :
    // sans elle, la lire ne rendrait aucun octet, lèverait le drapeau d'erreur du dossier, et
    // toute écriture suivante de la session serait refusée.
    const TEnregPersonne vierge{};
    Persons->EcritEnreg(no, vierge);
  }
  // La première personne reçoit le champ d'origine des données, et entre dans l'index des
  // noms, fait d'emblée : la clé le dit (la première ouverture n'a rien à reconstruire).
  if (premierePersonne == 1) {
    TPerson premiere(Persons.get(), no, true);
    premiere.AddOrigineDataChps();
    premiere.Enregistrement();
  }
  BDD->MAJInfoChps("INDEXNAME", "UPDATED");
  SetStateCum(2);
  EcritureEntete();
  Flush();
}

void TGestFichier::FermerFichiers() {
  BDD.reset();  // la base d'abord
  Index.reset();  // sa mémoire gardée dans le .prx (la base n'y sert plus)
  Persons.reset();
  Qua.reset();
  Par.reset();
  Lie.reset();
  Illustrations.reset();
  ExtPersons.reset();
  PersSuppr.reset();
  Sources.reset();
  ChpsSimple.reset();
  ExtEvens.reset();
  Evens.reset();
  Notes.reset();
  DefChpsCs.reset();
  NomsEquiv.reset();
  Xml.reset();
}

void TGestFichier::EcritureEntete() {
  if (Persons) Persons->EcritureEntete();
  for (TFicDupli* f : {Qua.get(), Par.get(), Lie.get()})
    if (f) f->EcritureEntete();
  if (ExtPersons) ExtPersons->EcritureEntete();
  if (PersSuppr) PersSuppr->EcritureEntete();
  if (Notes) Notes->EcritureEntete();
  Flush();
}

void TGestFichier::Flush() {
  if (Persons) Persons->Flush();
  for (TFicDupli* f : {Qua.get(), Par.get(), Lie.get()})
    if (f) f->Flush();
  if (ExtPersons) ExtPersons->Flush();
  if (PersSuppr) PersSuppr->Flush();
  if (Notes) Notes->Flush();
}

long TGestFichier::NombrePersonnes() const {
  if (Erreur || !Persons) return 0;
  return Persons->NbPersEffective() - (PersSuppr ? PersSuppr->NbEnreg() : 0);
}

// --- Identifiant ---

void TGestFichier::GenereIdGenea() { GenereIdGeneaPour(FabriqueNomFichier(tfPersons)); }

void TGestFichier::GenereIdGeneaPour(const std::string& prs) {
  const TDateTime maintenant = Maintenant();
  unsigned char octets[8];
  std::memcpy(octets, &maintenant, sizeof octets);
  char hex[4];
  std::string id;
  for (unsigned char o : octets) {
    std::snprintf(hex, sizeof hex, "%02X", o);
    id += hex;
  }
  IdGenea = id + MajusculesCp1252(EmpreinteMd5(prs, 16).substr(0, 4));
  // Le marqueur dit que l'identifiant écrit vaut pour ce dossier : sans lui, chaque
  // ouverture en referait un autre.
  if (PeutEcrire()) {
    auto marqueur = TFichierBrut::Ouvre(FabriqueNomFichier(tfLienIdCpt), TFichierBrut::TAcces::LectureEcriture,
                                        TFichierBrut::TDisposition::OuvreOuCree);
    if (!marqueur) SignaleEcritureRatee();
  }
}

bool TGestFichier::VerifIdPersOk(const std::string& id) const {
  return !id.empty() && !IdGenea.empty() && id.find(IdGenea) != std::string::npos;
}

// --- Clés de la table d'informations ---

int TGestFichier::GetStateDistCum() {
  if (BDD && BDD->EstOuverte()) return std::atoi(BDD->GetInfoChps("DCUM_STATE").c_str());
  return 0;
}

void TGestFichier::SetStateCum(int n) {
  if (BDD && BDD->EstOuverte()) BDD->MAJInfoChps("DCUM_STATE", std::to_string(n));
}

long TGestFichier::GetNoFicheDsitCaum() {
  if (BDD && BDD->EstOuverte()) return std::atol(BDD->GetInfoChps("DCUM_VALUE").c_str());
  return 0;
}

void TGestFichier::SetNoFicheDsitCaum(long n) {
  if (BDD && BDD->EstOuverte()) BDD->MAJInfoChps("DCUM_VALUE", std::to_string(n));
}

uint32_t TGestFichier::IdThreadCourant() { return rqbase::IdThreadCourant(); }

std::string ConstruitAccesGenealogie(const std::string& dossier, const std::string& nom) {
  return AjouteSlashSiNecessaire(dossier) + nom + ".rq2/" + nom + ".prs";
}

}  // namespace rqbase
