// Mesures de l'import GEDCOM : lecture des lignes seule, import entier dans un dossier neuf
// (mode import, chaque personne écrite une fois), et, pour comparer, les mêmes lignes
// insérées à nu dans SQLite (une par personne et une par fait, validation par 1000).
//
// Les fichiers sont produits ici : N personnes, chacune avec naissance (date et lieu), décès,
// profession ; un couple pour deux personnes, avec son mariage ; quatre enfants pour les
// familles du premier quart. RQ_GEDCOM_SORTIE=<dossier> y écrit aussi les fichiers, pour
// les mesures du processus entier (rqbase importer).
#include <benchmark/benchmark.h>
#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include "racine_temp.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/gedcom/import_gedcom.h"
#include "rqbase/gedcom/lecteur_lignes.h"

namespace {

using namespace rqbase;
using mesure::Racine;

const char* const kNoms[] = {"Martin", "Bernard", "Dubois", "Thomas", "Robert", "Richard", "Petit", "Durand",
                             "Leroy", "Moreau", "Simon", "Laurent", "Lefèvre", "Michel", "Garcia", "de La Fontaine"};
const char* const kPrenomsM[] = {"Jean", "Pierre", "Louis", "François", "Joseph", "Jacques", "Henri", "Paul"};
const char* const kPrenomsF[] = {"Marie", "Anne", "Jeanne", "Louise", "Catherine", "Élise", "Madeleine", "Rose"};
const char* const kMois[] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

std::string Genere(long n) {
  std::string s = "0 HEAD\n1 GEDC\n2 VERS 5.5.1\n1 CHAR ANSI\n";
  s.reserve(size_t(n) * 230);
  auto date = [](long i, int decalage) {
    return std::to_string(1 + (i * 7) % 28) + " " + kMois[(i + decalage) % 12] + " " +
           std::to_string(1700 + (i / 3 + decalage) % 280);
  };
  // 500 lieux, comme une généalogie de village en a.
  auto lieu = [](long i) {
    const long c = i % 500;
    return "Commune" + std::to_string(c) + ", " + std::to_string(1000 + c * 100) + ", , Région" + std::to_string(c % 13) +
           ", France";
  };
  for (long i = 1; i <= n; ++i) {
    const bool homme = i % 2 == 1;
    const std::string si = std::to_string(i);
    s += "0 @I" + si + "@ INDI\n1 NAME " + (homme ? kPrenomsM[i % 8] : kPrenomsF[i % 8]) + " /" + kNoms[i % 16] + "/\n";
    s += homme ? "1 SEX M\n" : "1 SEX F\n";
    s += "1 BIRT\n2 DATE " + date(i, 0) + "\n2 PLAC " + lieu(i) + "\n";
    s += "1 DEAT\n2 DATE " + date(i, 60) + "\n";
    s += "1 OCCU cultivateur\n";
    s += "1 FAMS @F" + std::to_string((i - 1) / 2) + "@\n";
    if (i >= 3 && (i - 3) / 4 < n / 2) s += "1 FAMC @F" + std::to_string((i - 3) / 4) + "@\n";
  }
  for (long f = 0; f < (n + 1) / 2; ++f) {
    s += "0 @F" + std::to_string(f) + "@ FAM\n1 HUSB @I" + std::to_string(2 * f + 1) + "@\n";
    if (2 * f + 2 <= n) s += "1 WIFE @I" + std::to_string(2 * f + 2) + "@\n";
    s += "1 MARR\n2 DATE " + date(f, 25) + "\n2 PLAC " + lieu(f) + "\n";
    for (long c = 4 * f + 3; c <= 4 * f + 6 && c <= n; ++c) s += "1 CHIL @I" + std::to_string(c) + "@\n";
  }
  return s + "0 TRLR\n";
}

const std::string& Fichier(long n) {
  static std::map<long, std::string> fichiers;
  auto it = fichiers.find(n);
  if (it == fichiers.end()) {
    it = fichiers.emplace(n, Genere(n)).first;
    if (const char* sortie = std::getenv("RQ_GEDCOM_SORTIE")) {
      std::ofstream f(std::string(sortie) + "/genere_" + std::to_string(n) + ".ged", std::ios::binary);
      f << it->second;
    }
  }
  return it->second;
}

void BM_LectureLignes(benchmark::State& etat) {
  const std::string& f = Fichier(etat.range(0));
  for (auto _ : etat) {
    TRapportImport r;
    std::string refus;
    benchmark::DoNotOptimize(LitLignesGedcom(f, r, refus));
  }
  etat.SetItemsProcessed(etat.iterations() * etat.range(0));
  etat.SetBytesProcessed(etat.iterations() * int64_t(f.size()));
}
BENCHMARK(BM_LectureLignes)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_ImportGedcom(benchmark::State& etat) {
  const long n = etat.range(0);
  const std::string& f = Fichier(n);
  for (auto _ : etat) {
    const std::string dossier = Racine().Chemin + "/Import" + std::to_string(n) + ".rq2";
    std::filesystem::remove_all(dossier);
    TGestFichier gest(dossier + "/Import" + std::to_string(n) + ".prs", true);
    const TRapportImport r = ImporteGedcom(gest, f);
    if (r.Personnes != n || gest.FicPersons()->NbPersEffective() != n) etat.SkipWithError("personnes manquantes");
  }
  etat.SetItemsProcessed(etat.iterations() * n);
}
BENCHMARK(BM_ImportGedcom)->Arg(10000)->Arg(50000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);

// Le plancher : les mêmes lignes (une personne, trois faits, un mariage pour deux) insérées
// par des requêtes préparées, sans rien d'autre, validées par paquets de 1000.
void BM_InsertionsSqliteNues(benchmark::State& etat) {
  const long n = etat.range(0);
  for (auto _ : etat) {
    const std::string chemin = Racine().Chemin + "/nu" + std::to_string(n) + ".db";
    std::filesystem::remove(chemin);
    SQLite::Database base(chemin, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    base.exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;");
    base.exec("CREATE TABLE P (ID INTEGER PRIMARY KEY, Nom TEXT, Prenoms TEXT, Sexe TEXT, Pere INTEGER, Mere INTEGER)");
    base.exec("CREATE TABLE E (ID INTEGER PRIMARY KEY, Libelle TEXT, Donnee TEXT, A INTEGER, B INTEGER, Date TEXT, Lieu INTEGER)");
    base.exec("CREATE INDEX EA ON E(A); CREATE INDEX EB ON E(B)");
    SQLite::Statement p(base, "INSERT INTO P VALUES (?, ?, ?, ?, ?, ?)");
    SQLite::Statement e(base, "INSERT INTO E (Libelle, Donnee, A, B, Date, Lieu) VALUES (?, ?, ?, ?, ?, ?)");
    auto tr = std::make_unique<SQLite::Transaction>(base);
    long lignes = 0;
    auto ligne = [&] {
      if (++lignes % 1000 == 0) {
        tr->commit();
        tr = std::make_unique<SQLite::Transaction>(base);
      }
    };
    for (long i = 1; i <= n; ++i) {
      p.bind(1, int64_t(i)); p.bind(2, kNoms[i % 16]); p.bind(3, kPrenomsM[i % 8]); p.bind(4, "M");
      p.bind(5, int64_t(i > 2 ? (i - 3) / 4 * 2 + 1 : 0)); p.bind(6, int64_t(i > 2 ? (i - 3) / 4 * 2 + 2 : 0));
      p.exec(); p.reset(); ligne();
      for (const char* l : {"NAISSANCE", "DECES", "PROFESSION"}) {
        e.bind(1, l); e.bind(2, ""); e.bind(3, int64_t(i)); e.bind(4, 0); e.bind(5, "01/02/1800"); e.bind(6, int64_t(i % 500));
        e.exec(); e.reset(); ligne();
      }
      if (i % 2) {
        e.bind(1, "UNION"); e.bind(2, ""); e.bind(3, int64_t(i)); e.bind(4, int64_t(i + 1)); e.bind(5, "01/02/1800"); e.bind(6, 1);
        e.exec(); e.reset(); ligne();
      }
    }
    tr->commit();
  }
  etat.SetItemsProcessed(etat.iterations() * n);
}
BENCHMARK(BM_InsertionsSqliteNues)->Arg(10000)->Arg(50000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
