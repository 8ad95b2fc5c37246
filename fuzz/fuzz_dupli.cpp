// Harnais libFuzzer : un fichier de chaînes partagées (.lie) fait des octets donnés s'ouvre,
// se relit en mémoire et accepte une valeur neuve puis une suppression, sans planter ni
// boucler. Tout se passe dans un disque en mémoire.
#include <cstdint>
#include <string>

#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/fichier_memoire.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/util/erreur.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  static TDisqueMemoire disque;
  static TDisqueMemoire::TInstallation installation(disque);
  disque.Vide();
  disque.Pose("/f/F.rq2/F.lie", TDisqueMemoire::TOctets(donnees, donnees + taille));
  TContexteDossier contexte("/f/F.rq2/F.prs");
  try {
    TFicDupli lie(&contexte, tfLie, false);
    const long n = lie.NbFiches();
    for (long no = -1; no <= n + 1 && no < 200; ++no) {
      TFicheDupli fiche(&lie, no, true);
      std::string ville, region, pays;
      fiche.Elt.GetVilleRegionPays(ville, region, pays);
      (void)lie.RangDeNumero(no);
    }
    if (n < 200) {
      TEltDupChn e(0, "Neuve", "1", "Région", "Pays");
      int position = 0;
      lie.Cherche(&e, true, &position);
      if (!lie.ClassementSansSuppr().empty()) lie.SupprimeElt(0);
      lie.Cherche(&e, true, &position);
    }
  } catch (const ERqBase&) {
    // « Err index FicDupli » : un numéro de la table hors du compte, texte voulu.
  }
  return 0;
}
