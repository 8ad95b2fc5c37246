// Mesures des dates : lecture de textes tapés, tri d'un million de dates de
// formes et de calendriers mêlés, conversions républicaines et hébraïques.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "rqbase/dates/analysedate.h"
#include "rqbase/dates/bo_jours.h"
#include "rqbase/dates/conversions.h"

namespace {

using namespace rqbase;

void BM_AnalyseDate(benchmark::State& state) {
  struct {
    const char* texte;
    char calendrier;
  } formes[] = {{"27/10/1969", 'G'}, {"fev 1872", 'G'},     {"15 oct 95", 'G'},    {"1872", 'G'},
                {"27101969", 'G'},   {"1?/10/1969", 'G'},   {"..../1860", 'G'},    {"10 ventose 5", 'R'},
                {"6 comp 3", 'R'},   {"15 nissan 5784", 'H'}, {"32/01/1900", 'G'}, {"Décembre 1789", 'G'}};
  std::size_t i = 0;
  for (auto _ : state) {
    const auto& f = formes[i++ % std::size(formes)];
    std::string date = f.texte;
    benchmark::DoNotOptimize(AnalyseDate(date, f.calendrier, true));
    benchmark::DoNotOptimize(date);
  }
}
BENCHMARK(BM_AnalyseDate);

// Dates de formes mêlées : entières, mois et année, année seule, fourchettes,
// actes de précision, républicaines, hébraïques, avant Jésus-Christ.
std::vector<TDateRQ> DatesMelees(std::size_t nombre, unsigned graine) {
  std::mt19937 alea(graine);
  std::vector<TDateRQ> dates;
  dates.reserve(nombre);
  char t[32];
  for (std::size_t i = 0; i < nombre; ++i) {
    const int a = 1550 + static_cast<int>(alea() % 470), m = 1 + static_cast<int>(alea() % 12),
              j = 1 + static_cast<int>(alea() % 28);
    TDateRQ d;
    switch (alea() % 10) {
      case 0: std::snprintf(t, sizeof t, "../%02d/%04d", m, a); d = TDateRQ('G', t); break;
      case 1: std::snprintf(t, sizeof t, "../../%04d", a); d = TDateRQ('G', t); break;
      case 2: std::snprintf(t, sizeof t, "%04d/%04d", a, a + static_cast<int>(alea() % 20)); d = TDateRQ('G', t); break;
      case 3: std::snprintf(t, sizeof t, "%04d/....", a); d = TDateRQ('G', t); break;
      case 4: std::snprintf(t, sizeof t, "%02d/%02d/%04d", j, m, a); d = TDateRQ('G', t); d.SetActe("ca"); break;
      case 5:
        std::snprintf(t, sizeof t, "%02d/%s/%02d", j, "FLOR", 1 + static_cast<int>(alea() % 14));
        d = TDateRQ('R', t);
        break;
      case 6: std::snprintf(t, sizeof t, "%02d/%02d/%04d", j, m, a + 3760); d = TDateRQ('H', t); break;
      case 7: std::snprintf(t, sizeof t, "%02d/%02d/%04d", j, m, 1 + a % 500); d = TDateRQ('A', t); break;
      default: std::snprintf(t, sizeof t, "%02d/%02d/%04d", j, m, a); d = TDateRQ('G', t); break;
    }
    dates.push_back(d);
  }
  return dates;
}

void BM_CompareDateTri(benchmark::State& state) {
  const auto source = DatesMelees(static_cast<std::size_t>(state.range(0)), 42);
  for (auto _ : state) {
    auto dates = source;
    // Tri stable : l'ordre des fourchettes n'est pas un ordre strict faible.
    std::stable_sort(dates.begin(), dates.end(),
                     [](const TDateRQ& a, const TDateRQ& b) { return TDateRQ::CompareDate(a, b, 0) < 0; });
    benchmark::DoNotOptimize(dates.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CompareDateTri)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_CompareDatePaire(benchmark::State& state) {
  const auto dates = DatesMelees(4096, 7);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(TDateRQ::CompareDate(dates[i % 4096], dates[(i * 7 + 1) % 4096], 0));
    ++i;
  }
}
BENCHMARK(BM_CompareDatePaire);

void BM_GregorienVersRepublicain(benchmark::State& state) {
  std::size_t i = 0;
  char t[16];
  for (auto _ : state) {
    std::snprintf(t, sizeof t, "%02d/%02d/%04d", 1 + static_cast<int>(i % 28), 1 + static_cast<int>(i % 12),
                  1793 + static_cast<int>(i % 12));
    benchmark::DoNotOptimize(ConvGregorienRepublicain(t));
    ++i;
  }
}
BENCHMARK(BM_GregorienVersRepublicain);

void BM_RepublicainVersGregorien(benchmark::State& state) {
  static const char* kCodes[] = {"VEND", "BRUM", "FRIM", "NIVO", "PLUV", "VENT", "GERM", "FLOR", "PRAI", "MESS", "THER", "FRUC"};
  std::size_t i = 0;
  char t[16];
  for (auto _ : state) {
    std::snprintf(t, sizeof t, "%02d/%s/%02d", 1 + static_cast<int>(i % 30), kCodes[i % 12], 1 + static_cast<int>(i % 14));
    benchmark::DoNotOptimize(ConvRepublicainGregorien(t));
    ++i;
  }
}
BENCHMARK(BM_RepublicainVersGregorien);

void BM_GregorienVersHebreu(benchmark::State& state) {
  std::size_t i = 0;
  char t[16];
  for (auto _ : state) {
    std::snprintf(t, sizeof t, "%02d/%02d/%04d", 1 + static_cast<int>(i % 28), 1 + static_cast<int>(i % 12),
                  1600 + static_cast<int>(i % 400));
    benchmark::DoNotOptimize(ConvGregorienHebraique(t));
    ++i;
  }
}
BENCHMARK(BM_GregorienVersHebreu);

void BM_HebreuVersGregorien(benchmark::State& state) {
  std::size_t i = 0;
  char t[16];
  for (auto _ : state) {
    std::snprintf(t, sizeof t, "%02d/%02d/%04d", 1 + static_cast<int>(i % 29), 1 + static_cast<int>(i % 13 == 6 ? 5 : i % 13),
                  5400 + static_cast<int>(i % 400));
    benchmark::DoNotOptimize(ConvHebraiqueGregorien(t));
    ++i;
  }
}
BENCHMARK(BM_HebreuVersGregorien);

}  // namespace
