// Mesure de l'ordre habituel des conjoints et des enfants (EnregClassementEnfConj) sur une
// personne de 10 conjointes et 150 enfants : deux tiers des enfants ont une naissance datée,
// sept unions sur dix sont datées. Avant chaque tour, les enfants sont mêlés en mémoire
// (graine fixe) : chaque tour classe une table en désordre, lit les 160 proches par le
// cache, cherche 150 naissances dans la base et enregistre la personne.
//
// Le dossier est fait une fois dans le dossier temporaire des mesures.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "personne_essai.h"
#include "racine_temp.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/datamodulebdd.h"

namespace {

using namespace rqbase;

struct TFamille {
  std::unique_ptr<TGestFichier> Gest;
  long Moi = 0;
};

void Evenement(TGestFichier& gest, long no, const char* libelle, const std::string& date, long conjoint) {
  essai::AjouteFait(gest.FicPersons(), gest.ModuleBDD(), no, {.Libelle = libelle, .Date = date, .Conjoint = conjoint});
}

TFamille& Famille() {
  static TFamille f = [] {
    TFamille r;
    const std::string prs = mesure::Racine().Chemin + "/Liens.rq2/Liens.prs";
    r.Gest = std::make_unique<TGestFichier>(prs, true);
    TFicPersons* fic = r.Gest->FicPersons();
    r.Moi = essai::AjoutePersonne(fic, "MOI", 'M');
    std::vector<long> conjointes;
    for (int i = 0; i < 10; ++i) conjointes.push_back(essai::AjoutePersonne(fic, "CONJOINTE" + std::to_string(i), 'F'));
    {
      TPerson moi(fic, r.Moi);
      for (long c : conjointes) moi.AjouteConj(c);
      moi.Enregistrement();
    }
    for (size_t i = 0; i < conjointes.size(); ++i) {
      TPerson c(fic, conjointes[i]);
      c.AjouteConj(r.Moi);
      c.Enregistrement();
      if (i % 10 < 7)
        Evenement(*r.Gest, r.Moi, "UNION", "01/05/" + std::to_string(1900 - 3 * static_cast<int>(i)), c.No());
    }
    std::vector<long> enfants;
    for (int i = 0; i < 150; ++i) {
      const long mere = conjointes[static_cast<size_t>(i % 10)];
      const long e = essai::AjoutePersonne(fic, "ENFANT" + std::to_string(i), i % 2 ? 'F' : 'M');
      TPerson enf(fic, e);
      enf.Enreg.Pere = TLienPers(r.Moi);
      enf.Enreg.Mere = TLienPers(mere);
      enf.Enregistrement();
      TPerson m(fic, mere);
      m.AjouteEnf(e, -1);
      m.Enregistrement();
      enfants.push_back(e);
      if (i % 3 != 0)
        Evenement(*r.Gest, e, "NAISSANCE",
                  "12/0" + std::to_string(1 + i % 9) + "/" + std::to_string(1850 + (i * 37) % 90), 0);
    }
    TPerson moi(fic, r.Moi);
    moi.SetVectorEnfants(enfants);
    moi.Enregistrement();
    return r;
  }();
  return f;
}

void BM_EnregClassementEnfConj(benchmark::State& state) {
  TFamille& f = Famille();
  TFicPersons* fic = f.Gest->FicPersons();
  std::mt19937 hasard(42);
  for (auto _ : state) {
    state.PauseTiming();
    TPerson p(fic, f.Moi);
    std::vector<long> enfants;
    p.GetVectorEnfants(enfants);
    std::shuffle(enfants.begin(), enfants.end(), hasard);
    p.SetVectorEnfants(enfants);
    state.ResumeTiming();
    p.EnregClassementEnfConj(false);
  }
  TPerson p(fic, f.Moi);
  state.counters["enfants"] = p.CompteNbEnfant();
  state.counters["conjoints"] = p.CompteNbConjoint();
}
BENCHMARK(BM_EnregClassementEnfConj)->Unit(benchmark::kMillisecond);

}  // namespace
