// TGestFichier : noms, ouverture dans l'ordre fixe, création, copie, renommage, suppression.
#include "rqbase/storage/gest_fic.h"

#include <openssl/evp.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "rqbase/platform/chemins.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/ressources.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/storage/fic_xml.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"
#include "rqbase/platform/cp1252.h"

#include "rqbase/storage/datamodulebdd.h"

namespace fs = std::filesystem;

namespace rqbase {

namespace {

constexpr size_t kCheminMax = 260;

// Un chemin sans aucun droit d'écriture se lit comme l'attribut lecture seule :
// le test tient même pour le super-utilisateur, que les droits n'arrêtent pas.
bool SansDroitEcriture(const std::string& chemin) {
  struct stat st {};
  if (::stat(CheminOs(chemin).c_str(), &st) != 0) return false;
  return (st.st_mode & 0222) == 0 || ::access(CheminOs(chemin).c_str(), W_OK) != 0;
}

}  // namespace

// --- Le motif des fichiers d'enregistrements ---

bool DossierEnErreur(const TGestFichier* gest) { return gest && gest->EnErreur(); }

std::unique_ptr<TFichierBrut> OuvreFichierDuDossier(TGestFichier* gest, int type, bool creation) {
  return gest->OuvertureFichier(gest->FabriqueNomFichier(type), creation);
}

bool LitEnregistrement(TGestFichier* gest, TFichierBrut* fichier, long no, void* tampon, size_t taille) {
  std::memset(tampon, 0, taille);
  if (gest->EnErreur()) return false;
  const int64_t lus = fichier ? fichier->LitA(DecalageEnreg(no, taille), tampon, taille) : -1;
  if (lus < 0) std::memset(tampon, 0, taille);
  // Une lecture courte n'est pas un échec ; zéro octet en est un.
  const bool ok = lus > 0;
  gest->FixeErreur(!ok);
  return ok;
}

bool EcritEnregistrement(TGestFichier* gest, TFichierBrut* fichier, long no, const void* tampon, size_t taille) {
  if (gest->EnErreur() || gest->IsReadOnly()) return false;
  const int64_t ecrits = fichier ? fichier->EcritA(DecalageEnreg(no, taille), tampon, taille) : -1;
  const bool ok = ecrits > 0;
  gest->FixeErreur(!ok);
  return ok;
}

// --- Construction ---

TGestFichier::TGestFichier(const std::string& chemin, bool nouveau, bool a, bool b, bool sansOuverture,
                           int premierePersonne, TModeConversion mode, bool lectureSeule) {
  const fs::path p(chemin);
  Lecteur = chemin.empty() ? 0 : chemin[0];
  Dossier = AjouteSlashSiNecessaire(p.parent_path().string());
  Nom = p.stem().string();
  LectureSeule = lectureSeule;
  Erreur = false;
  Annulation = false;
  VersionAnnee = 2009;

  if (nouveau) {
    VersionAnnee = 2020;
    NouveauFichier(premierePersonne);
    if (Erreur) return;
  } else {
    const std::string adb = FabriqueNomFichier(tfAdb);
    if (IsExt2009() && FichierExiste(adb)) {
      // Une base laissée par une conversion inachevée est mise de côté.
      if (!LectureSeule) std::rename(CheminOs(adb).c_str(), CheminOs(Dossier + Nom + ".~adb").c_str());
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
  // Un dossier système qu'on ne peut écrire s'ouvre en lecture seule : rien n'y change.
  if (!nouveau && SansDroitEcriture(SupprimeSlashSiNecessaire(Dossier))) LectureSeule = true;

  DateCreation = DateModification = DateTroisieme = Maintenant();
  IdEcrivain = IdLecteur = 0;
  Entier1 = Entier2 = -1;

  if (!sansOuverture && !nouveau) {
    OuvrirFichier(a, b);
    // Place des mises à jour d'ouverture d'un dossier modifiable dont la base est
    // ouverte : reconstruction de l'index ("INDEXNAME") et question de la profession
    // ("UPDATE_PROF"). Elles viennent avec l'index des noms et le catalogue.
  }
  // Place du mode de classement des événements et des listes de lieux du processus.
}

TGestFichier::~TGestFichier() {
  // Place de StopBufferChamps (catalogue des champs).
  FermerFichiers();
}

// --- Noms ---

std::string TGestFichier::FabriqueNomFichier(int type, int numero, bool flag) const {
  std::string base = Dossier + Nom;
  std::string ext;
  switch (type) {
    case tfPersons: ext = "prs"; break;
    case tfQua: ext = "qua"; break;
    case tfQux: ext = "qux"; break;
    case tfPar: ext = "par"; break;
    case tfPax: ext = "pax"; break;
    case tfLie: ext = "lie"; break;
    case tfLix: ext = "lix"; break;
    case tfIll: ext = "ill"; break;
    case tfExp: ext = "exp"; break;
    case tfPsu: ext = "psu"; break;
    case tfSrc: ext = "src"; break;
    case tfChs: ext = "chs"; break;
    case tfEvx: ext = "evx"; break;
    case tfEvn: ext = "evn"; break;
    case tfSst: ext = "sst"; break;
    case tfNot: ext = "not"; break;
    case tfNomSeul: ext = ""; break;
    case tfEin: ext = "ein"; break;
    case tfPrx: ext = "prx"; break;
    case tfRtf: ext = "rtf"; break;
    case tfDch: ext = "dch"; break;
    case tfNeq: ext = "neq"; break;
    case tfPreq: ext = "preq"; break;
    case tfDico: {
      char tampon[16];
      std::snprintf(tampon, sizeof tampon, "%c%i", flag ? 'd' : 'r', numero);
      ext = tampon;
      break;
    }
    case tfGnp: base = Dossier + "Notices/" + Nom; ext = "gnp"; break;
    case tfLienIdDbf: base = Dossier + "lienidpers"; ext = "dbf"; break;
    case tfLienIdCpt: base = Dossier + "lienidpers"; ext = "cpt"; break;
    case tfXin: ext = "xin"; break;
    case tfAdb: ext = "adb"; break;
    case tfUndo: base = Dossier + "undo"; ext = "adb"; break;
    case tfInp: base = Dossier + "Notices/" + Nom; ext = "inp"; break;
    case tfSyn: ext = "syn"; break;
    case tfEveneq: ext = "eveneq"; break;
    case tfBrd: ext = "brd"; break;
    default: ext = ""; break;
  }
  std::string chemin = base + "." + ext;
  if (chemin.size() >= kCheminMax) throw ERqBase("Nom de fichier trop long !");
  return chemin;
}

bool TGestFichier::IsExt2009() const {
  const std::string dossier = SupprimeSlashSiNecessaire(Dossier);
  const std::string ext = fs::path(dossier).extension().string();
  return MajusculesCp1252(ext) != ".RQ2";
}

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

std::unique_ptr<TFichierBrut> TGestFichier::OuvertureFichier(const std::string& chemin, bool creation) {
  using A = TFichierBrut::TAcces;
  using D = TFichierBrut::TDisposition;
  const D disposition = creation ? D::CreeOuRemplace : D::OuvreOuCree;
  auto essai = [&](bool lecture, bool immediate) -> std::unique_ptr<TFichierBrut> {
    // Un fichier sans droit d'écriture vaut l'attribut lecture seule de l'autre système.
    if (!lecture && SansDroitEcriture(chemin)) return nullptr;
    return TFichierBrut::Ouvre(chemin, lecture ? A::Lecture : A::LectureEcriture, lecture ? D::Ouvre : disposition,
                               immediate);
  };
  auto f = essai(LectureSeule, true);
  if (f) return f;
  bool lecture = LectureSeule;
  if (!LectureSeule && !PutFilesInReadWrite(Dossier)) {
    LectureSeule = true;
    lecture = true;
  }
  f = essai(lecture, false);
  if (f) return f;
  if (!LectureSeule) {
    LectureSeule = true;
    f = essai(true, false);
  }
  return f;
}

void TGestFichier::OuvrirFichier(bool a, bool b) {
  Persons.reset();
  ExtPersons.reset();
  PersSuppr.reset();
  DefChpsCs.reset();
  Xml.reset();
  BDD.reset();
  if (Erreur) return;

  // 1. Personnes (sans création), supprimés, XML.
  Persons = std::make_unique<TFicPersons>(this, false);
  PersSuppr = std::make_unique<TFicPersSuppr>(this, false);
  Xml = std::make_unique<TFicXml>(this, false);

  // 2. L'identifiant du dossier : refait quand il manque ou que le marqueur lienidpers.cpt
  // est absent.
  IdGenea = Xml->LectureValeur("LienIdPers", "IdGenea");
  if (IdGenea.empty() || !FichierExiste(FabriqueNomFichier(tfLienIdCpt))) {
    GenereIdGenea();
    Xml->EcritureValeur("LienIdPers", "IdGenea", IdGenea);
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
}

void TGestFichier::AjouteObjets(bool sansTest) {
  auto peut = [&] { return sansTest || !Erreur; };
  // Place des chaînes partagées .qua, .par, .lie (types 1, 3, 5) et de TFicIllustrations.
  if (peut()) ExtPersons = std::make_unique<TFicExtPersons>(this, false);
  // Places, dans l'ordre : TFicSources, TFicChpsSimple, TFicExtEvens, TFicEvens (façades
  // de la base), TFicSosas, TFicNotes, TFicIndexPerson, TFicNoticesPat, le catalogue
  // TDefChpsCs et les équivalences de noms TTabNomEquiv.
  if (peut()) DefChpsCs = std::make_unique<TDefChpsCs>(this, false);
}

void TGestFichier::NouveauFichier(int premierePersonne) {
  FermerFichiers();
  const std::string dossier = SupprimeSlashSiNecessaire(Dossier);
  // Un chemin que le système refuse (nom trop long...) n'est pas un dossier existant :
  // la création qui suit échoue et lève le drapeau.
  std::error_code ecExiste;
  if (fs::exists(CheminOs(dossier), ecExiste)) {
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
  std::error_code ec;
  fs::create_directories(CheminOs(Dossier + "Notices"), ec);
  if (ec) {
    Erreur = true;
    return;
  }
  BDD = std::make_unique<TModuleBDD>(FabriqueNomFichier(tfAdb), "5.90", TAccesDossier::Modifiable);
  BDD->CreateDataBase();
  BDD->OpenDataBase();
  Persons = std::make_unique<TFicPersons>(this, true);
  // Places des chaînes partagées 1, 3, 5 et de TFicIllustrations.
  ExtPersons = std::make_unique<TFicExtPersons>(this, true);
  PersSuppr = std::make_unique<TFicPersSuppr>(this, true);
  // Places de TFicSources, TFicChpsSimple, TFicExtEvens, TFicEvens, TFicSosas, TFicNotes,
  // TFicIndexPerson, TFicNoticesPat, TDefChpsCs, TTabNomEquiv.
  DefChpsCs = std::make_unique<TDefChpsCs>(this, true);
  Xml = std::make_unique<TFicXml>(this, true);
  GenereIdGenea();
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
    // Le champ d'origine des données (ORIGINE_DONNEE) et le Sosa 1 du fichier .sst
    // s'écrivent ici quand les champs simples et TFicSosas sont là.
    asNoStradoCujus = 1;
  }
  SetStateCum(2);
  EcritureEntete();
  Flush();
}

void TGestFichier::FermerFichiers() {
  BDD.reset();  // la base d'abord
  Persons.reset();
  ExtPersons.reset();
  PersSuppr.reset();
  DefChpsCs.reset();
  Xml.reset();
}

void TGestFichier::EcritureEntete() {
  if (Persons) Persons->EcritureEntete();
  if (ExtPersons) ExtPersons->EcritureEntete();
  if (PersSuppr) PersSuppr->EcritureEntete();
  Flush();
}

void TGestFichier::Flush() {
  if (Persons) Persons->Flush();
  if (ExtPersons) ExtPersons->Flush();
  if (PersSuppr) PersSuppr->Flush();
}

long TGestFichier::NombrePersonnes() const {
  if (Erreur || !Persons) return 0;
  return Persons->NbPersEffective() - (PersSuppr ? PersSuppr->NbEnreg() : 0);
}

// --- Identifiant ---

void TGestFichier::GenereIdGenea() {
  const TDateTime maintenant = Maintenant();
  unsigned char octets[8];
  std::memcpy(octets, &maintenant, sizeof octets);
  char hex[40];
  std::string id;
  for (unsigned char o : octets) {
    std::snprintf(hex, sizeof hex, "%02X", o);
    id += hex;
  }
  const std::string chemin = FabriqueNomFichier(tfPersons);
  unsigned char empreinte[EVP_MAX_MD_SIZE];
  unsigned int longueur = 0;
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> ctx(EVP_MD_CTX_new(), EVP_MD_CTX_free);
  EVP_DigestInit_ex(ctx.get(), EVP_md5(), nullptr);
  for (size_t i = 0; i < chemin.size(); i += 16)
    EVP_DigestUpdate(ctx.get(), chemin.data() + i, std::min<size_t>(16, chemin.size() - i));
  EVP_DigestFinal_ex(ctx.get(), empreinte, &longueur);
  std::string md5;
  for (unsigned int i = 0; i < longueur; ++i) {
    std::snprintf(hex, sizeof hex, "%02x", empreinte[i]);
    md5 += hex;
  }
  IdGenea = id + MajusculesCp1252(md5.substr(0, 4));
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

// --- Fils ---

uint32_t TGestFichier::IdThreadCourant() { return static_cast<uint32_t>(::syscall(SYS_gettid)); }

void TGestFichier::NoteEcriture() {
  DerniereEcriture = Maintenant();
  DateModification = DerniereEcriture;
  IdEcrivain = IdThreadCourant();
}

void TGestFichier::NoteLecture() {
  DerniereLecture = Maintenant();
  IdLecteur = IdThreadCourant();
}

bool TGestFichier::CheckIfIsWriting(uint32_t threadId) const {
  return (Maintenant() - DerniereEcriture) * 86400000.0 < 1001.0 && IdEcrivain != 0 && IdEcrivain != threadId;
}

bool TGestFichier::CheckIfIsReading(uint32_t threadId) const {
  return (Maintenant() - DerniereLecture) * 86400000.0 < 1001.0 && IdLecteur != 0 && IdLecteur != threadId;
}

// --- Le dossier entier ---

bool TGestFichier::SuppressionGenealogie() {
  FermerFichiers();
  return DeleteDirectoryRecursif(SupprimeSlashSiNecessaire(Dossier));
}

bool TGestFichier::RenommeFichier(int type, const std::string& nouveauNom, int n) {
  const std::string ancien = FabriqueNomFichier(type, n);
  if (!FichierExiste(ancien)) return false;
  TGestFichier* self = this;
  const std::string nomGarde = self->Nom;
  Nom = nouveauNom;
  const std::string nouveau = FabriqueNomFichier(type, n);
  Nom = nomGarde;
  return std::rename(CheminOs(ancien).c_str(), CheminOs(nouveau).c_str()) == 0;
}

bool TGestFichier::RenommeGenealogie(const std::string& nouveauNom) {
  // Place du renommage des dictionnaires (catalogue des champs), puis l'index (18).
  RenommeFichier(tfPrx, nouveauNom);
  FermerFichiers();
  const fs::path ancienDossier(SupprimeSlashSiNecessaire(Dossier));
  const fs::path nouveauDossier = ancienDossier.parent_path() / (nouveauNom + ".rq2");
  std::error_code ec;
  if (fs::exists(CheminOs(nouveauDossier.string()), ec)) return false;
  fs::rename(CheminOs(ancienDossier.string()), CheminOs(nouveauDossier.string()), ec);
  if (ec) return false;
  const std::string ancienNom = Nom;
  Dossier = AjouteSlashSiNecessaire(nouveauDossier.string());
  // Les fichiers portent encore l'ancien nom : on les renomme un à un.
  for (int type : {0, 1, 2, 3, 4, 5, 6, 8, 9, 14, 15, 19, 17, 20, 21, 22, 24, 30, 27, 28}) {
    Nom = ancienNom;
    const std::string ancien = FabriqueNomFichier(type);
    Nom = nouveauNom;
    const std::string nouveau = FabriqueNomFichier(type);
    if (FichierExiste(ancien)) std::rename(CheminOs(ancien).c_str(), CheminOs(nouveau).c_str());
  }
  Nom = nouveauNom;
  return true;
}

bool TGestFichier::DupliqueFichier(int type, const std::string& dossierCible, const std::string& nomCible) {
  const std::string source = FabriqueNomFichier(type);
  if (!FichierExiste(source)) return false;
  const std::string dossierGarde = Dossier, nomGarde = Nom;
  Dossier = AjouteSlashSiNecessaire(dossierCible);
  Nom = nomCible;
  const std::string cible = FabriqueNomFichier(type);
  Dossier = dossierGarde;
  Nom = nomGarde;
  std::error_code ec;
  fs::copy_file(CheminOs(source), CheminOs(cible), fs::copy_options::overwrite_existing, ec);
  return !ec;
}

bool TGestFichier::DupliqueFichierNP(const std::string& dossierCible) {
  std::error_code ec;
  const fs::path notices = CheminOs(Dossier) / "Notices";
  if (!fs::is_directory(notices, ec)) return true;
  bool ok = true;
  for (const auto& e : fs::directory_iterator(notices, ec)) {
    const std::string nom = e.path().filename().string();
    if (e.is_regular_file() && nom.size() >= 2 && (nom[0] == 'n' || nom[0] == 'N') && (nom[1] == 'p' || nom[1] == 'P')) {
      std::error_code ec2;
      fs::copy_file(e.path(), CheminOs(dossierCible) / "Notices" / e.path().filename(), fs::copy_options::overwrite_existing, ec2);
      ok = ok && !ec2;
    }
  }
  return ok;
}

bool TGestFichier::DupliqueGenealogie(const std::string& cible) {
  fs::path dossierCible(SupprimeSlashSiNecessaire(cible));
  if (!dossierCible.has_extension()) dossierCible = dossierCible.parent_path() / (dossierCible.filename().string() + ".rq2");
  std::error_code ec;
  if (fs::exists(CheminOs(dossierCible.string()), ec)) return false;
  fs::create_directories(CheminOs(dossierCible.string()) / "Notices", ec);
  if (ec) return false;
  const std::string nomCible = dossierCible.stem().string();
  // Place de la copie des dictionnaires (catalogue des champs).
  FermerFichiers();
  for (int type : {18, 0, 1, 2, 3, 4, 5, 6, 8, 9, 14, 15, 19, 17, 20, 21, 22, 24, 30, 28, 29})
    DupliqueFichier(type, dossierCible.string(), nomCible);
  // Le .xin n'est pas dans la liste : la copie reçoit son propre identifiant à l'ouverture.
  DupliqueFichierNP(dossierCible.string());
  if (CopieImages == 1 && DossierExiste(Dossier + "Images"))
    CopyDirectory(Dossier + "Images", (dossierCible / "Images").string());
  return true;
}

std::string ConstruitAccesGenealogie(const std::string& dossier, const std::string& nom) {
  return AjouteSlashSiNecessaire(dossier) + nom + ".rq2/" + nom + ".prs";
}

bool PutFilesInReadWrite(const std::string& dossier) {
  std::error_code ec;
  if (!fs::is_directory(CheminOs(dossier), ec)) return false;
  bool tous = true;
  for (const auto& e : fs::directory_iterator(CheminOs(dossier), ec)) {
    if (!e.is_regular_file()) continue;
    std::error_code ec2;
    fs::permissions(e.path(), fs::perms::owner_write, fs::perm_options::add, ec2);
    if (ec2 || SansDroitEcriture(CheminInterne(e.path()))) tous = false;
  }
  return tous;
}

}  // namespace rqbase
