// Les fichiers de chaînes partagées : une valeur répétée (un lieu, une qualité, un lien de
// parenté) n'est jamais écrite dans les enregistrements qui s'en servent, seulement son numéro.
//
// TFicDupli est un tel fichier (.qua, .par, .lie) : des enregistrements fixes de 114 octets,
// et en mémoire une table triée (TTableTV) de tous ses enregistrements, supprimés compris.
// TEltDupChn est une valeur, TFicheDupli un curseur sur un enregistrement. Les mêmes classes,
// sans fichier derrière elles, servent de table en mémoire aux dictionnaires.
//
// Trois numérotations à ne pas confondre : le numéro d'enregistrement (NoFiche, ce que les
// autres enregistrements gardent), la position dans la table (triée, supprimés compris) et le
// rang dans ClassementSansSuppr (trié, sans les supprimés : ce qu'une liste montre).
//
// Une valeur n'est jamais retirée : supprimée, elle est marquée 'O', garde son numéro et reste
// lisible par ceux qui la tiennent ; retapée, elle revient sous son ancien numéro.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "rqbase/fields/champ_base.h"
#include "rqbase/storage/fic_enreg.h"
#include "rqbase/storage/g_tblvar.h"

namespace rqbase {

#pragma pack(push, 1)
// L'enregistrement de 114 octets ; l'en-tête a la même forme, le compte en décimal dans Ville.
struct TEnregDupli {
  char Ville[51];  // la valeur ; pour un lieu : commune, ';', région (autant qu'il en tient)
  char Code[11];   // code postal ou de département d'un lieu
  char Pays[51];   // pays d'un lieu, ';', puis ce qui restait de la région
  char Etat;       // 'N' en usage, 'O' supprimé
};
#pragma pack(pop)
static_assert(sizeof(TEnregDupli) == 114);

class TEltDupChn : public TEltBaseTV {
 public:
  // Numéro, état 'N' ; code et pays coupés à 10 et 50 caractères, puis SetVilleRegion et
  // CalcMaj. Un pointeur nul vaut un texte vide.
  explicit TEltDupChn(long numero = 0, const char* ville = nullptr, const char* code = nullptr,
                      const char* region = nullptr, const char* pays = nullptr);

  // La commune et la région dans Ville (et le reste de la région dans Pays). Une commune de
  // 49 ou 50 caractères perd son séparateur, et sa région se lit comme une part du nom :
  // cette limite est voulue.
  void SetVilleRegion(const char* ville, const char* region);
  // Commune, région (débordement de Pays compris) et pays.
  void GetVilleRegionPays(std::string& ville, std::string& region, std::string& pays) const;
  // Les parties aux pointeurs non nuls ; avec `majuscule`, en capitales sans accents.
  void Fixe(std::string& ville, std::string* code, std::string* region, std::string* pays, bool majuscule) const;
  // Les trois champs en capitales sans accents, depuis les trois champs simples.
  void CalcMaj();
  // Le texte de l'élément selon un style : 135 « commune ; code ; région ; pays », 148 les
  // quatre parties jointes par l'octet 0x01, tout autre style un texte vide ; puis le style de
  // présentation et la casse.
  std::string ChargeElement(TChampBase::TStyle style, TChampBase::TStyle presentation, TChampBase::TCasse casse) const;
  // Une partie : sous-champ 54 le code, 55 le pays, 64 la région, tout autre la commune.
  std::string ChargeElement(TChampBase::TSousChamps sousChamp, TChampBase::TStyle presentation,
                            TChampBase::TCasse casse) const;
  // ChargeElement(135, 60, 2).
  std::string Charge() const;
  void Raz();
  bool Vide() const { return !Ville[0] && !Code[0] && !Pays[0]; }
  bool IsFicheSupprimee() const { return Etat == 'O'; }

  // Forme compacte dans la table : NoFiche (4 octets), Etat, puis les six textes et leur zéro.
  char* Ecrit(char* p) const override;
  void Lit(const char* p, long taille) override;
  int GetTaille() const override;
  int GetTailleMax() const override { return 731; }
  // Capitales d'abord (MultiChnCmp, octets, octets), puis les champs simples de même.
  int EltCmp(const TEltBaseTV& autre) const override;
  // Comparaison d'octets, mais une valeur « commune;région » se range par sa commune d'abord.
  static int MultiChnCmp(const char* a, const char* b);
  // L'ordre d'EltCmp sur les six textes donnés dans l'ordre de la forme compacte : Ville,
  // Code, Pays, VilleMaj, CodeMaj, PaysMaj.
  static int CompareChamps(const char* const a[6], const char* const b[6]);

  int32_t NoFiche = 0;
  char Etat = 'N';
  char Ville[301] = {};
  char Code[11] = {};
  char Pays[51] = {};
  char VilleMaj[301] = {};
  char CodeMaj[11] = {};
  char PaysMaj[51] = {};
};

class TFicDupli;

class TFicheDupli {
 public:
  // Un numéro sous 1 autre que -2 donne un curseur vide ; sinon LectureMemoire si `memoire`,
  // Lecture sinon.
  TFicheDupli(TFicDupli* fic, long numero, bool memoire);
  // Lit l'enregistrement du fichier ; 0 vide l'élément.
  void Lecture(long numero);
  // Lit la table par TabIndex ; un numéro hors de TabIndex donne un élément vide et le numéro 0.
  void LectureMemoire(long numero);
  // Écrit (au-delà du compte : ERqBase("FicDupli : Erreur Enreg")), puis met la table à jour.
  // `autre`, s'il est donné, reçoit l'écriture le temps de cet appel.
  void Enregistrement(long numero = -3, TFicDupli* autre = nullptr);

  long No() const { return Numero; }
  TEltDupChn Elt;

 private:
  TFicDupli* Fic;
  long Numero = 0;
};

class TFicDupli : public TFicEnregBase {
 public:
  // Avec un contexte : le fichier du type donné (1, 3 ou 5), lu en entier dans la table triée.
  // Sans contexte : une table en mémoire seulement (dictionnaires).
  TFicDupli(TContexteDossier* gest, TTypeFichier type, bool creation);
  ~TFicDupli() override;

  void CreationTable();
  // Le compte en décimal dans Ville de l'en-tête.
  void EcritureEntete() override;
  // Le compte de l'en-tête, ramené à ce que le fichier tient (un fichier coupé rétrécit sans bruit).
  void LectureEntete() override;

  // Le numéro de la valeur (revenue si elle était supprimée), créée au besoin avec `creation` ;
  // 0 si absente sans création. `position` reçoit le rang parmi les valeurs non supprimées.
  long Cherche(TEltDupChn* element, bool creation, int* position = nullptr);
  void CalculIndex(int depuis);
  void CalculClassementSansSuppr(int depuis);
  // Le premier rang dont la position de table est à `position` ou après, -1 sans ; l'élément
  // y est lu. Parcours linéaire, voulu.
  long ApprochePosClassementSansSuppr(long position, TEltDupChn* element);
  // Marque supprimée la valeur de ce rang (avec fichier) ; sans fichier, la retire de la table.
  void SupprimeElt(long rang);
  // Sans borne basse, voulu.
  bool NoFicheValide(long numero) const { return numero <= NbFiches(); }
  // Textes d'un numéro lu en mémoire ; vides pour 0. Charge : TEltDupChn::Charge ;
  // RetDepartement : le code (sous-champ 54) en ses deux premiers caractères (style 62) ;
  // RetCommune : la commune (sous-champ 53) telle quelle.
  std::string Charge(long numero);
  std::string RetDepartement(long numero);
  std::string RetCommune(long numero);

  long NbFiches() const { return Nombre; }
  TTableTV* Table() const { return TableElts.get(); }
  const std::vector<int32_t>& TabIndex() const { return Index; }
  const std::vector<int32_t>& ClassementSansSuppr() const { return SansSuppr; }
  // Le rang d'un numéro parmi les valeurs non supprimées, -1 s'il n'y est pas.
  long RangDeNumero(long numero) const;

  // Écrit l'enregistrement du numéro donné (en-tête après s'il couvre un numéro neuf).
  bool EcritDupli(long numero, const TEnregDupli& enreg);

 private:
  std::unique_ptr<TTableTV> TableElts;
  std::vector<int32_t> Index;
  std::vector<int32_t> SansSuppr;
};

}  // namespace rqbase
