// Les listes d'événements et de champs simples d'une personne : leurs éléments
// (TEvenementTV, TChpsSimpleTV), leur conteneur (TVectorTV), et leur chargement depuis la
// base relationnelle et leur enregistrement vers elle.
//
// Un élément tient une copie entière de l'enregistrement et le rang d'union : le rang, à
// partir de 1, du conjoint dans la table des conjoints de la personne, 0 pour un fait de la
// personne seule. Les deux listes d'une personne vivent dans un TListesChps, à côté de
// l'objet TPerson qu'elles complètent : la personne ne les possède pas encore elle-même.
//
// Ce qu'un appelant peut tenir pour sûr :
// - Chargement (ChargerLienChpsOfPerson) : les lignes de la personne dans l'ordre où la
//   base les rend (NoPersA par rang, puis NoPersB placées à leur rang), les tables de liens
//   de la personne remplies de leurs numéros (100 au plus), marquées chargées.
// - Un filtre d'année (filtreAnnee non nul) donne une personne réduite, faite pour être lue,
//   jamais pour être enregistrée (TermineRecompacter).
// - Enregistrement (EnregistrerChpsOfPerson) : les listes telles qu'elles sont rangées ;
//   le classement (chronologique, par type) est fait avant par l'appelant, qui a le
//   catalogue. Rend le nombre de lignes écrites : 0 pour une personne inchangée.
#pragma once
#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/evenement.h"

namespace rqbase {

class TModuleBDD;

struct TEvenementTV {
  TEvenement::TEnreg Enreg;
  int RgUnion = 0;
};

struct TChpsSimpleTV {
  TChpsSimple::TEnreg Enreg;
  int RgUnion = 0;
};

// Un vecteur d'éléments, adressés à partir de 0. Une position hors des bornes ne fait rien
// (Lit rend nul).
template <typename T>
class TVectorTV {
 public:
  int GetNbElt() const { return static_cast<int>(Elts.size()); }
  const T* Lit(int i) const { return i >= 0 && i < GetNbElt() ? &Elts[static_cast<size_t>(i)] : nullptr; }
  T* Lit(int i) { return i >= 0 && i < GetNbElt() ? &Elts[static_cast<size_t>(i)] : nullptr; }
  void Ajoute(const T& e) { Elts.push_back(e); }
  // Au-delà de la fin : ajouté au bout ; une position négative : en tête.
  void Insere(int pos, const T& e) {
    pos = std::clamp(pos, 0, GetNbElt());
    Elts.insert(Elts.begin() + pos, e);
  }
  void Supprime(int i) {
    if (i >= 0 && i < GetNbElt()) Elts.erase(Elts.begin() + i);
  }
  void Change(int i, const T& e) {
    if (T* p = Lit(i)) *p = e;
  }
  // Par rang d'union croissant, l'ordre des égaux gardé.
  void Classement() {
    std::stable_sort(Elts.begin(), Elts.end(), [](const T& a, const T& b) { return a.RgUnion < b.RgUnion; });
  }
  // La position de l'élément de ce numéro, -1 si absent.
  int Find(long no) const {
    if (no == 0) return -1;
    for (int i = 0; i < GetNbElt(); ++i)
      if (Elts[static_cast<size_t>(i)].Enreg.No == no) return i;
    return -1;
  }
  void Raz() { Elts.clear(); }
  typename std::vector<T>::iterator begin() { return Elts.begin(); }
  typename std::vector<T>::iterator end() { return Elts.end(); }
  typename std::vector<T>::const_iterator begin() const { return Elts.begin(); }
  typename std::vector<T>::const_iterator end() const { return Elts.end(); }

 private:
  std::vector<T> Elts;
};

// Les deux listes d'une personne ; nulles tant qu'elles ne sont pas chargées.
struct TListesChps {
  std::unique_ptr<TVectorTV<TEvenementTV>> Evens;
  std::unique_ptr<TVectorTV<TChpsSimpleTV>> Chps;
};

// Met un événement dans la liste au chargement ; false s'il est refusé (vide sans rang, ou
// écarté par le filtre d'année), l'appelant effaçant alors son lien. `pos` < 0 : au bout,
// sinon inséré à cette position. `filtrage` passe à vrai au premier refus du filtre.
bool AddEvenInTV(TPerson& p, TListesChps& l, TEvenement& ev, int filtreAnnee, bool& filtrage, int pos);
bool AddChpSimpleInTV(TPerson& p, TListesChps& l, TChpsSimple& chp, int pos);
// Retire les événements sans année et efface leur numéro des liens.
void RecompacterEvenement(TPerson& p, TListesChps& l);
// Fin d'une lecture filtrée : liens d'événements tassés, note, longs des conjoints, champs
// simples et leurs liens effacés. La personne n'est plus qu'une copie réduite.
void TermineRecompacter(TPerson& p, TListesChps& l);

// Les listes de la personne depuis la base (voir l'en-tête). `recharger` rafraîchit
// ensuite le double de la personne dans le cache.
void ChargerLienChpsOfPerson(TModuleBDD& bdd, TPerson& p, TListesChps& l, int filtreAnnee = 0, bool recharger = false);
// Recharge les listes depuis la base, comme ChargerLienChpsOfPerson.
inline void RechargerTableEvenementTV(TModuleBDD& bdd, TPerson& p, TListesChps& l, int filtreAnnee = 0,
                                      bool recharger = false) {
  ChargerLienChpsOfPerson(bdd, p, l, filtreAnnee, recharger);
}
// Les listes de la personne vers la base ; les objets neufs reçoivent leur numéro, dans la
// liste et dans les liens. Rend le nombre de lignes écrites.
long EnregistrerChpsOfPerson(TModuleBDD& bdd, TPerson& p, TListesChps& l, bool sansEffacement = false,
                             bool sansListes = false);

}  // namespace rqbase
