// Mesures de la base relationnelle : l'envoi de lignes d'événements dans la
// transaction d'import (validée tous les mille envois) et hors import
// (synchronous=FULL : une écriture durable par ligne), la lecture d'une clé de
// TabInformations.
#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>

#include "rqbase/storage/datamodulebdd.h"

namespace {

namespace fs = std::filesystem;
using rqbase::TModuleBDD;

struct TBaseMesure {
  TBaseMesure() {
    Dossier = fs::temp_directory_path() / ("rq_bench_bdd_" + std::to_string(::getpid()));
    fs::remove_all(Dossier);
    Bdd = std::make_unique<TModuleBDD>((Dossier / "Mesure.adb").string(), "5.90");
    Bdd->CreateDataBase();
    Bdd->OpenDataBase();
  }
  ~TBaseMesure() {
    Bdd.reset();
    fs::remove_all(Dossier);
  }
  // Une ligne d'événement complète, comme l'écrit l'enregistrement d'un événement.
  void Poste(long no) {
    SQLite::Statement& q = Bdd->Requete(
        "INSERT INTO Evenements (Type, LibelleChamps, Donnee, NoPersA, NoPersB, Acte, TypeCalend, \"Date\", Lieu,"
        " LieuDit, Note, NoIllustrationParDefaut, LienExtEven, _DONNEE, _DATE, RANG_A, RANG_B, DateLastModif)"
        " VALUES (0, ?, ?, ?, 0, ' ', 'G', ?, ?, ?, 0, 0, 0, ?, ?, 1, 0, 45000.5)");
    TModuleBDD::LieTexte(q, 1, "NAISSANCE");
    TModuleBDD::LieTexte(q, 2, "Né à la maison");
    q.bind(3, static_cast<int>(no));
    TModuleBDD::LieTexte(q, 4, "01/02/1850");
    q.bind(5, static_cast<int>(no % 5000));
    TModuleBDD::LieTexte(q, 6, "Le Bourg");
    TModuleBDD::LieTexte(q, 7, "NE A LA MAISON");
    q.bind(8, static_cast<int>(1850 * 365 + no % 365));
    Bdd->PostInTable(q);
  }
  fs::path Dossier;
  std::unique_ptr<TModuleBDD> Bdd;
};

void BM_ImportEvenements(benchmark::State& etat) {
  const long n = etat.range(0);
  for (auto _ : etat) {
    etat.PauseTiming();
    auto base = std::make_unique<TBaseMesure>();
    etat.ResumeTiming();
    base->Bdd->BeginImport();
    for (long i = 1; i <= n; ++i) base->Poste(i);
    base->Bdd->EndImport();
    etat.PauseTiming();
    base.reset();
    etat.ResumeTiming();
  }
  etat.SetItemsProcessed(etat.iterations() * n);
}
BENCHMARK(BM_ImportEvenements)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_EnvoiHorsImport(benchmark::State& etat) {
  TBaseMesure base;
  long i = 0;
  for (auto _ : etat) base.Poste(++i);
  etat.SetItemsProcessed(etat.iterations());
}
BENCHMARK(BM_EnvoiHorsImport)->Unit(benchmark::kMicrosecond);

void BM_GetInfoChps(benchmark::State& etat) {
  TBaseMesure base;
  base.Bdd->MAJInfoChps("INDEXNAME", "UPDATED");
  for (auto _ : etat) benchmark::DoNotOptimize(base.Bdd->GetInfoChps("INDEXNAME"));
}
BENCHMARK(BM_GetInfoChps);

}  // namespace
