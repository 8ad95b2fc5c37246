// TGestFichier : un dossier généalogique ouvert, l'agrégat au-dessus de tous les sous-systèmes.
//
// Il possède un objet par fichier du dossier (personnes, débordement, supprimés, XML, base
// relationnelle, catalogue des champs, et ceux que les autres couches apportent), les ouvre
// dans un ordre fixe, les ferme la base en premier, et copie, renomme ou supprime le dossier
// entier. Il est le contexte que chaque objet de fichier reçoit (TContexteDossier) : un
// TGestFichier* se passe partout où un objet de fichier attend son contexte.
//
// Un seul écrivain. Un dossier ouvert en écriture est verrouillé (verrou exclusif sur son
// .prs) avant la première lecture d'un compte et jusqu'à sa fermeture ; une ouverture en
// lecture prend le verrou partagé. Qui ne l'obtient pas dans le délai (TVerrou) trouve le
// dossier en erreur, avec MessageErreur() : « Le dossier "..." est déjà ouvert en écriture ».
//
// Rien ne change sur le disque quand l'ouverture est en lecture seule ; l'identifiant du
// dossier (IdGenea) n'est écrit, avec son marqueur lienidpers.cpt, que par une ouverture
// en écriture qui ne le trouve pas.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "rqbase/person/voisins_personne.h"
#include "rqbase/platform/verrou.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/fic_evens.h"

namespace rqbase {

class TDefChpsCs;
class TFicNotes;
class TFicDupli;
class TFicIndexPerson;
class TTabNomEquiv;

// 0 : un ancien dossier reste tel quel, en lecture seule ; 1 : le formulaire de
// conversion est proposé ; 2 : un ancien dossier s'ouvre sans protection.
enum TModeConversion : int { mcLectureSeule = 0, mcFormulaire = 1, mcSansProtection = 2 };

// Le compte rendu d'une opération sur un dossier entier (copie, renommage, suppression).
struct TCompteRendu {
  bool Reussi = false;
  std::string Message;                // en français, pour l'utilisateur, vide si réussi
  std::vector<std::string> Conserves;  // ce qui n'appartient pas au dossier et a été laissé
};

class TGestFichier : public TContexteDossier, public TVoisinsPersonne {
 public:
  // `chemin` : le fichier .prs du dossier (seuls dossier et nom de base servent).
  // `nouveau` crée le dossier (`premierePersonne` == 1 y met une première personne) ;
  // `a`, `b` vont à OuvrirFichier ; `sansOuverture` laisse tous les fichiers fermés.
  TGestFichier(const std::string& chemin, bool nouveau = false, bool a = false, bool b = false,
               bool sansOuverture = false, int premierePersonne = 0, TModeConversion mode = mcFormulaire,
               bool lectureSeule = false);
  ~TGestFichier() override;

  // a=false,b=false : ouverture complète. a=true,b=false : personnes, supprimés et XML
  // seulement, sans la base. a=true,b=true : tout, sans tester le drapeau entre les étapes.
  void OuvrirFichier(bool a, bool b);
  // Crée le dossier à l'écart puis le met à sa place d'un seul renommage : un échec ou une
  // panne ne laisse aucun dossier à moitié créé sous le nom demandé.
  void NouveauFichier(int premierePersonne);
  // Détruit les objets de fichiers, la base en premier.
  void FermerFichiers();
  void Flush();
  void EcritureEntete();

  bool isVersion10();
  // La colonne _DATE des événements est de type 27 (date-heure) ; faux sans base ouverte.
  bool IsConvertedForRQ2013();
  // Ne fait rien.
  void ConvertTableEven() {}
  bool IsCDROM() const { return false; }  // pas de lecteur de type 5 ici
  bool IsSameGenea(const TGestFichier& autre) const;

  // 0 en erreur ; sinon le compte des numéros moins le compte du .psu.
  long NombrePersonnes() const;

  std::string GetDirImages() const { return Dossier + "Images/"; }

  void GenereIdGenea();
  bool VerifIdPersOk(const std::string& id) const;
  const std::string& GetIdGenea() const override { return IdGenea; }

  // Clés "DCUM_STATE" et "DCUM_VALUE" de la table d'informations, en décimal.
  int GetStateDistCum();
  void SetStateCum(int n);
  long GetNoFicheDsitCaum();
  void SetNoFicheDsitCaum(long n);

  static uint32_t IdThreadCourant();

  // Dossier entier (operations_dossier.cpp). Chacune se fait entière ou laisse le dossier
  // tel qu'il était, et dit en français ce qui s'est passé ; elles ferment les fichiers.
  // La suppression n'enlève que les fichiers et dossiers du dossier lui-même.
  TCompteRendu SupprimeDossier();
  TCompteRendu RenommeDossier(const std::string& nouveauNom);
  TCompteRendu DupliqueDossier(const std::string& cible);
  // Les formes de toujours : true quand l'opération a réussi.
  bool SuppressionGenealogie() { return SupprimeDossier().Reussi; }
  bool RenommeGenealogie(const std::string& nouveauNom) { return RenommeDossier(nouveauNom).Reussi; }
  bool DupliqueGenealogie(const std::string& cible) { return DupliqueDossier(cible).Reussi; }
  bool RenommeFichier(int type, const std::string& nouveauNom, int n = 0);
  bool DupliqueFichier(int type, const std::string& dossierCible, const std::string& nomCible);
  bool DupliqueFichierNP(const std::string& dossierCible);

  bool Annule() const { return Annulation; }
  int DerniereReponse() const { return Reponse; }
  // Pourquoi le dossier est en erreur, quand une phrase peut le dire (verrou, chemin).
  const std::string& MessageErreur() const { return Message; }

  TFicPersons* FicPersons() const override { return Persons.get(); }
  TFicExtPersons* FicExtPersons() const override { return ExtPersons.get(); }
  TFicPersSuppr* FicPersSuppr() const override { return PersSuppr.get(); }
  TFicXml* FicXml() const override { return Xml.get(); }
  TModuleBDD* ModuleBDD() const override { return BDD.get(); }
  // Le fichier des notes (.not) ; nul tant qu'il n'est pas ouvert.
  TFicNotes* FicNotes() const override { return Notes.get(); }
  // Les chaînes partagées : qualités (.qua), liens de parenté (.par), lieux (.lie).
  TFicDupli* FicQua() const { return Qua.get(); }
  TFicDupli* FicPar() const { return Par.get(); }
  TFicDupli* FicLie() const override { return Lie.get(); }
  // Les façades des événements, champs simples, sources, illustrations et débordements
  // d'événements : la base, ou les anciens fichiers d'un dossier de 2009.
  TFicEvens* FicEvens() const override { return Evens.get(); }
  TFicChpsSimple* FicChpsSimple() const override { return ChpsSimple.get(); }
  TFicSources* FicSources() const { return Sources.get(); }
  TFicIllustrations* FicIllustrations() const { return Illustrations.get(); }
  TFicExtEvens* FicExtEvens() const { return ExtEvens.get(); }
  // Le catalogue des champs ; nul tant qu'il n'est pas ouvert.
  TDefChpsCs* GetDefChpsCs() const override { return DefChpsCs.get(); }
  // L'index des noms (IndexNomPrenoms et sa table en mémoire) ; nul tant qu'il n'est pas ouvert.
  TFicIndexPerson* FicIndexPerson() const { return Index.get(); }
  // Les équivalences de noms et de prénoms (.neq, .preq) ; nul tant qu'elles ne sont pas lues.
  TTabNomEquiv* TabNomEquiv() const { return NomsEquiv.get(); }
  // Une personne enregistrée met ses lignes de l'index d'accord avec elle.
  void ModifClef(TPerson& personne, bool enregistrer) override;
  // L'ordre des événements d'une personne enregistrée : par type puis par date (préférence
  // « Type de classement des evenements » à 1), sinon par date seule ; lu à l'ouverture.
  bool ClassementParType() const override { return ClassementTypeEven; }
  // Un champ simple "ID_PERS" de cette valeur existe-t-il dans le dossier ?
  bool IsIDPersExists(const std::string& id) override;

 private:
  void AjouteObjets(bool sansTest);
  // La question de l'ouverture qui fait de PROFESSION un événement (clé "UPDATE_PROF").
  void MetAJourProfession();
  // Les façades Sources, ChpsSimple, ExtEvens, Evens, dans cet ordre.
  void AjouteFacades(bool sansTest);
  // Lit les équivalences de noms et les donne à l'index.
  void OuvreNomsEquiv();
  bool PrendVerrou();
  // Donne à la base ses voisins (cache des personnes, comptes des lieux et des notes).
  void RelieBase();
  void CreeDans(int premierePersonne, const std::string& prsDefinitif);
  void GenereIdGeneaPour(const std::string& prs);
  // Les fichiers et dossiers de ce dossier présents sur le disque (noms relatifs au dossier).
  std::vector<std::string> MembresPresents() const;

  std::string IdGenea;
  bool ClassementTypeEven = false;
  int Reponse = 0;
  bool Annulation = false;
  std::string Message;

  std::unique_ptr<TVerrou> Verrou;
  std::unique_ptr<TFicPersons> Persons;
  std::unique_ptr<TFicDupli> Qua, Par, Lie;
  std::unique_ptr<TFicExtPersons> ExtPersons;
  std::unique_ptr<TFicPersSuppr> PersSuppr;
  std::unique_ptr<TFicIllustrations> Illustrations;
  std::unique_ptr<TFicSources> Sources;
  std::unique_ptr<TFicChpsSimple> ChpsSimple;
  std::unique_ptr<TFicExtEvens> ExtEvens;
  std::unique_ptr<TFicEvens> Evens;
  std::unique_ptr<TFicXml> Xml;
  std::unique_ptr<TModuleBDD> BDD;
  std::unique_ptr<TFicNotes> Notes;
  std::unique_ptr<TDefChpsCs> DefChpsCs;
  std::unique_ptr<TFicIndexPerson> Index;
  std::unique_ptr<TTabNomEquiv> NomsEquiv;
};

// Construit dossier, `<nom>.rq2/` et nom de fichier : rend le chemin du .prs.
std::string ConstruitAccesGenealogie(const std::string& dossier, const std::string& nom);

}  // namespace rqbase
