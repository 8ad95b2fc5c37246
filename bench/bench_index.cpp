// Mesures de l'index des noms sur des dossiers faits par la bibliothèque (une à trois noms et
// un à trois prénoms par personne) : ModifClef d'un enregistrement, reconstruction de la table
// (ReinitTableIndex) et de la mémoire (ReinitTableIndexBis), ouverture avec le fichier .prx,
// et recherches (exacte, soundex, masque) dont on donne la médiane et le 99e centile.
//
// Les dossiers se font une fois par taille, en mode import, et servent à toutes les mesures.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "racine_temp.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/index/index_personnes.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/datamodulebdd.h"

namespace {

using namespace rqbase;
using mesure::Racine;

// Des noms de famille en nombre (syllabes combinées) : environ 24 000 noms distincts.
std::string NomNo(uint32_t k) {
  static const char* const debut[] = {"DU", "LE", "MAR", "BER", "PE",  "RO",   "GI",   "FOU", "BON", "LAU",
                                      "MO", "DA", "GAR", "CHE", "VIN", "BLAN", "ROUS", "FAU", "NI",  "CO"};
  static const char* const milieu[] = {"",    "PON", "RAN", "TI",  "BER", "LAN", "CHAR", "VAL", "MOU", "RI",
                                       "SON", "DE",  "LI",  "TAR", "GO",  "NO",  "VE",   "BOU", "CA",  "MA"};
  static const char* const fin[] = {"T", "D",  "N",  "RD", "L",  "S",   "X",   "ND",  "GNE", "RT",
                                    "Y", "AU", "IN", "ET", "ON", "OIS", "IER", "EAU", "AC",  "EL"};
  const uint32_t a = k % 20, b = (k / 20) % 20, c = (k / 400) % 20, d = (k / 8000) % 3;
  std::string n = std::string(debut[a]) + milieu[b] + fin[c];
  if (d == 1) n = "DE " + n;  // des particules, comme dans la vie
  if (d == 2) n += "E";
  return n;
}
const char* const kPrenoms[] = {"Jean",     "Marie",      "Pierre",  "Anne",      "Louis",   "Jeanne",
                                "François", "Marguerite", "Jacques", "Catherine", "Joseph",  "Françoise",
                                "Antoine",  "Madeleine",  "Étienne", "Louise",    "Nicolas", "Élisabeth",
                                "Claude",   "Geneviève",  "Michel",  "Suzanne"};

uint32_t Alea(uint64_t& graine) {
  graine = graine * 6364136223846793005ULL + 1442695040888963407ULL;
  return uint32_t(graine >> 33);
}

// Un dossier de n personnes, fait une fois.
struct TDossierMesure {
  std::string Prs;
  long Personnes = 0;
};

const TDossierMesure& Dossier(long n) {
  static std::map<long, TDossierMesure> faits;
  auto it = faits.find(n);
  if (it != faits.end()) return it->second;
  TDossierMesure d;
  d.Prs = Racine().Chemin + "/D" + std::to_string(n) + ".rq2/D" + std::to_string(n) + ".prs";
  {
    TGestFichier gest(d.Prs, true);
    TFicPersons* fic = gest.FicPersons();
    fic->Fichier()->ChangeEcritureImmediate(false);
    gest.ModuleBDD()->BeginImport();
    uint64_t graine = 42;
    TPerson p(fic);
    for (long i = 0; i < n; ++i) {
      p.NouvelleFiche(-3);
      std::string nom, prenoms;
      const int nn = 1 + int(Alea(graine) % 3), np = 1 + int(Alea(graine) % 3);
      for (int k = 0; k < nn; ++k) nom += (k ? ";" : "") + NomNo(Alea(graine) % 24000);
      for (int k = 0; k < np; ++k) prenoms += std::string(k ? " " : "") + kPrenoms[Alea(graine) % 22];
      p.SetNom(nom.substr(0, 100));
      p.SetPrenoms(prenoms.substr(0, 70));
      p.SetSexe(i % 2 ? 'M' : 'F');
      p.Enregistrement();
    }
    gest.ModuleBDD()->EndImport();
    gest.EcritureEntete();
    fic->Flush();
    d.Personnes = n;
  }
  return faits.emplace(n, d).first->second;
}

// La table de l'index refaite depuis les personnes (rows/s).
void BM_ReinitTableIndex(benchmark::State& etat) {
  const TDossierMesure& d = Dossier(etat.range(0));
  long lignes = 0;
  for (auto _ : etat) {
    TGestFichier gest(d.Prs);
    TFicIndexPerson& index = *gest.FicIndexPerson();
    gest.ModuleBDD()->BeginImport();
    index.ReinitTableIndex();
    gest.ModuleBDD()->EndImport();
    lignes = index.LectureEntete();
    index.Table();  // la mémoire aussi, gardée dans le fichier à la fermeture
  }
  etat.counters["lignes"] = double(lignes);
  etat.counters["lignes_par_s"] = benchmark::Counter(double(lignes), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ReinitTableIndex)->Arg(100000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// La mémoire refaite depuis la table (fichier absent ou abîmé).
void BM_ReinitTableIndexBis(benchmark::State& etat) {
  const TDossierMesure& d = Dossier(etat.range(0));
  TGestFichier gest(d.Prs, false, false, false, false, 0, mcFormulaire, true);
  TFicIndexPerson& index = *gest.FicIndexPerson();
  for (auto _ : etat) index.ReinitTableIndexBis();
  etat.counters["lignes"] = double(index.Table().GetNbElt());
}
BENCHMARK(BM_ReinitTableIndexBis)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// Ouvrir le dossier et charger la mémoire depuis le fichier .prx (après BM_ReinitTableIndex).
void BM_OuvertureAvecIndex(benchmark::State& etat) {
  const TDossierMesure& d = Dossier(etat.range(0));
  bool duFichier = false;
  for (auto _ : etat) {
    TGestFichier gest(d.Prs, false, false, false, false, 0, mcFormulaire, true);
    TFicIndexPerson& index = *gest.FicIndexPerson();
    benchmark::DoNotOptimize(index.Table().GetNbElt());
    duFichier = index.ChargeeDuFichier();
  }
  etat.counters["du_fichier"] = duFichier ? 1 : 0;
}
BENCHMARK(BM_OuvertureAvecIndex)->Arg(1000000)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

// Recherches sur la mémoire d'un million de personnes : chaque recherche est chronométrée
// seule ; médiane et 99e centile en microsecondes.
void Recherches(benchmark::State& etat, int genre) {
  const TDossierMesure& d = Dossier(1000000);
  TGestFichier gest(d.Prs, false, false, false, false, 0, mcFormulaire, true);
  TGestEltIndex& table = gest.FicIndexPerson()->Table();
  std::vector<double> durees;
  long trouves = 0;
  uint64_t graine = 7;
  for (auto _ : etat) {
    for (int i = 0; i < (genre == 1 ? 40 : 400); ++i) {
      TGestEltIndex::TRechSimple rs;
      const std::string nom = NomNo(Alea(graine) % 24000);
      if (genre == 0) rs.Nom = nom;
      if (genre == 1) {
        rs.Nom = nom;
        rs.SoundexNom = true;
      }
      if (genre == 2) rs.Nom = nom.substr(0, 4) + "*";
      std::vector<long> numeros;
      const auto t0 = std::chrono::steady_clock::now();
      table.RechercheSimple(rs, nullptr, &numeros);
      durees.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count());
      trouves += long(numeros.size());
    }
  }
  std::sort(durees.begin(), durees.end());
  etat.counters["mediane_us"] = durees[durees.size() / 2];
  etat.counters["p99_us"] = durees[std::min(durees.size() - 1, durees.size() * 99 / 100)];
  etat.counters["personnes_par_recherche"] = double(trouves) / double(durees.size());
}
void BM_RechercheExacte(benchmark::State& etat) {
  Recherches(etat, 0);
}
void BM_RechercheSoundex(benchmark::State& etat) {
  Recherches(etat, 1);
}
void BM_RechercheMasque(benchmark::State& etat) {
  Recherches(etat, 2);
}
BENCHMARK(BM_RechercheExacte)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RechercheSoundex)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RechercheMasque)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

// Un enregistrement : ModifClef sur un dossier de 100 000 personnes, mémoire chargée, hors
// import (écriture sûre, synchronous=FULL) : prénoms changés puis remis.
void BM_ModifClef(benchmark::State& etat) {
  const TDossierMesure& d = Dossier(100000);
  TGestFichier gest(d.Prs);
  TFicIndexPerson& index = *gest.FicIndexPerson();
  index.Table();
  TPerson p(gest.FicPersons(), 5000);
  const std::string avant(p.Enreg.Prenoms);
  bool bascule = false;
  for (auto _ : etat) {
    p.SetPrenoms(bascule ? avant : "Zoé Yvonne");
    bascule = !bascule;
    index.ModifClef(&p, true);
  }
  p.SetPrenoms(avant);
  index.ModifClef(&p, true);
  etat.counters["lignes_en_memoire"] = double(index.Table().GetNbElt());
}
BENCHMARK(BM_ModifClef)->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(2.0);

}  // namespace
