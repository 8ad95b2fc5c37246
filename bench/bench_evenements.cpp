// Mesures des événements dans la base : charger les listes d'une personne, enregistrer une
// personne inchangée (aucune ligne écrite) puis changée, et l'import comparé à des
// insertions directes par SQLite (requête préparée, une transaction, mêmes index).
//
// La base mesurée est faite par la bibliothèque elle-même, en import : RQ_BENCH_LIGNES
// lignes (cinq millions par défaut) : chaque personne a sept événements et deux champs
// simples, et deux voisines partagent une union (19 lignes pour deux, dix chargées par
// personne). Elle est gardée dans le dossier temporaire sous un nom qui
// porte son compte, et refaite seulement si elle manque ou n'a pas été finie.
#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "rqbase/person/gest_pers.h"
#include "rqbase/person/liste_evenements.h"
#include "rqbase/storage/datamodulebdd.h"

namespace {

namespace fs = std::filesystem;
using namespace rqbase;

long LignesVoulues() {
  const char* v = std::getenv("RQ_BENCH_LIGNES");
  const long n = v ? std::atol(v) : 5'000'000L;
  return n >= 100 ? n : 5'000'000L;
}

const char* const kLibelles[] = {"NAISSANCE", "BAPTEME",    "RECENSEMENT", "RESIDENCE",
                                 "DECES",     "INHUMATION", "TESTAMENT"};

// Les lignes d'une personne, comme un import les donne.
void EcritPersonne(TModuleBDD& bdd, long no) {
  int rang = 0;
  for (const char* libelle : kLibelles) {
    TEvenement ev(&bdd);
    ev.Enreg.SetLibelle(libelle);
    ev.Enreg.SetDonnee("donnée de la personne " + std::to_string(no));
    ev.Enreg.NoPersA = no;
    ev.Enreg.Date = TDateRQ('G', "12/03/" + std::to_string(1700 + no % 250));
    ev.Enreg.Lieu = no % 5000;
    ev.Enreg.SetLieuDit("Le Bourg");
    ev.SetNoPersRang(no, ++rang);
    bdd.EnregistrementEven(&ev);
  }
  // L'union : portée par le numéro pair, au rang 8 chez les deux.
  if (no % 2 == 0) {
    TEvenement u(&bdd);
    u.Enreg.SetLibelle("MARIAGE");
    u.Enreg.NoPersA = no;
    u.Enreg.NoPersB = no - 1;
    u.Enreg.Date = TDateRQ('G', "../06/" + std::to_string(1720 + no % 250));
    u.SetNoPersRang(no, 8);
    bdd.EnregistrementEven(&u);
    u.SetNoPersRang(no - 1, 8);
    bdd.SetEvenement(&u, true);
  }
  for (int i = 0; i < 2; ++i) {
    TChpsSimple c(&bdd);
    c.Enreg.SetLibelle(i == 0 ? "PROFESSION" : "TITRE");
    c.Enreg.SetDonnee("laboureur");
    c.Enreg.NoPersA = no;
    c.SetNoPersRang(no, i + 1);
    bdd.EnregistrementChpsSimple(&c);
  }
}

struct TBaseEvenements {
  TBaseEvenements() {
    Lignes = LignesVoulues();
    // Deux personnes voisines font 2 x 9 lignes à elles et une union : 19 lignes.
    Personnes = Lignes * 2 / 19 / 2 * 2;
    Dossier = fs::temp_directory_path() / ("rq_bench_evens_" + std::to_string(Lignes));
    Adb = (Dossier / "Mesure.adb").string();
    Ouvre();
    if (Bdd->GetInfoChps("BENCH") != std::to_string(Lignes)) {
      Bdd.reset();
      fs::remove_all(Dossier);
      Ouvre();
      const auto debut = std::chrono::steady_clock::now();
      Bdd->BeginImport();
      for (long no = 1; no <= Personnes; ++no) EcritPersonne(*Bdd, no);
      Bdd->EndImport();
      Bdd->MAJInfoChps("BENCH", std::to_string(Lignes));
      SecondesConstruction = std::chrono::duration<double>(std::chrono::steady_clock::now() - debut).count();
    }
  }
  void Ouvre() {
    Bdd = std::make_unique<TModuleBDD>(Adb, "5.90");
    Bdd->CreateDataBase();
    Bdd->OpenDataBase();
  }
  long Lignes = 0, Personnes = 0;
  double SecondesConstruction = 0;
  fs::path Dossier;
  std::string Adb;
  std::unique_ptr<TModuleBDD> Bdd;
};

TBaseEvenements& Base() {
  static TBaseEvenements base;
  return base;
}

// Une personne de la base, sans fichier des personnes : ses listes seulement.
TPerson Personne(long no) {
  TPerson p(static_cast<TFicPersons*>(nullptr));
  p.NouvelleFiche(no);
  return p;
}

void BM_ChargerPersonneAuHasard(benchmark::State& etat) {
  TBaseEvenements& b = Base();
  std::mt19937 hasard(42);
  std::uniform_int_distribution<long> tirage(1, b.Personnes);
  long evens = 0;
  for (auto _ : etat) {
    TPerson p = Personne(tirage(hasard));
    TListesChps l;
    ChargerLienChpsOfPerson(*b.Bdd, p, l);
    evens += l.Evens->GetNbElt() + l.Chps->GetNbElt();
  }
  etat.counters["lignes_par_personne"] =
      benchmark::Counter(static_cast<double>(evens), benchmark::Counter::kAvgIterations);
  etat.counters["lignes_base"] = static_cast<double>(b.Lignes);
  if (b.SecondesConstruction > 0) etat.counters["construction_s"] = b.SecondesConstruction;
}
BENCHMARK(BM_ChargerPersonneAuHasard)->Unit(benchmark::kMicrosecond);

void BM_ChargerPersonneChaude(benchmark::State& etat) {
  TBaseEvenements& b = Base();
  const long no = b.Personnes / 2;
  for (auto _ : etat) {
    TPerson p = Personne(no);
    TListesChps l;
    ChargerLienChpsOfPerson(*b.Bdd, p, l);
    benchmark::DoNotOptimize(l.Evens->GetNbElt());
  }
}
BENCHMARK(BM_ChargerPersonneChaude)->Unit(benchmark::kMicrosecond);

void BM_EnregistrerPersonneInchangee(benchmark::State& etat) {
  TBaseEvenements& b = Base();
  TPerson p = Personne(b.Personnes / 2 + 2);
  TListesChps l;
  ChargerLienChpsOfPerson(*b.Bdd, p, l);
  EnregistrerChpsOfPerson(*b.Bdd, p, l);  // une première fois : rangs et colonnes dérivées d'aplomb
  long ecrites = 0;
  for (auto _ : etat) ecrites += EnregistrerChpsOfPerson(*b.Bdd, p, l);
  if (ecrites != 0) etat.SkipWithError("une personne inchangée a écrit des lignes");
  etat.counters["lignes_ecrites"] = static_cast<double>(ecrites);
}
BENCHMARK(BM_EnregistrerPersonneInchangee)->Unit(benchmark::kMicrosecond);

void BM_EnregistrerPersonneChangee(benchmark::State& etat) {
  TBaseEvenements& b = Base();
  TPerson p = Personne(b.Personnes / 2 + 4);
  TListesChps l;
  ChargerLienChpsOfPerson(*b.Bdd, p, l);
  long ecrites = 0, tour = 0;
  for (auto _ : etat) {
    l.Evens->Lit(0)->Enreg.SetDonnee("changée " + std::to_string(++tour));
    ecrites += EnregistrerChpsOfPerson(*b.Bdd, p, l);
  }
  etat.counters["lignes_par_enregistrement"] =
      benchmark::Counter(static_cast<double>(ecrites), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_EnregistrerPersonneChangee)->Unit(benchmark::kMicrosecond);

// --- Import comparé aux insertions directes ---

constexpr long kLignesImport = 200'000;

struct TBaseVide {
  explicit TBaseVide(const char* nom) {
    Dossier = fs::temp_directory_path() / ("rq_bench_import_" + std::to_string(::getpid()) + nom);
    fs::remove_all(Dossier);
    Bdd = std::make_unique<TModuleBDD>((Dossier / "Vide.adb").string(), "5.90");
    Bdd->CreateDataBase();
    Bdd->OpenDataBase();
  }
  ~TBaseVide() {
    Bdd.reset();
    fs::remove_all(Dossier);
  }
  fs::path Dossier;
  std::unique_ptr<TModuleBDD> Bdd;
};

// Par la bibliothèque : objets, numéros de l'import, colonnes dérivées, paquets de mille.
void BM_ImportParLaBibliotheque(benchmark::State& etat) {
  for (auto _ : etat) {
    etat.PauseTiming();
    auto vide = std::make_unique<TBaseVide>("_bib");
    TBaseVide& v = *vide;
    etat.ResumeTiming();
    v.Bdd->BeginImport();
    for (long i = 0; i < kLignesImport; ++i) {
      TEvenement ev(v.Bdd.get());
      ev.Enreg.SetLibelle(kLibelles[i % 7]);
      ev.Enreg.SetDonnee("donnée de la personne " + std::to_string(i / 10));
      ev.Enreg.NoPersA = i / 10 + 1;
      ev.Enreg.Date = TDateRQ('G', "12/03/" + std::to_string(1700 + i % 250));
      ev.Enreg.Lieu = i % 5000;
      ev.Enreg.SetLieuDit("Le Bourg");
      ev.SetNoPersRang(i / 10 + 1, static_cast<int>(i % 10) + 1);
      v.Bdd->EnregistrementEven(&ev);
    }
    v.Bdd->EndImport();
    etat.PauseTiming();
    vide.reset();
    etat.ResumeTiming();
  }
  etat.counters["lignes_par_s"] =
      benchmark::Counter(static_cast<double>(kLignesImport), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_ImportParLaBibliotheque)->Unit(benchmark::kMillisecond)->Iterations(3);

// Directement : une requête préparée, une transaction, les mêmes lignes déjà calculées.
void BM_ImportDirectSQLite(benchmark::State& etat) {
  for (auto _ : etat) {
    etat.PauseTiming();
    auto vide = std::make_unique<TBaseVide>("_direct");
    TBaseVide& v = *vide;
    etat.ResumeTiming();
    SQLite::Database& base = v.Bdd->Base();
    {
      SQLite::Transaction tr(base);
      SQLite::Statement q(base,
                          "INSERT INTO Evenements (Type, LibelleChamps, Donnee, NoPersA, NoPersB, Acte, TypeCalend, "
                          "\"Date\", Lieu, LieuDit, Note, NoIllustrationParDefaut, LienExtEven, _DONNEE, _DATE, "
                          "RANG_A, RANG_B) VALUES (0, ?, ?, ?, 0, '', 'G', ?, ?, 'Le Bourg', 0, 0, 0, ?, ?, ?, 0)");
      for (long i = 0; i < kLignesImport; ++i) {
        const std::string donnee = "donnée de la personne " + std::to_string(i / 10);
        const std::string annee = std::to_string(1700 + i % 250);
        q.bind(1, kLibelles[i % 7]);
        q.bind(2, donnee);
        q.bind(3, static_cast<int64_t>(i / 10 + 1));
        q.bind(4, "12/03/" + annee);
        q.bind(5, static_cast<int64_t>(i % 5000));
        q.bind(6, donnee.substr(0, 20));
        q.bind(7, static_cast<int64_t>(std::stol(annee) * 10000 + 312));
        q.bind(8, static_cast<int64_t>(i % 10 + 1));
        q.exec();
        q.reset();
      }
      tr.commit();
    }
    etat.PauseTiming();
    vide.reset();
    etat.ResumeTiming();
  }
  etat.counters["lignes_par_s"] =
      benchmark::Counter(static_cast<double>(kLignesImport), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_ImportDirectSQLite)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
