#include "rqbase/gedcom/arbre.h"

namespace rqbase {

namespace {

constexpr std::string_view kSortes[5] = {"INDI", "FAM", "SOUR", "OBJE", "NOTE"};

int Sorte(std::string_view tag) {
  // La note partagée de GEDCOM 7 (SNOTE) se cite comme une note.
  if (tag == "SNOTE") return 4;
  for (int i = 0; i < 5; ++i)
    if (kSortes[i] == tag) return i;
  return -1;
}

}  // namespace

TArbreGedcom::TArbreGedcom(const TLignesGedcom& lignes, TRapportImport& r) : L(lignes) {
  const auto n = static_cast<uint32_t>(L.Lignes.size());
  for (uint32_t i = 0; i < n; ++i)
    if (L.Lignes[i].Niveau == 0) Racines.push_back(i);
  for (size_t k = 0; k < Racines.size(); ++k) {
    const uint32_t i = Racines[k];
    const std::string_view xref = Xref(i);
    if (xref.empty()) continue;
    const int s = Sorte(Tag(i));
    if (s < 0) continue;
    if (!Index[s].emplace(xref, i).second)
      r.Avertit(Numero(i), L.Texte(L.Lignes[i]),
                "référence en double : les renvois vont au premier enregistrement de cette référence");
  }
}

uint32_t TArbreGedcom::Fin(uint32_t i) const {
  const uint16_t niveau = L.Lignes[i].Niveau;
  uint32_t j = i + 1;
  while (j < L.Lignes.size() && L.Lignes[j].Niveau > niveau) ++j;
  return j;
}

void TArbreGedcom::Enfants(uint32_t i, const std::function<void(uint32_t)>& f) const {
  const uint16_t niveau = L.Lignes[i].Niveau;
  for (uint32_t j = i + 1; j < L.Lignes.size() && L.Lignes[j].Niveau > niveau; ++j)
    if (L.Lignes[j].Niveau == niveau + 1) f(j);
}

int64_t TArbreGedcom::Enfant(uint32_t i, std::string_view tag) const {
  const uint16_t niveau = L.Lignes[i].Niveau;
  for (uint32_t j = i + 1; j < L.Lignes.size() && L.Lignes[j].Niveau > niveau; ++j)
    if (L.Lignes[j].Niveau == niveau + 1 && Tag(j) == tag) return j;
  return -1;
}

std::string_view TArbreGedcom::ValeurEnfant(uint32_t i, std::string_view tag) const {
  const int64_t j = Enfant(i, tag);
  return j < 0 ? std::string_view() : Valeur(static_cast<uint32_t>(j));
}

int64_t TArbreGedcom::Cherche(std::string_view tag, std::string_view xref) const {
  const int s = Sorte(tag);
  if (s < 0 || xref.empty()) return -1;
  const auto it = Index[s].find(xref);
  return it == Index[s].end() ? -1 : static_cast<int64_t>(it->second);
}

std::string_view TArbreGedcom::Pointeur(std::string_view v) {
  if (v.size() < 3 || v.front() != '@' || v.back() != '@' || v.find(' ') != std::string_view::npos) return {};
  if (v[1] == '#') return {};  // échappement de calendrier, pas une référence
  return v.substr(1, v.size() - 2);
}

}  // namespace rqbase
