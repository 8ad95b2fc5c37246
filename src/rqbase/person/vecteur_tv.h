// Les éléments des deux listes d'une personne (TEvenementTV, TChpsSimpleTV) et leur
// conteneur (TVectorTV).
//
// Un élément tient une copie entière de l'enregistrement et le rang d'union : le rang, à
// partir de 1, du conjoint dans la table des conjoints de la personne, 0 pour un fait de la
// personne seule.
#pragma once
#include <algorithm>
#include <memory>
#include <vector>

#include "rqbase/storage/evenement.h"

namespace rqbase {

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

}  // namespace rqbase
