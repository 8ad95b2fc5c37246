// Mesures des personnes avec leurs événements : l'ajout en mode import (fiche et trois
// événements par personne, le débit que demande un import GEDCOM), et la lecture d'une
// personne avec ses listes, par le cache (chaude) ou du disque et de la base (froide).
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "racine_temp.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/datamodulebdd.h"

namespace {

using namespace rqbase;
using mesure::Racine;

// Ajoute n personnes de trois événements chacune, en mode import, dans un dossier neuf.
void RemplitAvecEvenements(TGestFichier& gest, long n) {
  TFicPersons* fic = gest.FicPersons();
  fic->Fichier()->ChangeEcritureImmediate(false);
  TModuleBDD* bdd = gest.ModuleBDD();
  bdd->BeginImport();
  TPerson p(fic);
  static const char* const kLibelles[] = {"NAISSANCE", "BAPTEME", "DECES"};
  for (long i = 0; i < n; ++i) {
    p.NouvelleFiche(-3);
    p.SetNom("DUPONT");
    p.SetPrenoms("Jean Marie");
    p.SetSexe(i % 2 ? 'M' : 'F');
    p.NouvelleFicheComplementaire();
    for (int k = 0; k < 3; ++k) {
      TEvenement e(bdd);
      e.Enreg.SetLibelle(kLibelles[k]);
      e.Enreg.Date = TDateRQ('G', "01/02/" + std::to_string(1800 + (i + k) % 200));
      e.Enreg.NoPersA = p.No();
      p.AjoutEven(&e, true, false, false);
    }
    p.Enregistrement();
  }
  bdd->EndImport();
  fic->Flush();
}

std::string NouveauDossier(const std::string& nom) {
  const std::string dossier = Racine().Chemin + "/" + nom + ".rq2";
  std::filesystem::remove_all(dossier);
  return dossier + "/" + nom + ".prs";
}

void BM_ImportPersonnesEvenements(benchmark::State& etat) {
  const long n = etat.range(0);
  for (auto _ : etat) {
    TGestFichier gest(NouveauDossier("Import" + std::to_string(n)), true);
    RemplitAvecEvenements(gest, n);
  }
  etat.SetItemsProcessed(etat.iterations() * n);
}
BENCHMARK(BM_ImportPersonnesEvenements)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);

const std::string& DossierCentMille() {
  static const std::string prs = [] {
    const std::string chemin = NouveauDossier("Lecture");
    TGestFichier gest(chemin, true);
    RemplitAvecEvenements(gest, 100000);
    return chemin;
  }();
  return prs;
}

// Chaude : la même personne relue par le cache, listes comprises.
void BM_LecturePersonneChaude(benchmark::State& etat) {
  TGestFichier gest(DossierCentMille());
  TPerson p(gest.FicPersons());
  for (auto _ : etat) {
    p.Lecture(5000, true, 0, true);
    benchmark::DoNotOptimize(p.Evens());
  }
}
BENCHMARK(BM_LecturePersonneChaude)->Unit(benchmark::kMicrosecond);

// Froide : chaque lecture prend une personne différente, du disque et de la base.
void BM_LecturePersonneFroide(benchmark::State& etat) {
  TGestFichier gest(DossierCentMille());
  TPerson p(gest.FicPersons());
  long no = 1;
  for (auto _ : etat) {
    no = no % 99000 + 7;
    p.Lecture(no, true);
    benchmark::DoNotOptimize(p.Evens());
  }
}
BENCHMARK(BM_LecturePersonneFroide)->Unit(benchmark::kMicrosecond);

}  // namespace
