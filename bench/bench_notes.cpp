// Mesures des notes : écriture et relecture d'une note de 14 Mo dans un vrai dossier
// (écriture immédiate, comme la commande), lecture de 100 000 notes courtes, et le décapage
// RTF d'un texte de 14 Mo par les deux convertisseurs.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "racine_temp.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/notes/conv_rtf_txt.h"
#include "rqbase/notes/fic_notes.h"
#include "rqbase/notes/lecteur_rtf.h"
#include "rqbase/notes/note.h"

namespace {

using namespace rqbase;

using mesure::Racine;

std::string Prs(const std::string& nom) { return Racine().Chemin + "/" + nom + ".rq2/" + nom + ".prs"; }

// Un texte RTF de `taille` octets, en lignes de paragraphe.
std::string TexteRtf(size_t taille) {
  std::string t = "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0 ";
  for (int i = 0; t.size() < taille; ++i)
    t += "Ligne " + std::to_string(i) + " : Jean \\b Dupont\\b0 , n\\'e9 \\'e0 Paris.\\par\r\n";
  t.resize(taille - 1);
  return t + "}";
}

void BM_EcritureNote14Mo(benchmark::State& etat) {
  const std::string texte = TexteRtf(14'000'000);
  for (auto _ : etat) {
    etat.PauseTiming();
    std::filesystem::remove_all(Racine().Chemin + "/Ecrit.rq2");
    auto gest = std::make_unique<TGestFichier>(Prs("Ecrit"), true);
    etat.ResumeTiming();
    TNote note(gest->FicNotes(), 0);
    std::string copie = texte;
    note.ModifNote("Longue", copie);
    gest->EcritureEntete();
    if (gest->EcritureRatee()) etat.SkipWithError("écriture ratée");
  }
  etat.SetBytesProcessed(static_cast<int64_t>(etat.iterations() * texte.size()));
}
BENCHMARK(BM_EcritureNote14Mo)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LectureNote14Mo(benchmark::State& etat) {
  const std::string texte = TexteRtf(14'000'000);
  std::filesystem::remove_all(Racine().Chemin + "/Lit.rq2");
  long entete = 0;
  {
    TGestFichier gest(Prs("Lit"), true);
    TNote note(gest.FicNotes(), 0);
    std::string copie = texte;
    note.ModifNote("Longue", copie);
    entete = note.NoFiche;
  }
  TGestFichier gest(Prs("Lit"), false, false, false, false, 0, mcLectureSeule, true);
  for (auto _ : etat) {
    TNote note(gest.FicNotes(), entete);
    const std::string lu = note.LectureNote("Longue");
    if (lu.size() != texte.size()) etat.SkipWithError("note relue incomplète");
    benchmark::DoNotOptimize(lu.data());
  }
  etat.SetBytesProcessed(static_cast<int64_t>(etat.iterations() * texte.size()));
}
BENCHMARK(BM_LectureNote14Mo)->Unit(benchmark::kMillisecond);

void BM_Lecture100000Notes(benchmark::State& etat) {
  constexpr long n = 100000;
  std::filesystem::remove_all(Racine().Chemin + "/Courtes.rq2");
  std::vector<long> entetes;
  {
    TGestFichier gest(Prs("Courtes"), true);
    // Le remplissage est un travail de masse : sans écriture immédiate, puis Flush.
    gest.FicNotes()->Fichier()->ChangeEcritureImmediate(false);
    for (long i = 0; i < n; ++i) {
      TNote note(gest.FicNotes(), 0);
      std::string texte = "Note courte numéro " + std::to_string(i) + "\r\n";
      note.ModifNote("Générale", texte);
      entetes.push_back(note.NoFiche);
    }
    gest.EcritureEntete();
  }
  TGestFichier gest(Prs("Courtes"), false, false, false, false, 0, mcLectureSeule, true);
  for (auto _ : etat) {
    size_t octets = 0;
    for (long e : entetes) octets += TNote(gest.FicNotes(), e).LectureNote("Générale").size();
    benchmark::DoNotOptimize(octets);
  }
  etat.SetItemsProcessed(static_cast<int64_t>(etat.iterations() * n));
}
BENCHMARK(BM_Lecture100000Notes)->Unit(benchmark::kMillisecond);

void BM_DecapeurRtf14Mo(benchmark::State& etat) {
  const std::string texte = TexteRtf(14'000'000);
  for (auto _ : etat) benchmark::DoNotOptimize(TConvRtfTxt(texte).TraitementRtfTxt(true).size());
  etat.SetBytesProcessed(static_cast<int64_t>(etat.iterations() * texte.size()));
}
BENCHMARK(BM_DecapeurRtf14Mo)->Unit(benchmark::kMillisecond);

void BM_LecteurRtf14Mo(benchmark::State& etat) {
  const std::string texte = TexteRtf(14'000'000);
  for (auto _ : etat) benchmark::DoNotOptimize(ConvertirRtfTxt(texte, true).size());
  etat.SetBytesProcessed(static_cast<int64_t>(etat.iterations() * texte.size()));
}
BENCHMARK(BM_LecteurRtf14Mo)->Unit(benchmark::kMillisecond);

}  // namespace
