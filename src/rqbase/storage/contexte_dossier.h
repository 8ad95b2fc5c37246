// TContexteDossier : ce qu'un objet de fichier sait de son dossier, et rien de plus.
//
// Un dossier est un dossier système `<nom>.rq2/` qui tient une famille de fichiers portant
// son nom et la base relationnelle `<nom>.adb`. Le contexte fabrique chaque nom de fichier,
// ouvre un fichier d'enregistrements avec les replis en lecture seule, et porte l'état que
// tous les fichiers partagent : lecture seule, drapeau d'erreur, année de version, dates et
// titre gardés dans l'en-tête des personnes, traces des accès par fil.
//
// Le contexte ne possède aucun objet de fichier : c'est le dossier (dossier/gest_fic.h) qui
// les possède, les ouvre et les ferme. Un objet de la couche stockage qui a besoin d'un
// voisin (la personne et son débordement) le demande au contexte par les accesseurs
// virtuels ci-dessous, que le dossier réalise ; un contexte nu (tests, fuzz) rend nul.
//
// Drapeaux. Le drapeau d'erreur veut dire « stop » : levé par toute lecture, écriture ou
// ouverture ratée, testé par chaque opération d'enregistrement ; il est affecté par chaque
// entrée-sortie, pas cumulé. L'échec d'écriture, lui, ne retombe jamais : une écriture ratée
// ou incomplète le lève, et plus rien n'est écrit dans ce dossier jusqu'à sa fermeture ;
// c'est lui qu'une commande consulte pour dire que son travail n'est pas sur le disque.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "rqbase/platform/fichier.h"
#include "rqbase/util/date_heure.h"

namespace rqbase {

class TFicPersons;
class TFicExtPersons;
class TFicPersSuppr;
class TFicXml;
class TModuleBDD;
class TFicEvens;
class TFicChpsSimple;

// Les numéros des fichiers d'un dossier (voir FabriqueNomFichier et docs/formats.md).
enum TTypeFichier : int {
  tfPersons = 0,
  tfQua = 1, tfQux = 2, tfPar = 3, tfPax = 4, tfLie = 5, tfLix = 6,
  tfIll = 7, tfExp = 8, tfPsu = 9, tfSrc = 10, tfChs = 11, tfEvx = 12, tfEvn = 13,
  tfSst = 14, tfNot = 15, tfNomSeul = 16, tfEin = 17, tfPrx = 18, tfRtf = 19, tfDch = 20,
  tfNeq = 21, tfPreq = 22, tfDico = 23, tfGnp = 24, tfLienIdDbf = 25, tfLienIdCpt = 26,
  tfXin = 27, tfAdb = 28, tfUndo = 29, tfInp = 30, tfSyn = 31, tfEveneq = 32, tfBrd = 33,
};

// Longueur à partir de laquelle un chemin est refusé ("Nom de fichier trop long !").
constexpr size_t kCheminMax = 260;

class TContexteDossier {
 public:
  // `chemin` : le fichier .prs du dossier (seuls dossier et nom de base servent).
  explicit TContexteDossier(const std::string& chemin, bool lectureSeule = false);
  virtual ~TContexteDossier() = default;
  TContexteDossier(const TContexteDossier&) = delete;
  TContexteDossier& operator=(const TContexteDossier&) = delete;

  // Le chemin d'un fichier du dossier ; `numero` et `flag` ne servent qu'au type 23
  // (flag : 'd', sinon 'r'). 260 caractères ou plus : ERqBase("Nom de fichier trop long !").
  std::string FabriqueNomFichier(int type, int numero = 0, bool flag = false) const;
  // Le même chemin pour un autre dossier et un autre nom (copie, renommage).
  std::string FabriqueNomFichierPour(int type, const std::string& dossier, const std::string& nom, int numero = 0,
                                     bool flag = false) const;
  // Un fichier ouvert pour des enregistrements, avec les replis en lecture seule ; nul en
  // échec. Un lien symbolique ou ce qui n'est pas un fichier ordinaire ne s'ouvre jamais.
  std::unique_ptr<TFichierBrut> OuvertureFichier(const std::string& chemin, bool creation);

  bool IsVersion2009() const { return VersionAnnee == 2009; }
  // Voulu : vrai quand l'extension du dossier, en capitales, n'est PAS ".RQ2".
  bool IsExt2009() const;
  bool IsReadOnly() const { return LectureSeule; }
  void SetReadOnly(bool lectureSeule) { LectureSeule = lectureSeule; }

  // Drapeau d'erreur et son genre.
  bool EnErreur() const { return Erreur; }
  void FixeErreur(bool erreur) { Erreur = erreur; }
  int GenreErreur() const { return TypeErreur; }
  void FixeGenreErreur(int genre) { TypeErreur = genre; }
  // Une écriture ratée ou incomplète depuis l'ouverture : plus rien ne s'écrit.
  bool EcritureRatee() const { return EchecEcriture; }
  void SignaleEcritureRatee() { EchecEcriture = Erreur = true; }
  // Une écriture peut avoir lieu : ni lecture seule, ni erreur, ni écriture ratée.
  bool PeutEcrire() const { return !LectureSeule && !Erreur && !EchecEcriture; }

  const std::string& NomDossier() const { return Nom; }
  const std::string& DossierFichiers() const { return Dossier; }
  int AnneeVersion() const { return VersionAnnee; }

  // Traces des accès du fil courant (voir CheckIfIsWriting dans le dossier).
  void NoteEcriture();
  void NoteLecture();
  bool CheckIfIsWriting(uint32_t threadId) const;
  bool CheckIfIsReading(uint32_t threadId) const;

  // Les voisins de la couche stockage, possédés par le dossier ; nuls dans un contexte nu.
  virtual TFicPersons* FicPersons() const { return nullptr; }
  virtual TFicExtPersons* FicExtPersons() const { return nullptr; }
  virtual TFicPersSuppr* FicPersSuppr() const { return nullptr; }
  virtual TFicXml* FicXml() const { return nullptr; }
  virtual TModuleBDD* ModuleBDD() const { return nullptr; }
  virtual TFicEvens* FicEvens() const { return nullptr; }
  virtual TFicChpsSimple* FicChpsSimple() const { return nullptr; }

  // État gardé dans l'en-tête des personnes.
  TDateTime DateCreation = 0, DateModification = 0, DateTroisieme = 0;
  long Entier1 = -1, Entier2 = -1;
  long CopieImages = 1;  // 1 : la copie du dossier emporte aussi Images/
  std::string Titre;

 protected:
  std::string Nom;
  std::string Dossier;
  char Lecteur = 0;
  bool LectureSeule = false;
  bool Erreur = false;
  bool EchecEcriture = false;
  int TypeErreur = 0;
  int VersionAnnee = 2009;
  uint32_t IdEcrivain = 0, IdLecteur = 0;
  TDateTime DerniereLecture = 0, DerniereEcriture = 0;
};

// Rend inscriptibles tous les fichiers d'un dossier ; false pour un dossier absent ou
// si l'un d'eux est resté en lecture seule. Les liens symboliques ne sont pas touchés.
bool PutFilesInReadWrite(const std::string& dossier);

}  // namespace rqbase
