// Harnais libFuzzer : un dossier dont le .prs, le .exp et le .psu viennent des octets
// donnés s'ouvre et se lit en entier sans planter. Les octets sont partagés entre les
// trois fichiers par les deux premiers octets (longueurs relatives).
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/dossier/gest_fic.h"

namespace {

// La racine temporaire dans un tableau fixe : elle sert encore au nettoyage de sortie,
// après la destruction des objets statiques.
char gRacine[256];

std::string Dossier() {
  if (gRacine[0] == 0) {
    std::string modele = (std::filesystem::temp_directory_path() / "rqfuzzXXXXXX").string();
    std::snprintf(gRacine, sizeof gRacine, "%s", ::mkdtemp(modele.data()));
    std::filesystem::create_directories(std::string(gRacine) + "/F.rq2");
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove_all(gRacine, ec);
    });
  }
  return std::string(gRacine) + "/F.rq2";
}

void Ecrit(const std::string& chemin, const uint8_t* d, size_t n) {
  std::ofstream f(chemin, std::ios::binary | std::ios::trunc);
  f.write(reinterpret_cast<const char*>(d), static_cast<std::streamsize>(n));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  if (taille < 2) return 0;
  const size_t reste = taille - 2;
  const size_t nExp = reste * donnees[0] / 512, nPsu = reste * donnees[1] / 512;
  const size_t nPrs = reste - nExp - nPsu;
  const uint8_t* p = donnees + 2;
  const std::string d = Dossier();
  Ecrit(d + "/F.prs", p, nPrs);
  Ecrit(d + "/F.exp", p + nPrs, nExp);
  Ecrit(d + "/F.psu", p + nPrs + nExp, nPsu);
  // Sans .adb : un ancien dossier, ouvert sans protection pour exercer aussi les écritures.
  TGestFichier gest(d + "/F.prs", false, true, false, false, 0, mcSansProtection);
  if (TFicPersons* fic = gest.FicPersons()) {
    const long n = std::min<long>(fic->NbPersEffective(), 64);
    TPerson scratch(fic, -3);
    for (long no = -2; no <= n; ++no) {
      scratch.Lecture(no);
      (void)scratch.FicheCassee();
      scratch.RepareFiche();
      gest.FixeErreur(false);
    }
  }
  if (TFicPersSuppr* psu = gest.FicPersSuppr()) {
    gest.FixeErreur(false);
    if (psu->NbEnreg() < 64) (void)psu->GetNbPersSuppr();
  }
  return 0;
}
