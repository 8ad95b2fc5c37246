// TGestFichier : un dossier généalogique ouvert.
//
// Un dossier est un dossier système `<nom>.rq2/` qui tient une famille de fichiers portant
// son nom (`<nom>.prs`, `.exp`, `.psu`, `.xin`...) et la base relationnelle `<nom>.adb`.
// TGestFichier fabrique chaque nom de fichier, ouvre les fichiers dans un ordre fixe,
// possède un objet par fichier, garde l'année de version (2009 ou 2020) et les dates du
// dossier, et copie, renomme ou supprime le dossier entier.
//
// Le drapeau d'erreur veut dire « stop » : levé par toute lecture, écriture ou ouverture
// ratée, testé par chaque opération d'enregistrement et chaque étape de l'ouverture.
// Il est affecté par chaque entrée-sortie, pas cumulé. En lecture seule, les écritures
// sont abandonnées sans bruit et rien ne change sur le disque.
//
// Les objets de fichiers appartiennent au dossier, de OuvrirFichier à FermerFichiers.
// Ceux que d'autres couches apportent (chaînes partagées, Sosa, notes, index, notices,
// catalogue des champs, équivalences de noms) ont leur place marquée dans la séquence
// d'ouverture de gest_fic.cpp ; leur membre s'ajoute ici avec leur classe.
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
class TDefChpsCs;

// Les numéros des fichiers d'un dossier (voir FabriqueNomFichier et docs/formats.md).
enum TTypeFichier : int {
  tfPersons = 0,
  tfQua = 1, tfQux = 2, tfPar = 3, tfPax = 4, tfLie = 5, tfLix = 6,
  tfIll = 7, tfExp = 8, tfPsu = 9, tfSrc = 10, tfChs = 11, tfEvx = 12, tfEvn = 13,
  tfSst = 14, tfNot = 15, tfNomSeul = 16, tfEin = 17, tfPrx = 18, tfRtf = 19, tfDch = 20,
  tfNeq = 21, tfPreq = 22, tfDico = 23, tfGnp = 24, tfLienIdDbf = 25, tfLienIdCpt = 26,
  tfXin = 27, tfAdb = 28, tfUndo = 29, tfInp = 30, tfSyn = 31, tfEveneq = 32, tfBrd = 33,
};

// 0 : un ancien dossier reste tel quel, en lecture seule ; 1 : le formulaire de
// conversion est proposé ; 2 : un ancien dossier s'ouvre sans protection.
enum TModeConversion : int { mcLectureSeule = 0, mcFormulaire = 1, mcSansProtection = 2 };

class TGestFichier {
 public:
  // `chemin` : le fichier .prs du dossier (seuls dossier et nom de base servent).
  // `nouveau` crée le dossier (`premierePersonne` == 1 y met une première personne) ;
  // `a`, `b` vont à OuvrirFichier ; `sansOuverture` laisse tous les fichiers fermés.
  TGestFichier(const std::string& chemin, bool nouveau = false, bool a = false, bool b = false,
               bool sansOuverture = false, int premierePersonne = 0, TModeConversion mode = mcFormulaire,
               bool lectureSeule = false);
  ~TGestFichier();
  TGestFichier(const TGestFichier&) = delete;
  TGestFichier& operator=(const TGestFichier&) = delete;

  // a=false,b=false : ouverture complète. a=true,b=false : personnes, supprimés et XML
  // seulement, sans la base. a=true,b=true : tout, sans tester le drapeau entre les étapes.
  void OuvrirFichier(bool a, bool b);
  void NouveauFichier(int premierePersonne);
  // Détruit les objets de fichiers, la base en premier.
  void FermerFichiers();
  void Flush();
  void EcritureEntete();

  // Le chemin d'un fichier du dossier ; `numero` et `flag` ne servent qu'au type 23
  // (flag : 'd', sinon 'r'). 260 caractères ou plus : ERqBase("Nom de fichier trop long !").
  std::string FabriqueNomFichier(int type, int numero = 0, bool flag = false) const;
  // Un fichier ouvert pour des enregistrements, avec les replis en lecture seule ; nul en échec.
  std::unique_ptr<TFichierBrut> OuvertureFichier(const std::string& chemin, bool creation);

  bool IsVersion2009() const { return VersionAnnee == 2009; }
  // Voulu : vrai quand l'extension du dossier, en capitales, n'est PAS ".RQ2".
  bool IsExt2009() const;
  bool isVersion10();
  // La colonne _DATE des événements est de type 27 (date-heure) ; faux sans base ouverte.
  bool IsConvertedForRQ2013();
  // Ne fait rien.
  void ConvertTableEven() {}
  bool IsReadOnly() const { return LectureSeule; }
  bool IsCDROM() const { return false; }  // pas de lecteur de type 5 ici
  bool IsSameGenea(const TGestFichier& autre) const;

  // 0 en erreur ; sinon le compte des numéros moins le compte du .psu.
  long NombrePersonnes() const;

  std::string GetDirImages() const { return Dossier + "Images/"; }

  void GenereIdGenea();
  bool VerifIdPersOk(const std::string& id) const;
  const std::string& GetIdGenea() const { return IdGenea; }

  // Clés "DCUM_STATE" et "DCUM_VALUE" de la table d'informations, en décimal.
  int GetStateDistCum();
  void SetStateCum(int n);
  long GetNoFicheDsitCaum();
  void SetNoFicheDsitCaum(long n);

  bool CheckIfIsWriting(uint32_t threadId) const;
  bool CheckIfIsReading(uint32_t threadId) const;
  void NoteEcriture();
  void NoteLecture();
  static uint32_t IdThreadCourant();

  // Dossier entier. RenommeGenealogie et DupliqueGenealogie ferment les fichiers.
  bool SuppressionGenealogie();
  bool RenommeGenealogie(const std::string& nouveauNom);
  bool DupliqueGenealogie(const std::string& cible);
  bool RenommeFichier(int type, const std::string& nouveauNom, int n = 0);
  bool DupliqueFichier(int type, const std::string& dossierCible, const std::string& nomCible);
  bool DupliqueFichierNP(const std::string& dossierCible);

  // Drapeau d'erreur et son genre.
  bool EnErreur() const { return Erreur; }
  void FixeErreur(bool erreur) { Erreur = erreur; }
  int GenreErreur() const { return TypeErreur; }
  void FixeGenreErreur(int genre) { TypeErreur = genre; }
  void SetReadOnly(bool lectureSeule) { LectureSeule = lectureSeule; }

  const std::string& NomDossier() const { return Nom; }
  const std::string& DossierFichiers() const { return Dossier; }
  int AnneeVersion() const { return VersionAnnee; }
  bool Annule() const { return Annulation; }
  int DerniereReponse() const { return Reponse; }

  TFicPersons* FicPersons() const { return Persons.get(); }
  TFicExtPersons* FicExtPersons() const { return ExtPersons.get(); }
  TFicPersSuppr* FicPersSuppr() const { return PersSuppr.get(); }
  TFicXml* FicXml() const { return Xml.get(); }
  TModuleBDD* ModuleBDD() const { return BDD.get(); }
  // Le catalogue des champs ; nul tant qu'il n'est pas ouvert.
  TDefChpsCs* GetDefChpsCs() const { return DefChpsCs.get(); }

  // État gardé dans l'en-tête des personnes.
  TDateTime DateCreation = 0, DateModification = 0, DateTroisieme = 0;
  long Entier1 = -1, Entier2 = -1;
  long CopieImages = 1;  // 1 : DupliqueGenealogie copie aussi Images/
  std::string Titre;

 private:
  void Ouvre(bool a, bool b);
  void AjouteObjets(bool sansTest);

  std::string IdGenea;
  int Reponse = 0;
  bool LectureSeule = false;
  std::string Nom;
  std::string Dossier;
  uint32_t IdEcrivain = 0, IdLecteur = 0;
  TDateTime DerniereLecture = 0, DerniereEcriture = 0;
  char Lecteur = 0;
  bool Erreur = false;
  int TypeErreur = 0;
  bool Annulation = false;
  int VersionAnnee = 2009;

  std::unique_ptr<TFicPersons> Persons;
  std::unique_ptr<TFicExtPersons> ExtPersons;
  std::unique_ptr<TFicPersSuppr> PersSuppr;
  std::unique_ptr<TFicXml> Xml;
  std::unique_ptr<TModuleBDD> BDD;
  std::unique_ptr<TDefChpsCs> DefChpsCs;
};

// Construit dossier, `<nom>.rq2/` et nom de fichier : rend le chemin du .prs.
std::string ConstruitAccesGenealogie(const std::string& dossier, const std::string& nom);
// Rend inscriptibles tous les fichiers d'un dossier ; false pour un dossier absent ou
// si l'un d'eux est resté en lecture seule.
bool PutFilesInReadWrite(const std::string& dossier);

}  // namespace rqbase
