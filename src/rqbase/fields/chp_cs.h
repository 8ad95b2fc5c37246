// TChpCs : la description d'un champ du dossier (un événement ou un champ simple).
//
// Une ligne de texte Windows-1252, colonnes séparées par TAB, décrit le champ en entier :
// libellés, type, découpage de la valeur en morceaux de largeur fixe, balise GEDCOM,
// liaison personne/couple, symbole, participes et phrases. Decode lit une ligne de
// n'importe quel nombre de colonnes et complète ce qui manque ; Code écrit toujours la
// forme complète de 25 colonnes. Aucune ligne n'est refusée et rien n'est levé ici.
//
// Les morceaux : NbMorceaux, TailleMorceaux, NomMorceaux, SousTagGedCom et IndexFicDupli
// vont ensemble et sont remplacés en bloc par SetNbMorceaux. Une valeur stockée tient en
// 100 caractères : la somme des largeurs lues est ramenée à 100.
//
// Les fonctions qui réécrivent les valeurs stockées d'un dossier quand un champ change
// (ChangementType, AjusteMorceauxChpsSimple, AjusteMorceauxEvens) appartiennent au
// stockage relationnel : voir TReecritureValeurs dans def_chps_cs.h. Le remplissage des
// zones de saisie (MajZoneSaisie, SetValeur...) n'est pas construit ici.
#pragma once
#include <string>
#include <vector>

#include "rqbase/util/liste_chaines.h"

namespace rqbase {

class TDefChpsCs;

// Codes de type (colonne 3 de la ligne).
enum TTypeChp : int {
  tcNom = 1, tcPrenom = 2, tcSexe = 3, tcNoSosa = 4, tcEmail = 5, tcDdmf = 6, tcDcf = 7,
  tcEs = 8, tcEc = 9, tcCpa = 10, tcCpn = 11, tcCpd = 12, tcDdNotif = 13, tcCpc = 14,
  tcCpb = 15, tcConfExp = 19,
};

// Façon d'identifier un événement dans un résumé (RetourneIdentEven).
enum EnumIdentifEvts : int {
  ieInitiale = 0, ieSymbole = 1, ieGlyphe = 2, ieLibelle = 3, ieParticipe = 4,
};

class TChpCs {
 public:
  // Type 8, liaison 'P', OuiNon vrai, ValDefaut 0, NoModele -1, Rang1 et Rang2 -1,
  // liste de phrases vide (délimiteur '$', strict).
  explicit TChpCs(bool estNouveau = false);
  // Copie profonde ; OuiNon est toujours vrai dans la copie.
  explicit TChpCs(const TChpCs* source);
  TChpCs(const TChpCs&) = delete;
  TChpCs& operator=(const TChpCs&) = delete;

  // Nombre de morceaux plafonné à la lecture : au-delà, la ligne est abîmée.
  static constexpr int kNbMorceauxMax = 1000;
  // Longueur maximale d'une valeur de champ simple.
  static constexpr int kTailleValeurMax = 100;

  int NbMorceaux = 0;
  int NoModele = -1;          // modèle de note intégré, -1 si aucun
  std::string CheminModele;   // vide : le chemin calculé (GetPathModelNote)
  std::string LibelleInterne;
  std::string LibelleEcran;
  int Type = tcEs;
  std::string Description;
  std::vector<short> TailleMorceaux;
  std::vector<std::string> NomMorceaux;
  std::string TagGedCom;
  std::vector<std::string> SousTagGedCom;
  std::vector<long> IndexFicDupli;  // 0 : morceau sans dictionnaire
  bool Repete = false;
  bool ApresDeces = false;
  bool OuiNon = true;
  int ValDefaut = 0;  // 0 'N', 1 'O', -1 '?'
  char Liaison = 'P';  // 'P' personne, 'C' couple, 'N' ni l'un ni l'autre (filiation)
  bool EstNouveau = false;
  std::string Symbole;
  std::string LibelleMasculin;
  std::string LibelleFeminin;
  int Rang1 = -1;  // rang parmi les événements, posé par le catalogue
  int Rang2 = -1;  // rang parmi les champs personnels, posé par le catalogue
  std::string Equivalents;  // libellés internes séparés par '|'
  bool UtiliseEquivalent = false;
  TStringList Expressions;  // phrases, délimiteur '$' strict
  bool AvecResume = false;
  int Entier1 = 0;
  int Entier2 = 0;

  // Réalloue les quatre tableaux : les morceaux existants restent en place, les
  // nouveaux ont la largeur 15, un nom et une sous-balise vides, le dictionnaire 0.
  void SetNbMorceaux(int n);

  // Lit une ligne (colonnes séparées par TAB), voir docs/formats.md.
  void Decode(const std::string& ligne);
  // La ligne complète de 25 colonnes.
  std::string Code() const;

  void DecompTailleMorceau(const std::string& liste);
  void DecompNomMorceaux(const std::string& liste);
  void DecompSousTagGedCom(const std::string& liste);
  void DecompIndexFicDupli(const std::string& liste);
  std::string RetTailleMorceauChn() const;
  std::string RetNomMorceauxChn() const;
  std::string RetSousTagGedComChn() const;
  std::string RetIndexFicDupliChn() const;

  // Texte du type ("Autres !" pour un code inconnu) et famille de style (0 inconnu).
  std::string RetTypeString() const;
  static std::string RetTypeString(int type);
  int RetStyleDonnee() const;
  // Le code écrit en colonne 3 ; vide pour un type inconnu.
  static std::string CodeType(int type);

  bool IsEvenement() const { return Type == tcEs || Type == tcEc; }
  bool IsSimple() const;
  bool IsBase() const { return Type >= tcNom && Type <= tcNoSosa; }
  bool IsDateGestSys() const { return Type == tcDdmf || Type == tcDcf || Type == tcDdNotif; }
  bool IsPerso() const { return IsEvenement() || IsSimple() || IsDateGestSys(); }
  bool IsSelectionChampRepete() const { return Repete || IsSimple(); }
  bool IsLiaisonCouple() const { return Liaison == 'C'; }
  void SetLiaisonPersonne() { Liaison = 'P'; }
  void SetLiaisonCouple() { Liaison = 'C'; }
  bool IsLibelleInterne(const std::string& s) const { return LibelleInterne == s; }
  bool IsLibelleEcran(const std::string& s) const { return LibelleEcran == s; }
  bool IsCache() const;
  bool IsIgnored() const;
  // UNION, ou un champ atteint depuis les équivalents de UNION dans `catalogue`.
  bool IsEvenementUnion(const TDefChpsCs* catalogue) const;
  bool ChpNonModifiable() const;
  bool HasSousChamps() const;
  std::string RetourneChn() const;
  std::string RetourneIdentEven(EnumIdentifEvts mode, bool feminin) const;

  // Morceau `n` (à partir de 1) d'une valeur, sans blancs à droite ; un numéro hors
  // des morceaux donne le morceau 1 ; vide sans morceaux.
  std::string GetMorceauNo(int n, const std::string& valeur) const;
  // Écrit le morceau `n` dans `valeur` (blancs jusqu'à sa position, largeur du morceau),
  // puis coupe la valeur à `taille` caractères. Un champ d'un morceau est remplacé.
  void SetMorceauNo(int n, const std::string& morceau, std::string& valeur, int taille) const;

  // Filiation : "N" Incertaine, "O" Certaine, "?" Indéterminée ; sinon la valeur par défaut.
  std::string FormatChaine(const std::string& s) const;
  char GetValParDefaut() const;
  // La valeur lisible : morceaux coupés, joints par " - ".
  std::string ResumeDonnee(const std::string& valeur) const;

  // Les libellés qui peuvent remplacer celui-ci : la liste '|' ; avec `cascade` et un
  // catalogue, suivie récursivement par les listes des champs cités, sans répétition.
  std::vector<std::string> GetEquivalences(const TDefChpsCs* catalogue, bool cascade) const;
  void GetEquivalencesCascades(const TDefChpsCs* catalogue, TStringList& resultat, TStringList& vus,
                               bool cascade) const;

  // Modèles de note. `dossierCatalogue` : le dossier du fichier catalogue.
  std::string GetPathModelNote(const std::string& dossierCatalogue) const;
  bool ExistModelNote(const std::string& dossierCatalogue) const;
  std::string GetModelNote(const std::string& dossierCatalogue) const;
  // Écrit le modèle, sauf s'il est le modèle intégré : un fichier existant est alors vidé.
  bool SaveModelNote(const std::string& dossierCatalogue, const std::string& texte) const;

  // Même type, même nombre de morceaux, même liaison.
  bool MemeStructure(const TChpCs& autre) const;
  // Copie de `source` tout ce que décrit une ligne (libellés compris).
  void CopieDe(const TChpCs& source);
};

// Les modèles de note intégrés, par numéro (vide hors table).
std::string ModeleNoteIntegre(int noModele);
// Le numéro du modèle intégré d'un libellé interne, -1 s'il n'en a pas.
int NoModeleNoteDuLibelle(const std::string& libelleInterne);

}  // namespace rqbase
