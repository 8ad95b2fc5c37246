// Mesures du dossier : écriture d'un million de fiches (écriture immédiate ou non),
// relecture avec et sans le cache, ouverture d'un dossier d'un million de personnes,
// et le coût physique d'un pwrite/pread de 644 octets sur la même machine.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "rqbase/person/gest_pers.h"
#include "racine_temp.h"
#include "rqbase/dossier/gest_fic.h"

namespace {

using namespace rqbase;

using mesure::Racine;

// Écrit n personnes dans un dossier neuf ; rend le chemin du .prs.
std::string RemplitDossier(const std::string& nom, long n, bool immediate) {
  const std::string dossier = Racine().Chemin + "/" + nom + ".rq2";
  std::filesystem::remove_all(dossier);
  TGestFichier gest(dossier + "/" + nom + ".prs", true);
  TFicPersons* fic = gest.FicPersons();
  fic->Fichier()->ChangeEcritureImmediate(immediate);
  TPerson p(fic);
  for (long i = 1; i < n; ++i) {
    p.NouvelleFiche(-3);
    p.SetNom("DUPONT");
    p.SetPrenoms("Jean Marie");
    p.SetSexe(i % 2 ? 'M' : 'F');
    p.Enregistrement();
  }
  fic->Flush();
  return dossier + "/" + nom + ".prs";
}

void BM_EcriturePersonnes(benchmark::State& etat) {
  const long n = etat.range(0);
  const bool immediate = etat.range(1) != 0;
  for (auto _ : etat) RemplitDossier("Ecriture", n, immediate);
  etat.SetItemsProcessed(etat.iterations() * n);
}
// Écriture immédiate : chaque fiche coûte trois écritures synchrones (compte, fiche, en-tête).
BENCHMARK(BM_EcriturePersonnes)->Args({2000, 1})->Args({1000000, 0})->Unit(benchmark::kMillisecond)->Iterations(1);

const std::string& DossierMillion() {
  static const std::string prs = RemplitDossier("Million", 1000000, false);
  return prs;
}

void BM_LecturePersonnes(benchmark::State& etat) {
  const bool viaCache = etat.range(0) != 0;
  TGestFichier gest(DossierMillion());
  TFicPersons* fic = gest.FicPersons();
  const long n = fic->NbPersEffective();
  TPerson p(fic, -3);
  for (auto _ : etat) {
    for (long no = 1; no <= n; ++no) {
      p.Lecture(no, false, 0, viaCache);
      benchmark::DoNotOptimize(p.Enreg.Nom[0]);
    }
  }
  etat.SetItemsProcessed(etat.iterations() * n);
}
BENCHMARK(BM_LecturePersonnes)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(1);

// Relecture des 10 000 premières personnes, toutes dans le cache au second passage.
void BM_LectureCacheChaud(benchmark::State& etat) {
  TGestFichier gest(DossierMillion());
  TPerson p(gest.FicPersons(), -3);
  for (long no = 1; no <= 10000; ++no) p.Lecture(no, false, 0, true);
  for (auto _ : etat)
    for (long no = 1; no <= 10000; ++no) p.Lecture(no, false, 0, true);
  etat.SetItemsProcessed(etat.iterations() * 10000);
}
BENCHMARK(BM_LectureCacheChaud)->Unit(benchmark::kMillisecond);

void BM_OuvertureDossierMillion(benchmark::State& etat) {
  const std::string prs = DossierMillion();
  for (auto _ : etat) {
    TGestFichier gest(prs);
    benchmark::DoNotOptimize(gest.NombrePersonnes());
  }
}
BENCHMARK(BM_OuvertureDossierMillion)->Unit(benchmark::kMillisecond);

void BM_Physique644(benchmark::State& etat) {
  const bool ecriture = etat.range(0) != 0;
  const bool immediate = etat.range(1) != 0;
  const std::string chemin = Racine().Chemin + "/brut.bin";
  auto f = TFichierBrut::Ouvre(chemin, TFichierBrut::TAcces::LectureEcriture,
                               TFichierBrut::TDisposition::OuvreOuCree, immediate);
  char tampon[644] = {};
  f->EcritA(1000 * 644, tampon, 644);
  long i = 0;
  for (auto _ : etat) {
    const int64_t pos = (i++ % 1000) * 644;
    benchmark::DoNotOptimize(ecriture ? f->EcritA(pos, tampon, 644) : f->LitA(pos, tampon, 644));
  }
}
BENCHMARK(BM_Physique644)->ArgNames({"ecriture", "immediat"})->Args({1, 1})->Args({1, 0})->Args({0, 0});

}  // namespace
