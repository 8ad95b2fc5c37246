#include "rqbase/platform/ressources.h"

#include <algorithm>
#include <vector>

namespace rqbase {
namespace {

// Textes des noms. 1800 : les particules, en capitales, chacune entre deux blancs ; "D" et "L"
// sont les formes élidées (d', l'), dont l'apostrophe sépare ou est ôtée avant la recherche.
constexpr TTexteRessource kTextesNoms[] = {
    {1800, " D DE DES DU L LA LE LES DA DAL DAS DEL DELLA DELLE DEN DER DI DO DOS TEN TER VAN VON "},
};

const std::vector<TTexteRessource>& Table() {
  static const std::vector<TTexteRessource> table = [] {
    std::vector<TTexteRessource> t;
    for (auto domaine : {TextesDossier(), TextesCalendriers(), TextesCatalogue(),
                         std::span<const TTexteRessource>(kTextesNoms)})
      t.insert(t.end(), domaine.begin(), domaine.end());
    // Tri stable : si deux domaines donnaient le même numéro, le premier resterait.
    std::stable_sort(t.begin(), t.end(),
                     [](const TTexteRessource& a, const TTexteRessource& b) { return a.numero < b.numero; });
    return t;
  }();
  return table;
}

const TTexteRessource* Cherche(int numero) {
  const auto& t = Table();
  auto it = std::lower_bound(t.begin(), t.end(), numero,
                             [](const TTexteRessource& e, int n) { return e.numero < n; });
  return (it != t.end() && it->numero == numero) ? &*it : nullptr;
}

}  // namespace

std::string Ressource(int numero) {
  const auto* e = Cherche(numero);
  return e ? std::string(e->texte) : std::string();
}

bool RessourceExiste(int numero) { return Cherche(numero) != nullptr; }

}  // namespace rqbase
