// Clés des noms : coût par nom de NormaliseCle, FormatIndex et strSoundex, sur une liste de
// noms tels qu'on les tape (accents, particules, parenthèses, noms composés). Chaque itération
// traite la liste entière ; le compteur « par_nom » donne le coût d'un nom.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "rqbase/index/bo_chn.h"
#include "rqbase/index/soundex.h"

namespace {

using namespace rqbase;

const std::vector<std::string>& Noms() {
  static const std::vector<std::string> noms = {
      "Dupont", "Lefèvre", "de la Tour", "d'Artagnan", "L'Écuyer (dit Martin)", "O'Neil-Smith",
      "Van der Berg", "Martin", "Bernard", "Thomas", "Petit", "Robert", "Richard", "Durand",
      "Dubois", "Moreau", "Laurent", "Simon", "Michel", "Lefebvre-Dupont", "Leroy", "Roux",
      "David", "Bertrand", "Morel", "Fournier", "Girard", "Bonnet", "du Bois de la Motte",
      "Mercier-Lacombe", "Saint-Exupéry", "Hélène", "Jean-Baptiste", "Marie-Thérèse",
      "François Xavier", "Boëldieu", "Cœur", "Ollivier (Olivier)", "Pérez y García", "Le Goff"};
  return noms;
}

// Le temps d'un nom, en secondes (affiché avec son préfixe : « 45n » pour 45 ns).
void Compte(benchmark::State& etat) {
  const double n = static_cast<double>(Noms().size());
  etat.SetItemsProcessed(static_cast<int64_t>(etat.iterations()) * static_cast<int64_t>(Noms().size()));
  etat.counters["par_nom"] = benchmark::Counter(n, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_NormaliseCle(benchmark::State& etat) {
  std::string travail;
  for (auto _ : etat) {
    for (const auto& nom : Noms()) {
      travail = nom;
      benchmark::DoNotOptimize(NormaliseCle(travail));
    }
  }
  Compte(etat);
}
BENCHMARK(BM_NormaliseCle);

void BM_FormatIndex(benchmark::State& etat) {
  for (auto _ : etat)
    for (const auto& nom : Noms()) benchmark::DoNotOptimize(FormatIndex(nom));
  Compte(etat);
}
BENCHMARK(BM_FormatIndex);

void BM_strSoundex(benchmark::State& etat) {
  std::vector<std::string> index;
  for (const auto& nom : Noms()) index.push_back(FormatIndex(nom));
  char code[kTailleSoundex];
  for (auto _ : etat)
    for (const auto& texte : index) benchmark::DoNotOptimize(strSoundex(texte.c_str(), code));
  Compte(etat);
}
BENCHMARK(BM_strSoundex);

}  // namespace
