// Harnais libFuzzer : un dossier dont le .prs, le .exp et le .psu viennent des octets
// donnés s'ouvre et se lit en entier sans planter. Les octets sont partagés entre les
// trois fichiers par les deux premiers octets (longueurs relatives).
//
// Tout se passe sur un disque en mémoire : le dossier est réduit aux trois fichiers des
// personnes, tenus par un contexte à lui, ouverts dans l'ordre du dossier complet
// (personnes avec la réparation de l'en-tête, supprimés, débordements). Ancien dossier
// modifiable : les réparations écrivent, en mémoire, comme elles écriraient sur le disque.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "rqbase/person/gest_pers.h"
#include "rqbase/platform/fichier_memoire.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/storage/gest_fic_pers.h"

namespace {

using namespace rqbase;

const std::string kDossier = "/memoire/F.rq2/";

// Le contexte d'un dossier qui n'a que ses fichiers de personnes ; il les possède et les
// rend à qui les demande, comme le fait le dossier complet.
class TDossierPersonnes : public TContexteDossier {
 public:
  TDossierPersonnes() : TContexteDossier(kDossier + "F.prs") {
    Persons = std::make_unique<TFicPersons>(this, false);
    PersSuppr = std::make_unique<TFicPersSuppr>(this, false);
    ExtPersons = std::make_unique<TFicExtPersons>(this, false);
  }
  TFicPersons* FicPersons() const override { return Persons.get(); }
  TFicExtPersons* FicExtPersons() const override { return ExtPersons.get(); }
  TFicPersSuppr* FicPersSuppr() const override { return PersSuppr.get(); }

 private:
  std::unique_ptr<TFicPersons> Persons;
  std::unique_ptr<TFicPersSuppr> PersSuppr;
  std::unique_ptr<TFicExtPersons> ExtPersons;
};

// Le disque du harnais, installé pour tout le processus.
TDisqueMemoire& Disque() {
  static TDisqueMemoire disque;
  static TDisqueMemoire::TInstallation installation(disque);
  return disque;
}

void Pose(const std::string& nom, const uint8_t* d, size_t n) { Disque().Pose(kDossier + nom, {d, d + n}); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  if (taille < 2) return 0;
  const size_t reste = taille - 2;
  const size_t nExp = reste * donnees[0] / 512, nPsu = reste * donnees[1] / 512;
  const size_t nPrs = reste - nExp - nPsu;
  const uint8_t* p = donnees + 2;
  // Les trois fichiers sont remplacés à chaque exécution ; le harnais n'en crée pas d'autre.
  Pose("F.prs", p, nPrs);
  Pose("F.exp", p + nPrs, nExp);
  Pose("F.psu", p + nPrs + nExp, nPsu);

  TDossierPersonnes gest;
  if (TFicPersons* fic = gest.FicPersons()) {
    const long n = std::min<long>(fic->NbPersEffective(), 64);
    // L'en-tête (-2) puis chaque personne. 0 et -1 donnent une fiche vide quels que soient
    // les octets : les relire à chaque exécution n'apprendrait rien au fuzz.
    TPerson scratch(fic, -2);
    auto examine = [&] {
      (void)scratch.FicheCassee();
      scratch.RepareFiche();
      gest.FixeErreur(false);
    };
    examine();
    for (long no = 1; no <= n; ++no) {
      scratch.Lecture(no);
      examine();
    }
  }
  if (TFicPersSuppr* psu = gest.FicPersSuppr()) {
    gest.FixeErreur(false);
    if (psu->NbEnreg() < 64) (void)psu->GetNbPersSuppr();
  }
  return 0;
}
