// Un fichier de lieux de cent mille valeurs : ouverture (lecture, tri, index) et recherche.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "racine_temp.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/storage/contexte_dossier.h"

namespace {

using namespace rqbase;

// Un .lie écrit octet par octet comme le fichier le tient, dans le désordre des numéros.
std::string FichierDeLieux(long n) {
  static std::string chemin;
  if (!chemin.empty()) return chemin;
  const std::string dossier = mesure::Racine().Chemin;
  std::filesystem::create_directories(dossier + "/L.rq2");
  chemin = dossier + "/L.rq2/L.prs";
  std::ofstream f(dossier + "/L.rq2/L.lie", std::ios::binary);
  TEnregDupli e{};
  std::snprintf(e.Ville, sizeof e.Ville, "%ld", n);
  e.Etat = 'N';
  f.write(reinterpret_cast<const char*>(&e), sizeof e);
  for (long i = 1; i <= n; ++i) {
    TEnregDupli r{};
    std::snprintf(r.Ville, sizeof r.Ville, "Commune %06lu;Région %lu", (i * 2654435761u) % 1000003, i % 97);
    std::snprintf(r.Code, sizeof r.Code, "%05ld", i % 99999);
    std::strcpy(r.Pays, "France");
    r.Etat = 'N';
    f.write(reinterpret_cast<const char*>(&r), sizeof r);
  }
  return chemin;
}

void BM_OuvertureLie(benchmark::State& state) {
  const std::string prs = FichierDeLieux(state.range(0));
  TContexteDossier contexte(prs, true);
  for (auto _ : state) {
    TFicDupli lie(&contexte, tfLie, false);
    benchmark::DoNotOptimize(lie.NbFiches());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_OuvertureLie)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_ChercheLie(benchmark::State& state) {
  TContexteDossier contexte(FichierDeLieux(state.range(0)), true);
  TFicDupli lie(&contexte, tfLie, false);
  long i = 0;
  for (auto _ : state) {
    char ville[64];
    std::snprintf(ville, sizeof ville, "Commune %06lu", (++i * 7919u) % 1000003);
    TEltDupChn e(0, ville, "00001", ("Région " + std::to_string(i % 97)).c_str(), "France");
    benchmark::DoNotOptimize(lie.Cherche(&e, false));
  }
}
BENCHMARK(BM_ChercheLie)->Arg(100000);

}  // namespace
