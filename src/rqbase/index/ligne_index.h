// Une ligne de l'index des noms : un nom de la personne avec un de ses prénoms.
//
// TEnregIndex est la ligne telle que la table IndexNomPrenoms la tient (les colonnes dans
// leur ordre, derrière l'identifiant) ; TEltIndex est la même ligne dans la table triée en
// mémoire, avec sa forme sérialisée et son ordre.
//
// Ce qu'un appelant peut tenir pour sûr :
// - Les textes tiennent dans leurs tableaux : 20 caractères au plus pour Nom et Prenom, 4
//   pour les soundex, toujours terminés par un zéro.
// - La forme sérialisée fait au plus 69 octets : les quatre textes comptés (un octet de
//   longueur puis les caractères), les deux années, NoPers, les trois rangs, puis
//   TypePersonne, Sexe, FicheSupprimee. Relue d'une zone abîmée, elle donne une ligne
//   bornée (textes coupés à leur taille), jamais une lecture hors de la zone.
// - L'ordre (EltCmp) compare, en octets non signés, le texte Nom, 1, Prenom, 1, AnneeMin en
//   décimal, 1, AnneeMax en décimal, l'octet Sexe, NoPers en décimal : les années se rangent
//   comme du texte ("1900" avant "900"), voulu. Deux lignes ne sont égales que si tout cela
//   l'est ; l'identifiant et les rangs n'entrent pas dans l'ordre.
#pragma once
#include <cstdint>
#include <string>

#include "rqbase/storage/g_tblvar.h"

namespace rqbase {

struct TEnregIndex {
  char Nom[21] = {};
  char Prenom[21] = {};
  char NomSoundex[5] = {};
  char PrenomSoundex[5] = {};
  int16_t AnneeMin = 0;
  int16_t AnneeMax = 0;
  int32_t NoPers = 0;
  int16_t RgNom = 0;
  int16_t RgPrenom = 0;
  int16_t RgPrenomUsuel = 0;
  char TypePersonne = 0;
  char FicheSupprimee = 0;
  char Sexe = 0;  // un blanc est gardé comme 0

  // Comme TPerson : un type blanc (ou nul) est à la fois personne et témoin.
  bool IsPersonne() const { return TypePersonne == 'P' || TypePersonne == ' ' || TypePersonne == 0; }
  bool IsTemoin() const { return TypePersonne == 'T' || TypePersonne == ' ' || TypePersonne == 0; }

  // Pose un texte coupé à la taille du tableau.
  static void Pose(char* dest, size_t taille, const std::string& texte);
  void SetNom(const std::string& s) { Pose(Nom, sizeof Nom, s); }
  void SetPrenom(const std::string& s) { Pose(Prenom, sizeof Prenom, s); }
  void SetNomSoundex(const std::string& s) { Pose(NomSoundex, sizeof NomSoundex, s); }
  void SetPrenomSoundex(const std::string& s) { Pose(PrenomSoundex, sizeof PrenomSoundex, s); }

  // Toutes les colonnes égales (l'identifiant à part).
  bool MemesColonnes(const TEnregIndex& autre) const;
};

// Compare deux lignes selon l'ordre de la table (voir plus haut) : < 0, 0, > 0.
int CompareLignesIndex(const TEnregIndex& a, const TEnregIndex& b);

class TEltIndex : public TEltBaseTV {
 public:
  static constexpr int kTailleMax = 69;

  TEltIndex() = default;
  TEltIndex(const TEnregIndex& enreg, long id) : Enreg(enreg), ID(id) {}

  char* Ecrit(char* p) const override;
  void Lit(const char* p, long taille) override;
  int GetTaille() const override;
  int GetTailleMax() const override { return kTailleMax; }
  int EltCmp(const TEltBaseTV& autre) const override {
    return CompareLignesIndex(Enreg, static_cast<const TEltIndex&>(autre).Enreg);
  }

  TEnregIndex Enreg;
  // L'identifiant de la ligne dans IndexNomPrenoms quand l'élément vient de la table ; la
  // forme sérialisée ne le porte pas (0 pour un élément relu de la zone de texte).
  long ID = 0;
};

}  // namespace rqbase
