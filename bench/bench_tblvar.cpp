// TTableTV à un million d'éléments courts : construction par ajouts puis un tri,
// et coût d'une insertion triée dans une table de cette taille.
#include <benchmark/benchmark.h>

#include <string>

#include "../tests/storage/elt_essai.h"

namespace {

using rqbase::TTableTV;
using rqbase::essai::TEltEssai;

std::string Cle(long i) { return "NOM" + std::to_string((i * 2654435761u) % 1000003); }

void BM_AjoutsPuisTri(benchmark::State& state) {
  const long n = state.range(0);
  for (auto _ : state) {
    TTableTV table(1000, 1000, 12);
    for (long i = 0; i < n; ++i) table.Ajoute(TEltEssai(Cle(i), int32_t(i)));
    TEltEssai t1, t2;
    table.Classement(t1, t2);
    benchmark::DoNotOptimize(table.GetNbElt());
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_AjoutsPuisTri)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// Le tri seul : la table est remplie hors mesure, dans l'ordre d'ajout.
void BM_Classement(benchmark::State& state) {
  const long n = state.range(0);
  for (auto _ : state) {
    state.PauseTiming();
    TTableTV table(1000, 1000, 12);
    for (long i = 0; i < n; ++i) table.Ajoute(TEltEssai(Cle(i), int32_t(i)));
    TEltEssai t1, t2;
    state.ResumeTiming();
    table.Classement(t1, t2);
    benchmark::DoNotOptimize(table.GetNbElt());
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_Classement)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_InsertionTriee(benchmark::State& state) {
  const long n = state.range(0);
  TTableTV table(1000, 1000, 12);
  for (long i = 0; i < n; ++i) table.Ajoute(TEltEssai(Cle(i), int32_t(i)));
  TEltEssai t1, t2;
  table.Classement(t1, t2);
  long i = n;
  for (auto _ : state) table.AjouteClasse(TEltEssai(Cle(i++), 0), t1);
}
BENCHMARK(BM_InsertionTriee)->Arg(1000000)->Unit(benchmark::kMicrosecond);

}  // namespace
