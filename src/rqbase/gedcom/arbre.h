// L'arbre des lignes GEDCOM : les enregistrements de niveau 0 et leurs sous-lignes, et
// l'index des références (@I1@...) de chaque sorte d'enregistrement.
//
// Une ligne ne garde pas ses enfants : ils sont les lignes qui la suivent à un niveau plus
// grand, et ses enfants directs ceux d'un niveau de plus (le lecteur garantit qu'aucun niveau
// ne saute). Les vues de texte rendues pointent dans le tampon des lignes, qui doit vivre
// plus longtemps que l'arbre.
#pragma once
#include <cstdint>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "rqbase/gedcom/lecteur_lignes.h"

namespace rqbase {

class TArbreGedcom {
 public:
  // Les références en double sont dites au rapport : la première garde la référence.
  TArbreGedcom(const TLignesGedcom& lignes, TRapportImport& r);

  const TLignesGedcom& Lignes() const { return L; }
  const TLigneGedcom& Ligne(uint32_t i) const { return L.Lignes[i]; }
  std::string_view Tag(uint32_t i) const { return L.Tag(L.Lignes[i]); }
  std::string_view Valeur(uint32_t i) const { return L.Valeur(L.Lignes[i]); }
  std::string_view Xref(uint32_t i) const { return L.Xref(L.Lignes[i]); }
  uint32_t Numero(uint32_t i) const { return L.Lignes[i].Numero; }
  // Fin (exclue) de la ligne i et de toutes ses sous-lignes.
  uint32_t Fin(uint32_t i) const;
  // Appelle f sur chaque enfant direct de la ligne i, dans l'ordre.
  void Enfants(uint32_t i, const std::function<void(uint32_t)>& f) const;
  // Le premier enfant direct de cette balise, ou -1.
  int64_t Enfant(uint32_t i, std::string_view tag) const;
  // La valeur du premier enfant direct de cette balise, vide sans lui.
  std::string_view ValeurEnfant(uint32_t i, std::string_view tag) const;

  // Les enregistrements (lignes de niveau 0), dans l'ordre du fichier.
  const std::vector<uint32_t>& Enregistrements() const { return Racines; }
  // L'enregistrement de cette référence et de cette balise (INDI, FAM, SOUR, OBJE, NOTE ; une note
  // partagée SNOTE de GEDCOM 7 se cherche comme NOTE), ou -1.
  int64_t Cherche(std::string_view tag, std::string_view xref) const;
  // La référence d'une valeur « @X@ », vide si la valeur n'en est pas une.
  static std::string_view Pointeur(std::string_view valeur);

 private:
  const TLignesGedcom& L;
  std::vector<uint32_t> Racines;
  std::unordered_map<std::string_view, uint32_t> Index[5];
};

}  // namespace rqbase
