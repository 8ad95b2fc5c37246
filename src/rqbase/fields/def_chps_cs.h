// TDefChpsCs : le catalogue des champs d'un dossier, la liste ordonnée de ses TChpCs.
//
// Ouvert avec le dossier et tenu par TGestFichier, il est fait de la table par défaut
// pour un dossier neuf (ou d'un fichier ".DCH" choisi par __asStructFilenameNew),
// enregistré dans le fichier `<dossier>.dch`, complété des champs des versions
// suivantes à l'ouverture d'un ancien dossier, et cherché par libellé partout ailleurs.
// L'ordre compte : le rang d'un champ parmi les événements ou parmi les champs
// personnels est son numéro dans les données enregistrées ; il ne change jamais
// qu'en fin de liste. Le catalogue en mémoire fait foi, Sauvegarde remplace le fichier.
//
// Les rangs rendus par les recherches partent de 0 ; -1 veut dire absent.
//
// Les dictionnaires accrochés au catalogue (ChargeGestDupChn, OpenMapGestDupAll et
// les autres fonctions ...MapGestDupAll / ...FichiersGestDup) et la génération des
// contrôles de saisie (CreationControles) ne sont pas encore construits : ils
// viendront avec les dictionnaires et les formulaires.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/equiv_chp_cs.h"
#include "rqbase/fields/fichier_dch.h"
#include "rqbase/util/liste_chaines.h"

namespace rqbase {

class TContexteDossier;

// Le nom d'un catalogue à prendre pour modèle d'un dossier neuf ; vide : aucun.
// Seul un fichier existant d'extension ".DCH" (en capitales) est pris.
extern std::string __asStructFilenameNew;

// Réécriture des valeurs enregistrées quand un champ change de forme. Le stockage
// relationnel l'implémente ; le catalogue ne change jamais la forme d'un champ qui a
// des valeurs sans elle. Chaque fonction rend false si la réécriture a échoué.
class TReecritureValeurs {
 public:
  virtual ~TReecritureValeurs() = default;
  // Un champ change de type, de morceaux ou de liaison.
  virtual bool ChangementType(const TChpCs& ancien, const TChpCs& nouveau, long p1, long p2) = 0;
  // Deux événements de même liaison dont les morceaux diffèrent.
  virtual bool AjusteMorceauxEvens(const TChpCs& ancien, const TChpCs& nouveau, long p1, long p2) = 0;
  // Les valeurs d'un champ changent de libellé interne (TGestFichier::RenommeLibelleInterne).
  virtual bool RenommeLibelleInterne(const std::string& ancien, const std::string& nouveau) = 0;
};

// Une réécriture que demande un changement du catalogue.
struct TReecriture {
  enum TGenre { Type, MorceauxEvens, Renommage } Genre;
  std::string Libelle;         // libellé interne du champ (l'ancien pour un renommage)
  std::string NouveauLibelle;  // renommage seulement
};

class TDefChpsCs {
 public:
  // Ouvre le catalogue du fichier `cheminCatalogue` (voir docs/architecture.md pour
  // les étapes). `fichier` peut être nul (outils, tests). Une lecture ratée d'un
  // fichier existant laisse le catalogue vide, ErreurES() vrai, et n'écrit rien.
  TDefChpsCs(TContexteDossier* fichier, bool nouveau, const std::string& cheminCatalogue);
  // Le catalogue d'un dossier ouvert : le fichier de type 20 ; une erreur
  // d'entrée-sortie lève le drapeau d'erreur du dossier.
  TDefChpsCs(TContexteDossier* fichier, bool nouveau);
  // Un catalogue fait d'un contenu déjà lu, sans fichier (outils, essais) : mêmes
  // étapes qu'à l'ouverture d'un dossier existant quand `miseANiveau`, rien n'est écrit.
  TDefChpsCs(TContexteDossier* fichier, const TContenuDch& contenu, bool miseANiveau);
  ~TDefChpsCs();
  TDefChpsCs(const TDefChpsCs&) = delete;
  TDefChpsCs& operator=(const TDefChpsCs&) = delete;

  TContexteDossier* Fichier = nullptr;
  bool Modifie = false;  // un champ portant un symbole ou un participe a été chargé
  std::string VersionChaine;
  std::vector<std::unique_ptr<TChpCs>> Champs;
  TEquivChpCs EquivProfession{"PROFESSION"};
  TEquivChpCs EquivResidence{"RESIDENCE"};
  TEquivChpCs EquivNaissance{"NAISSANCE", "BAPTEME"};
  TEquivChpCs EquivDeces{"DECES", "INHUMATION"};
  TEquivChpCs EquivUnion{"UNION", "CTR-MARIAGE"};
  TStringList TypesSource, TypesNote, TypesIllustration;
  // Les réécritures des valeurs stockées ; nul tant que le stockage n'en fournit pas.
  TReecritureValeurs* Reecritures = nullptr;

  const std::string& CheminCatalogue() const { return Chemin; }
  // Le dossier du fichier catalogue (pour les modèles de note).
  std::string DossierCatalogue() const;
  bool ErreurES() const { return ErreurEntreeSortie; }
  bool AncienFormat() const { return Ancien; }  // lu sans la marque RQ2020
  int Count() const { return int(Champs.size()); }

  // Décode une ligne et l'ajoute en fin de liste.
  TChpCs* CreatChpCs(const std::string& ligne);

  bool IsChampExist(const std::string& libelle) const { return RechercheChampsInterneRg(libelle) >= 0; }
  bool IsLibelleExiste(const std::string& libelle) const { return IsChampExist(libelle); }
  TChpCs* RechercheChampsInternePtr(const std::string& libelle) const;
  int RechercheChampsInterneRg(const std::string& libelle) const;
  int RechercheChampsInterneRgEven(const std::string& libelle) const;
  TChpCs* RechercheChampsLibelleEcranPtr(const std::string& libelle) const;
  std::string RetourneLibelleEcran(const std::string& libelleInterne) const;
  // Le deuxième élément de `s`, séparé par "#_EQ", lu comme libellé interne.
  TChpCs* RetChpCsChnLibelEcranLibelInterne(const std::string& s) const;
  // Le champ de rang `n` parmi les événements (ou les champs personnels) ; avec
  // `sansStandard`, les événements standard ne comptent pas. Nul hors des bornes.
  TChpCs* RetChpCsRgEven(int n, bool sansStandard) const;
  TChpCs* RetChpCsRgPerso(int n, bool sansStandard) const;
  std::string RetLibChpEquiv(const std::string& libelle) const;

  void AjouteEvenement(TStringList& liste, bool sansStandard) const;
  void AjouteTous(TStringList& liste) const;

  bool IsEvenStandard(const std::string& libelle) const;
  bool IsEvenNaissance(const TChpCs* c) const;
  bool IsEvenNaissanceUniquement(const TChpCs* c) const;
  bool IsEvenDeces(const TChpCs* c) const;
  bool IsEvenDecesUniquement(const TChpCs* c) const;
  bool IsEvenUnion(const TChpCs* c) const;
  bool IsEvenUnionUniquement(const TChpCs* c) const;
  // Le sous-champ 52 est la date.
  bool IsDateNaissance(const TChpCs* c, int sousChamps) const { return IsEvenNaissance(c) && sousChamps == 52; }
  bool IsDateUnion(const TChpCs* c, int sousChamps) const { return IsEvenUnion(c) && sousChamps == 52; }

  // Pose symbole et participes d'un champ s'il existe ; vrai si quelque chose a changé.
  bool MiseEnPlaceAbbrevation(const std::string& libelle, const std::string& symbole,
                              const std::string& masculin, const std::string& feminin);
  // Pose les phrases d'un champ qui n'en a pas ; vrai si elles ont été posées.
  bool UpdateExpressionsField(const std::string& libelle, const std::string& expressions);
  bool UpdateAllExpressionsField();

  // Écrit le fichier catalogue ; false en échec (et drapeau d'erreur du dossier).
  bool Sauvegarde();
  // Renumérote les dictionnaires et enregistre. Le rechargement des dictionnaires
  // viendra avec eux.
  bool PriseEnCompteModification();
  void NumeroteIndiceIndexDupli();
  // Rang1 (parmi les événements) et Rang2 (parmi les champs personnels) de chaque champ.
  void NumeroteRangs();

  bool IsSignatureExist() const;
  void AjoutSignature();

  // Un libellé libre dans ce catalogue et dans `autre` : les 17 premiers caractères
  // suivis d'un compteur à partir de 0.
  std::string NouveauLibelleInterne(const std::string& libelle, const TDefChpsCs* autre) const;

  // Les réécritures que demande le passage de `ancien` à ce catalogue.
  std::vector<TReecriture> PlanAjusteStructure(const TDefChpsCs& ancien) const;
  // Applique aux données enregistrées les changements de `ancien` à ce catalogue.
  // Sans Reecritures alors qu'une réécriture est nécessaire : ERqBase, rien n'est fait.
  void AjusteStructureFichier(bool avecProgression, TDefChpsCs* ancien, long p1, long p2);
  // Fusionne le catalogue d'un autre dossier (import). Même règle sans Reecritures.
  void MajStruct(bool sauvegarde, TDefChpsCs* source);

  // Le contenu du fichier catalogue, tel que Sauvegarde l'écrit.
  TContenuDch ContenuFichier() const;

 private:
  void Construit(bool nouveau);
  void Initialise();
  // Les champs, rôles et listes d'un contenu lu ; puis mise à niveau et rangs.
  // Vrai si le catalogue diffère de ce qui a été lu.
  bool Charge(const TContenuDch& c, bool miseANiveau);
  void RemplitDefaut();
  bool MetANiveau();
  bool Restructure();
  bool MetEnPlacePhrasesEtSymboles();
  void ApplitListes(const TContenuDch& c);
  void Ajoute(std::unique_ptr<TChpCs> c);

  std::string Chemin;
  bool ErreurEntreeSortie = false;
  bool Ancien = false;
};

}  // namespace rqbase
