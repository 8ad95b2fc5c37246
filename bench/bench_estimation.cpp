// Mesure de l'estimation des dates de vie d'une personne qui a ses deux parents, une épouse,
// dix enfants et trois frères et soeurs, tous avec une naissance datée, et quelques faits
// datés à elle : chaque tour est une estimation entière (passes des proches comprises), sans
// cache d'estimations, proches lus par le cache des personnes et leurs événements par la base.
// À titre de comparaison : la même avec un cache d'estimations déjà rempli (série), et
// l'estimation simple (sans les proches) ; et le débit de FourchetteDeVie sur tout le dossier,
// ce que l'index des noms paie à sa reconstruction.
//
// Le dossier est fait une fois dans le dossier temporaire des mesures.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "personne_essai.h"
#include "racine_temp.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/person/estimation_personne.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/liaisons.h"
#include "rqbase/storage/datamodulebdd.h"

namespace {

using namespace rqbase;

struct TFamille {
  std::unique_ptr<TGestFichier> Gest;
  long Moi = 0;
};

void Evenement(TGestFichier& gest, long no, const char* libelle, int annee, long conjoint = 0) {
  essai::AjouteFait(gest.FicPersons(), gest.ModuleBDD(), no,
                    {.Libelle = libelle, .Date = "15/06/" + std::to_string(annee), .Conjoint = conjoint});
}

TFamille& Famille() {
  static TFamille f = [] {
    TFamille r;
    const std::string prs = mesure::Racine().Chemin + "/Estimation.rq2/Estimation.prs";
    r.Gest = std::make_unique<TGestFichier>(prs, true);
    TGestFichier& g = *r.Gest;
    TFicPersons* fic = g.FicPersons();
    const long pere = essai::AjoutePersonne(fic, "PERE", 'M'), mere = essai::AjoutePersonne(fic, "MERE", 'F');
    Evenement(g, pere, "NAISSANCE", 1790);
    Evenement(g, mere, "NAISSANCE", 1795);
    r.Moi = essai::AjoutePersonne(fic, "MOI", 'M');
    LieParent(*fic, pere, r.Moi, true);
    LieParent(*fic, mere, r.Moi, false);
    for (int i = 0; i < 3; ++i) {
      const long frere = essai::AjoutePersonne(fic, "FRERE" + std::to_string(i), i % 2 ? 'F' : 'M');
      LieParent(*fic, pere, frere, true);
      LieParent(*fic, mere, frere, false);
      Evenement(g, frere, "NAISSANCE", 1818 + 4 * i);
    }
    const long epouse = essai::AjoutePersonne(fic, "EPOUSE", 'F');
    LieConjoints(*fic, r.Moi, epouse, false);
    Evenement(g, epouse, "NAISSANCE", 1825);
    Evenement(g, r.Moi, "UNION", 1845, epouse);
    Evenement(g, r.Moi, "RESIDENCE", 1850);
    Evenement(g, r.Moi, "RESIDENCE", 1870);
    for (int i = 0; i < 10; ++i) {
      const long enfant = essai::AjoutePersonne(fic, "ENFANT" + std::to_string(i), i % 2 ? 'F' : 'M');
      LieParent(*fic, r.Moi, enfant, true);
      LieParent(*fic, epouse, enfant, false);
      Evenement(g, enfant, "NAISSANCE", 1846 + 2 * i);
    }
    return r;
  }();
  return f;
}

void BM_EstimationEntiere(benchmark::State& state) {
  TFamille& f = Famille();
  for (auto _ : state) {
    TEstimationPersonne e;
    e.EstimePersonne(f.Moi, f.Gest->FicPersons());
    benchmark::DoNotOptimize(e.IntervalDeces);
  }
}
BENCHMARK(BM_EstimationEntiere)->Unit(benchmark::kMicrosecond);

void BM_EstimationAvecCacheRempli(benchmark::State& state) {
  TFamille& f = Famille();
  TEstimationCalculee cache;
  for (auto _ : state) {
    TEstimationPersonne e(&cache);
    e.EstimePersonne(f.Moi, f.Gest->FicPersons());
    benchmark::DoNotOptimize(e.IntervalDeces);
  }
}
BENCHMARK(BM_EstimationAvecCacheRempli)->Unit(benchmark::kMicrosecond);

void BM_EstimationSimple(benchmark::State& state) {
  TFamille& f = Famille();
  for (auto _ : state) {
    TEstimationPersonne e;
    e.EstimePersonne(f.Moi, f.Gest->FicPersons(), true);
    benchmark::DoNotOptimize(e.IntervalDeces);
  }
}
BENCHMARK(BM_EstimationSimple)->Unit(benchmark::kMicrosecond);

// Ce que l'index des noms paie par personne (FourchetteDeVie, estimation entière) sur toutes
// les personnes du dossier, à la suite : items/s donne le débit d'une reconstruction.
void BM_FourchetteDeVieToutLeDossier(benchmark::State& state) {
  TFamille& f = Famille();
  TFicPersons* fic = f.Gest->FicPersons();
  const long n = fic->NbPersEffective();
  TPerson p(fic, -3);
  for (auto _ : state) {
    for (long no = 1; no <= n; ++no) {
      p.Lecture(no, false, 0, true);
      float min = 0, max = 0;
      benchmark::DoNotOptimize(FourchetteDeVie(p, min, max));
    }
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_FourchetteDeVieToutLeDossier)->Unit(benchmark::kMicrosecond);

}  // namespace
